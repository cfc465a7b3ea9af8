#include "Tests/Apps/Lint/LintTesting.hpp"

namespace kestrom::app {

namespace {

using namespace kestrom::test;
using Lines = std::vector<std::string>;

TEST(DocumentLint, TellsEveryDecodingErrorInOneRun) {
  EXPECT_EQ(lint("{'sequence':[{'type':'picture','id':1,'key':'k'},"
                 "{'type':'module','key':'m','id':'m','sequence':[{'type':'text','id':'t'},"
                 "{'type':'boolean','id':'b','key':'b','text':'?','options':{'values':[{'key':1.5,'text':'x'}]},"
                 "'branches':[{'logicalOperator':'XOR','cases':[{'operator':'equal','value':null}]}]}]}]}"),
            (Lines{
                "sequence[0].type: error [decoding-error]",
                "sequence[0].id: error [decoding-error]",
                "sequence[1].sequence[0].key: error [decoding-error]",
                "sequence[1].sequence[1].options.values[0].key: error [decoding-error]",
                "sequence[1].sequence[1].branches[0].logicalOperator: error [decoding-error]",
                "sequence[1].sequence[1].branches[0].cases[0].value: error [decoding-error]",
            }));
}

TEST(DocumentLint, ChecksTheSoundNodesAroundAndBelowABrokenOne) {
  // The broken module has options that would be told, were it not broken; its child and its neighbour are sound.
  EXPECT_EQ(lint("{'sequence':[{'type':'modul','id':'m','key':'m','options':{},'sequence':[" + node("a", "boolean") +
                 "]}," + node("b", "text") + "]}"),
            (Lines{
                "sequence[0].type: error [decoding-error]",
                "sequence[0].sequence[0]: error [choice-without-options]",
                "sequence[1]: warning [top-level-leaf]",
            }));
  // A broken first child is not judged as a gate, nor is a list that is none taken for an empty one.
  const std::string repeat = ",'repeatable':true,'repeatableDetails':{'repeatText':'More?'},'sequence':";
  expectFindings({
      {"broken gate",
       node("a", "module", repeat + "[{'type':'boolean'}]"),
       {"[0].sequence[0].key: error [decoding-error]", "[0].sequence[0].id: error [decoding-error]"}},
      {"no list", node("a", "module", repeat + "'none'"), {"[0].sequence: error [decoding-error]"}},
      {"arms of all kinds",
       node("a", "cyoa",
            ",'adventures':[5,{'key':'a','value':'A','adventure':null},{'adventure':[]}," +
                arm("b", node("c", "module")) + "]"),
       {"[0].adventures[0]: error [decoding-error]", "[0].adventures[1].adventure: error [decoding-error]",
        "[0].adventures[2].value: error [decoding-error]", "[0].adventures[2].key: error [decoding-error]",
        "[0].adventures[2].adventure: error [decoding-error]",
        "[0].adventures[3].adventure.sequence[0].type: error [module-leaf]"}},
  });
}

TEST(DocumentLint, TellsOfListsBeyondTheLimitAndNotOfWhatTheyLack) {
  const auto nested = [](int levels) {
    std::string text = node("leaf", "bot");
    for (int level = levels; level > 1; --level) {
      text = "{'type':'module','id':'" + std::to_string(level) + "','key':'k','repeatable':false,'sequence':[" + text +
             "]}";
    }
    return "{'sequence':[" + text + "]}";
  };
  EXPECT_EQ(lint(nested(1024)), Lines{});
  const Lines tooDeep = lint(nested(1025));
  ASSERT_EQ(tooDeep.size(), 1U);
  EXPECT_TRUE(tooDeep[0].ends_with(".sequence: error [nesting-limit]"));
}

TEST(DocumentLint, TellsOfKeysThatStandTwiceInAnyObject) {
  EXPECT_EQ(lint("{'note':{'x':1,'y':2,'x':3,'x':4},'sequence':[],'a\\nb':0,'a\\nb':{'z':1}}"),
            (Lines{
                "note.x: warning [duplicate-key]",
                "a\nb: warning [duplicate-key]",
            }));
  expectFindings({
      {"the last one counts",
       node("a", "text", ",'type':'boolean'"),
       {"[0]: error [choice-without-options]", "[0].type: warning [duplicate-key]"}},
      {"same key in neighbours", node("a", "text") + "," + node("b", "text"), {}},
  });
}

TEST(DocumentLint, TellsOfKeysOneSlipAway) {
  expectFindings({
      {"another case",
       node("a", "module", ",'Sequence':[]"),
       {"[0].type: error [module-leaf]", "[0].Sequence: warning [misspelt-key]"}},
      {"one too many, one missing, one wrong",
       node("a", "number", ",'optionss':{},'repeatble':true,'repeatTexd':'x'"),
       {"[0].optionss: warning [misspelt-key]", "[0].repeatble: warning [misspelt-key]",
        "[0].repeatTexd: warning [misspelt-key]"}},
      {"deep in the records",
       node("a", "boolean",
            ",'options':{'values':[{'text':'x','key':true,'showcamera':true}],'minvalue':1},'branches':["
            "{'logicalOperator':'AND','cases':[],'Branch':{'sequence':[]}}]"),
       {"[0].options.values[0].showcamera: warning [misspelt-key]", "[0].options.minvalue: warning [misspelt-key]",
        "[0].branches[0].Branch: warning [misspelt-key]"}},
      {"an editor's notes", node("a", "text", ",'_id':'5f','keys':[1],'note':'?','x':{'sequenc':[]},'color':1"), {}},
      {"two slips", node("a", "text", ",'repeatabel':true,'opts':{}"), {}},
  });
}

TEST(DocumentLint, TellsOfStructureThatTheWalkPassesOverOrStopsAt) {
  EXPECT_EQ(lint("{'sequence':[" + node("a", "bot") + "," + node("b", "module") + "," +
                 node("c", "module", ",'adventures':[]") + "," + node("d", "module", ",'sequence':[]") + "]}"),
            (Lines{
                "sequence[0]: warning [top-level-leaf]",
                "sequence[1]: warning [top-level-leaf]",
                "sequence[2].type: error [module-leaf]",
            }));
  EXPECT_EQ(lint("{'sequence':[]}"), Lines{});
  expectFindings({
      {"module as a question",
       node("a", "module") + "," + node("b", "module", ",'branches':[]"),
       {"[0].type: error [module-leaf]", "[1].type: error [module-leaf]"}},
      {"texts",
       "{'type':'bot','id':'a','key':'k'},{'type':'text','id':'b','key':'k','text':''},"
       "{'type':'module','id':'c','key':'k','sequence':[]}",
       {"[0]: warning [missing-text]", "[1].text: warning [missing-text]"}},
  });
}

TEST(DocumentLint, TellsOfFieldsThatAreNeverRead) {
  const std::string options = ",'options':{'values':[{'text':'x','key':'a','deselectOthers':true,'showCamera':false}]}";
  expectFindings({
      {"lists beside a sequence",
       node("a", "module", ",'sequence':[],'adventures':[],'branches':[5]"),
       {"[0].branches[0]: error [decoding-error]"}},
      {"sound lists beside a sequence",
       node("a", "module", ",'sequence':[],'adventures':[],'branches':[]"),
       {"[0].adventures: warning [ignored-field]", "[0].branches: warning [ignored-field]"}},
      {"what lies in them is not judged",
       node("a", "module", ",'sequence':[],'branches':[" + guard("OR", "", node("b", "module")) + "]"),
       {"[0].branches: warning [ignored-field]"}},
      {"branches beside a menu",
       node("a", "bot",
            ",'options':{'values':[{'text':'x','key':'a'}]},'adventures':[" + arm("a", "") + "],'branches':[]"),
       {"[0].branches: warning [ignored-field]"}},
      {"options of a sequence",
       node("a", "module", ",'sequence':[]" + options),
       {"[0].options: warning [ignored-field]"}},
      {"repeat fields",
       node("a", "text", ",'repeatable':true,'repeatableDetails':{'repeatText':'?'},'repeatText':'?'"),
       {"[0].repeatable: warning [ignored-field]", "[0].repeatText: warning [ignored-field]"}},
      {"details without a repeat",
       node("a", "module", ",'sequence':[],'repeatable':false,'repeatableDetails':{'repeatText':'?'}"),
       {"[0].repeatableDetails: warning [ignored-field]"}},
      {"limits of other types",
       node("a", "text", ",'options':{'values':[],'minValue':1,'minLength':1}") + "," +
           node("b", "year", ",'options':{'maxValue':2000,'maxLength':1}"),
       {"[0].options.values: warning [ignored-field]", "[0].options.minValue: warning [ignored-field]",
        "[1].options.maxLength: warning [ignored-field]"}},
      {"option fields",
       node("a", "select_one", options),
       {"[0].options.values[0].deselectOthers: warning [ignored-field]",
        "[0].options.values[0].showCamera: warning [ignored-field]"}},
      {"a location that cannot decline",
       node("a", "location", options),
       {"[0].options.values[0].deselectOthers: warning [ignored-field]",
        "[0].options.values[0].showCamera: warning [ignored-field]"}},
      {"fields that are read",
       node("a", "select_multiple", ",'options':{'values':[{'text':'x','key':'a','deselectOthers':true}]}") + "," +
           node("b", "location", ",'options':{'values':[{'text':'x','key':'a','showCamera':true}]}") + "," +
           node("c", "text", ",'repeatable':false,'options':{'minLength':1,'maxLength':2,'cvEndpoint':'x'}"),
       {}},
  });
}

}  // namespace

}  // namespace kestrom::app
