#include "Tests/Apps/Lint/LintTesting.hpp"

namespace kestrom::app {

namespace {

using namespace kestrom::test;

TEST(IdentityLint, TellsOfIdsThatStandTwiceOnOneWay) {
  const auto branching = [](const std::string& first, const std::string& second) {
    return node("b", "boolean",
                options({"true", "false"}) + ",'branches':[" + guard("AND", when("equal", "true"), first) + "," +
                    guard("AND", when("equal", "false"), second) + "]");
  };
  const std::string menu = node("x", "cyoa", options({"'a'"}) + ",'adventures':[" + arm("a", "") + "]");
  const std::string x = node("x", "text");
  expectFindings({
      {"questions", x + "," + x + "," + x, {"[1].id: warning [duplicate-id]", "[2].id: warning [duplicate-id]"}},
      {"a module and a question",
       node("x", "module", ",'sequence':[" + x + "]"),
       {"[0].sequence[0].id: warning [duplicate-id]"}},
      {"menus", x + "," + menu, {"[1].id: error [duplicate-id]"}},
      {"branches of one node", branching(x, x), {}},
      {"twice in one branch of two",
       branching(x, x + "," + node("y", "module", ",'sequence':[" + x + "]")),
       {"[0].branches[1].branch.sequence[1].sequence[0].id: warning [duplicate-id]"}},
      {"in a branch and behind it", branching(x, "") + "," + x, {"[1].id: warning [duplicate-id]"}},
      {"a branching node and its branch",
       branching(node("b", "text"), ""),
       {"[0].branches[0].branch.sequence[0].id: warning [duplicate-id]"}},
      {"arms of a menu, which are all walked",
       node("m", "cyoa", options({"'a'", "'b'"}) + ",'adventures':[" + arm("a", x) + "," + arm("b", x) + "]"),
       {"[0].adventures[1].adventure.sequence[0].id: warning [duplicate-id]"}},
  });
}

TEST(IdentityLint, TellsWhatTheWalkDoes) {
  const auto text = [](const std::string& first, const std::string& second) {
    const auto result = lintTemplate(
        json("{'sequence':[{'type':'module','id':'m','key':'m','sequence':[" + first + "," + second + "]}]}"), {});
    return result.findings.empty() ? "" : result.findings.back().text;
  };
  const std::string leaf = node("x", "text");
  const std::string branching = node("x", "text", ",'branches':[]");
  EXPECT_TRUE(text(leaf, leaf).contains("the first visit takes the first answer and the second visit the next"));
  EXPECT_TRUE(text(leaf, branching).contains("the first visit takes the first answer and the second visit the next"));
  EXPECT_TRUE(text(branching, leaf).contains("this one is never asked"));
  EXPECT_TRUE(text(leaf, leaf).contains("sequence[0].sequence[0]"));
}

std::vector<std::string> lintWithCase(const std::string& nodes) {
  const auto caseDocument =
      foundation::JSONDocument::parse(R"({"name":"Ada","policy":{"number":7,"dates":["a"],"none":null},"a b":1})");
  LintOptions options;
  options.caseObject = caseDocument->root();
  auto found =
      lines(lintTemplate(json("{'sequence':[" + node("m", "module", ",'sequence':[" + nodes + "]") + "]}"), options));
  for (std::string& line : found) line.erase(0, std::string_view("sequence[0].sequence").size());
  return found;
}

TEST(PlaceholderLint, ReadsPlaceholdersAsTheChatDoes) {
  const std::vector<std::string> whole{"[0].text: warning [whole-case-placeholder]"};
  const std::vector<std::string> unresolved{"[0].text: warning [unresolved-placeholder]"};
  const std::vector<std::string> unfilled{"[0].text: warning [unfilled-placeholder]"};
  const struct {
    std::string text;
    std::vector<std::string> want;
  } rows[] = {
      {"{{ case.name }}, {{{x.policy.number}}} {{case.policy}} {{{case.policy.none}}", {}},
      {"{{..case..name..}} {{case.a b}} {{\\t case.name\\t}}", {}},
      {"{{name}}", whole},
      {"{{}} and {{{ . }}}", {whole[0], whole[0]}},
      {"{{case.Name}}", unresolved},
      {"{{case.name.first}}", unresolved},
      {"{{case.policy.dates.0}}", unresolved},
      {"{{ case.{{name}} }}", unresolved},
      {"{ case.name } }} {x}", {}},
      {"{{ case.name }", unfilled},
      {"{{ case.\\nname }} {{case.name}}", unfilled},
      {"{{ a\\u2028}} {{x.y}}", {unfilled[0], unresolved[0]}},
      {"{{", unfilled},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(lintWithCase("{'type':'bot','id':'a','key':'a','text':'" + row.text + "'}"), row.want) << row.text;
  }
}

TEST(PlaceholderLint, LooksAtTheTextsThatAreShown) {
  const std::string off = "'{{off}}'";
  EXPECT_EQ(lintWithCase("{'type':'cyoa','id':'a','key':'a','text':'Well?','repeatText':" + off +
                         ",'repeatable':true,'repeatableDetails':{'repeatText':" + off +
                         "},'options':{'values':[{'text':" + off + ",'key':'a'}]},'adventures':[{'value':" + off +
                         ",'key':'a','adventure':{'sequence':[" + yesNo("gate") + "]}}]}"),
            (std::vector<std::string>{
                "[0].repeatText: warning [whole-case-placeholder]",
                "[0].repeatableDetails.repeatText: warning [whole-case-placeholder]",
                "[0].options.values[0].text: warning [unfilled-placeholder]",
            }));
  EXPECT_EQ(lintWithCase("{'type':'module','id':'a','key':'a','text':" + off + ",'sequence':[]}"),
            std::vector<std::string>{});
  EXPECT_EQ(lintList("{'type':'bot','id':'a','key':'a','text':'{{case.unknown}}'}"), std::vector<std::string>{})
      << "without a case nobody knows what resolves";
}

}  // namespace

}  // namespace kestrom::app
