#include "Tests/Apps/Lint/LintTesting.hpp"

namespace kestrom::app {

namespace {

using namespace kestrom::test;

/// Guards of a node, given as cases under AND.
std::string branches(const std::vector<std::string>& guards) {
  std::string list;
  for (const std::string& each : guards) list += (list.empty() ? "" : ",") + guard("AND", each);
  return ",'branches':[" + list + "]";
}

std::string choice(const std::vector<std::string>& keys, const std::vector<std::string>& guards) {
  return node("a", "select_one", options(keys) + branches(guards));
}

std::string selection(const std::vector<std::string>& keys, const std::vector<std::string>& guards) {
  return node("a", "select_multiple", options(keys) + branches(guards));
}

std::string number(const std::string& limits, const std::vector<std::string>& guards) {
  return node("a", "number", ",'options':{" + limits + "}" + branches(guards));
}

std::string typed(const std::vector<std::string>& guards) {
  return node("a", "text", branches(guards));
}

const std::vector<std::string> kFirstDead{"[0].branches[0]: warning [dead-guard]"};
const std::vector<std::string> kSecondDead{"[0].branches[1]: warning [dead-guard]"};
const std::vector<std::string> kFirstShadows{"[0].branches[0]: warning [shadowing-guard]"};

TEST(GuardLint, JudgesSingleChoicesByTheirKeys) {
  const std::string isYes = when("equal", "'yes'");
  const std::string isNo = when("equal", "'no'");
  const std::string isTrue = when("equal", "true");
  expectFindings({
      {"one guard for each key", choice({"'yes'", "'no'"}, {isYes, isNo}), {}},
      {"a last guard for all else", choice({"'a'", "'b'", "'c'"}, {when("equal", "'a'"), ""}), {}},
      {"no option's key", choice({"'Yes'", "'no'"}, {isYes}), kFirstDead},
      {"boolean against words", choice({"'yes'", "'no'"}, {isTrue}), kFirstDead},
      {"not equal to a boolean against words", choice({"'yes'", "'no'"}, {when("notEqual", "true")}), kFirstDead},
      {"boolean against booleans, numbers and texts of them",
       choice({"true", "0", "'FALSE'"}, {isTrue, when("equal", "false")}),
       {}},
      {"number against numbers", choice({"1", "20"}, {when("greaterThan", "5")}), {}},
      {"number against words", choice({"'one'", "'two'"}, {when("lessThan", "5")}), kFirstDead},
      {"parts of a number", choice({"1", "21"}, {when("contains", "1")}), kFirstDead},
      {"parts of a text", choice({"1", "21"}, {when("contains", "'2'")}), {}},
      {"order of booleans", choice({"true", "false"}, {when("greaterThan", "false")}), kFirstDead},
      {"cases that exclude each other", choice({"'yes'", "'no'"}, {isYes + "," + isNo}), kFirstDead},
      {"taken by an earlier guard",
       choice({"'a'", "'b'", "'c'"}, {when("notEqual", "'a'"), when("equal", "'b'"), when("equal", "'a'")}),
       kSecondDead},
      {"all taken by the guards together",
       choice({"'yes'", "'no'"}, {isYes, isNo, ""}),
       {"[0].branches[1]: warning [shadowing-guard]"}},
      {"statement", node("a", "bot", branches({when("equal", "''")})), {}},
      {"statement never says a word", node("a", "bot", branches({when("contains", "'a'")})), kFirstDead},
      {"nothing to pick is told once",
       node("a", "boolean", branches({isYes})),
       {"[0]: error [choice-without-options]"}},
  });
}

TEST(GuardLint, KnowsTheKeysOfCaptures) {
  const std::string declines =
      ",'options':{'values':[{'text':'x','key':'take'},{'text':'x','key':'no','showCamera':false}]}";
  const auto capture = [&](const std::string& type, const std::string& value) {
    return node("a", type, declines + branches({when("equal", value)}));
  };
  expectFindings({
      {"declined", capture("photo", "'no'"), {}},
      {"the node's key", capture("video", "'a.key'"), {}},
      {"the key of the option that opens the camera", capture("photo", "'take'"), kFirstDead},
      {"both parts", capture("panorama", "'mediaUrl;thumbnailUrl'"), {}},
      {"one part of two", capture("meshscan", "'mediaUrl'"), kFirstDead},
      {"one part", capture("fnol", "'mediaUrl'"), {}},
      {"an address",
       node("a", "location", options({"'go'"}) + branches({when("equal", "'a.key'"), when("equal", "''")})),
       {}},
  });
}

TEST(GuardLint, TriesAllSelectionsOfAMultipleChoice) {
  const std::vector<std::string> few{"'a'", "'b'", "'c'"};
  const std::vector<std::string> many{"'a'", "'b'", "'c'", "'d'", "'e'", "'f'", "'g'", "'77'"};
  const std::string none =
      node("a", "select_multiple",
           ",'options':{'values':[{'text':'x','key':'a'},{'text':'x','key':'none','deselectOthers':true}]}" +
               branches({when("equal", "'a;none'"), when("contains", "'none'") + "," + when("contains", "'a'"),
                         when("equal", "'none'")}));
  expectFindings({
      {"one alone, and some in an order", selection(few, {when("equal", "'a'"), when("equal", "'c;a'")}), {}},
      {"nothing ticked", selection(few, {when("equal", "''")}), {}},
      {"one twice", selection(few, {when("equal", "'a;a'")}), kFirstDead},
      {"another separator", selection(few, {when("equal", "'a,b'")}), kFirstDead},
      {"two parts", selection(few, {when("contains", "'a'") + "," + when("doesNotContain", "'b'")}), {}},
      {"no option's part", selection(few, {when("contains", "'d'")}), kFirstDead},
      {"excluding option", none, {"[0].branches[0]: warning [dead-guard]", "[0].branches[1]: warning [dead-guard]"}},
      {"many: no option's part", selection(many, {when("contains", "'h'")}), kFirstDead},
      {"many: no selection", selection(many, {when("equal", "'a;h'")}), kFirstDead},
      {"many: no number among them", selection(many, {when("greaterThan", "78")}), kFirstDead},
      {"many: what can be",
       selection(many, {when("equal", "'g;a;77'"), when("contains", "'a;b'"),
                        when("contains", "'c'") + "," + when("contains", "'d'"), when("equal", "77"),
                        when("lessThan", "'a'"), when("notEqual", "'a'")}),
       {}},
  });
}

TEST(GuardLint, JudgesNumbersWithinTheirLimits) {
  const std::string upTo20 = "'minValue':0,'maxValue':20";
  expectFindings({
      {"within", number(upTo20, {when("greaterThan", "19"), when("lessThan", "1"), when("equal", "7.0")}), {}},
      {"above the upper limit", number(upTo20, {when("greaterThan", "20")}), kFirstDead},
      {"below the lower limit", number(upTo20, {when("lessThan", "0")}), kFirstDead},
      {"between two whole numbers", number(upTo20, {when("greaterThan", "4") + "," + when("lessThan", "5")}),
       kFirstDead},
      {"one whole number", number(upTo20, {when("greaterThan", "4") + "," + when("lessThan", "6")}), {}},
      {"no whole number", number(upTo20, {when("equal", "4.5")}), kFirstDead},
      {"all of them", number(upTo20, {when("lessThan", "20.5"), ""}), kFirstShadows},
      {"all but one", number(upTo20, {when("lessThan", "20"), ""}), {}},
      {"all but those before",
       number(upTo20, {when("lessThan", "10"), when("greaterThan", "9"), ""}),
       {"[0].branches[1]: warning [shadowing-guard]"}},
      {"narrower behind wider", number(upTo20, {when("greaterThan", "5"), when("greaterThan", "10")}), kSecondDead},
      {"texts of numbers", number(upTo20, {when("equal", "'12'"), when("notEqual", "'12'")}), {}},
      {"12 may be written +12", number(upTo20, {when("equal", "'12'"), when("equal", "12")}), {}},
      {"text that is no number", number(upTo20, {when("equal", "'many'")}), kFirstDead},
      {"no upper limit", number("'minValue':0", {when("greaterThan", "1000000000000")}), {}},
      {"without limits anything can be typed",
       number("", {when("lessThan", "1"), when("greaterThan", "0"), when("equal", "'many'"), ""}),
       {}},
      {"years",
       node("a", "year", branches({when("greaterThan", "2026"), when("lessThan", "1800"), when("equal", "2026")})),
       {"[0].branches[0]: warning [dead-guard]", "[0].branches[1]: warning [dead-guard]"}},
      {"limits that nothing meets are told alone",
       number("'minValue':2,'maxValue':1", {when("equal", "9")}),
       {"[0].options.minValue: error [inverted-value-range]"}},
  });
}

TEST(GuardLint, JudgesTextsOnlyWhereEveryTextTellsTheSame) {
  expectFindings({
      {"anything",
       typed({when("equal", "'a'"), when("equal", "true"), when("contains", "'b'"), when("lessThan", "'c'"),
              when("notEqual", "5"), ""}),
       {}},
      {"two texts at once", typed({when("equal", "'a'") + "," + when("equal", "'b'")}), kFirstDead},
      {"a text without its own part", typed({when("equal", "'ab'") + "," + when("doesNotContain", "'a'")}), kFirstDead},
      {"two numbers at once", typed({when("greaterThan", "5") + "," + when("lessThan", "5")}), kFirstDead},
      {"true and no number", typed({when("equal", "true") + "," + when("notEqual", "1")}), kFirstDead},
      {"1 is true", typed({when("equal", "true") + "," + when("equal", "1")}), {}},
      {"the same twice", typed({when("contains", "'a'"), when("contains", "'a'")}), kSecondDead},
      {"nothing sorts before nothing", typed({when("lessThan", "''")}), kFirstDead},
      {"every text has the empty part", typed({when("contains", "''"), when("equal", "'a'")}), kFirstShadows},
      {"nan is no other number, but not equal to one",
       typed({when("equal", "5"), when("lessThan", "5"), when("greaterThan", "5"), when("notEqual", "5")}),
       {}},
      {"a number or not", typed({when("equal", "5"), when("notEqual", "5"), ""}), {}},
  });
}

TEST(GuardLint, TellsOfOperatorsWithoutAndWithDeadCases) {
  const auto guards = [](const std::string& list) {
    return node("a", "select_one", options({"'a'", "'b'"}) + ",'branches':[" + list + "]");
  };
  expectFindings({
      {"no guards", guards(""), {}},
      {"AND without cases", guards(guard("AND", "") + "," + guard("AND", when("equal", "'a'"))), kFirstShadows},
      {"AND without cases at the end", guards(guard("AND", "")), {}},
      {"OR without cases", guards(guard("OR", "")), kFirstDead},
      {"OR of dead cases", guards(guard("OR", when("equal", "'c'") + "," + when("equal", "true"))), kFirstDead},
      {"OR with one dead case",
       guards(guard("OR", when("equal", "'a'") + "," + when("equal", "'c'"))),
       {"[0].branches[0].cases[1]: warning [dead-guard]"}},
      {"a guard without a branch takes its answers too",
       guards("{'logicalOperator':'AND','cases':[" + when("equal", "'a'") + "]}," + guard("OR", when("equal", "'a'"))),
       kSecondDead},
  });
}

TEST(GuardLint, TellsOfCasesThatTestSomethingElse) {
  expectFindings({
      {"part of two keys",
       selection({"'oil'", "'oil_lamp'"}, {when("doesNotContain", "'oil'")}),
       {"[0].branches[0].cases[0]: warning [misleading-case]"}},
      {"part of one key", selection({"'oil'", "'oil_lamp'"}, {when("contains", "'lamp'")}), {}},
      {"single choice", choice({"'oil'", "'oil_lamp'", "'gas'"}, {when("contains", "'oil'")}), {}},
      {"order of text",
       number("'minValue':0", {when("greaterThan", "'9'")}),
       {"[0].branches[0].cases[0]: warning [misleading-case]"}},
      {"order of text where it is text", typed({when("greaterThan", "'9'")}), {}},
  });
}

TEST(GuardLint, GivesUpOnGuardsThatNobodyWrites) {
  std::string cases = when("equal", "'x'");
  for (int count = 0; count < 2000; ++count) cases += "," + when("equal", "'x'");
  std::vector<std::string> keys;
  for (int count = 0; count < 2000; ++count) keys.push_back(std::to_string(count));
  expectFindings({{"too many to try", choice(keys, {cases}), {}}});
}

}  // namespace

}  // namespace kestrom::app
