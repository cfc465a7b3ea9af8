#include "Tests/Apps/Lint/LintTesting.hpp"

namespace kestrom::app {

namespace {

using namespace kestrom::test;

/// Members of a node that repeats, with details such as `'maxRepeats':2`.
std::string repeats(const std::string& details = "") {
  return ",'repeatable':true,'repeatableDetails':{'repeatText':'More?'" + (details.empty() ? "" : "," + details) + "}";
}

std::string repeatingList(const std::string& nodes, const std::string& details = "") {
  return node("loop", "module", repeats(details) + ",'sequence':[" + nodes + "]");
}

TEST(RepeatLint, TellsOfEmptyListsThatRepeat) {
  expectFindings({
      {"sequence", repeatingList(""), {"[0].sequence: error [endless-repeat]"}},
      {"one arm of a menu",
       node("loop", "cyoa",
            repeats() + options({"'a'", "'b'"}) + ",'adventures':[" + arm("a", yesNo("gate")) + "," + arm("b", "") +
                "]"),
       {"[0].adventures[1].adventure.sequence: error [endless-repeat]"}},
      {"one branch",
       node("loop", "boolean",
            repeats() + options({"true", "false"}) + ",'branches':[" + guard("AND", when("equal", "true")) +
                ",{'logicalOperator':'AND','cases':[]}]"),
       {"[0].branches[0].branch.sequence: error [endless-repeat]"}},
      {"not repeated", node("a", "module", ",'repeatable':null,'sequence':[]"), {}},
  });
}

TEST(RepeatLint, JudgesTheGateByItsKeys) {
  const auto gate = [](const std::vector<std::string>& keys) { return node("gate", "select_one", options(keys)); };
  expectFindings({
      {"true and false", repeatingList(yesNo("gate")), {}},
      {"yes in capitals", repeatingList(gate({"'YES'", "'No'"})), {}},
      {"only resembles yes",
       repeatingList(gate({"'yes, please'", "'no'"})),
       {"[0].sequence[0]: warning [gate-never-repeats]"}},
      {"no yes, though a later child has one",
       repeatingList(gate({"'a'", "'b'"}) + "," + yesNo("later")),
       {"[0].sequence[0]: warning [gate-never-repeats]"}},
      {"statement first, gate later",
       repeatingList(node("a", "bot") + "," + node("b", "text") + "," + yesNo("gate")),
       {"[0].sequence[2]: warning [gate-not-first]"}},
      {"module first",
       repeatingList(node("a", "module", ",'sequence':[" + yesNo("gate") + "]")),
       {"[0].sequence[0]: warning [gate-never-repeats]"}},
      {"branching node as the gate",
       repeatingList(node("gate", "boolean", options({"true", "false"}) + ",'branches':[]")),
       {}},
      {"a declining option says yes",
       repeatingList(node("gate", "photo",
                          ",'options':{'values':[{'text':'x','key':'yes'},"
                          "{'text':'x','key':'no','showCamera':false}]}")),
       {"[0].sequence[0]: warning [gate-never-repeats]"}},
      {"bounded to one pass",
       repeatingList(yesNo("gate"), "'maxRepeats':1"),
       {"[0].repeatableDetails.maxRepeats: warning [gate-never-repeats]"}},
      {"bounded to two", repeatingList(yesNo("gate"), "'maxRepeats':2"), {}},
      {"nothing but yes", repeatingList(gate({"'yes'", "true"})), {"[0].sequence[0]: error [gate-always-repeats]"}},
      {"nothing but yes, bounded", repeatingList(gate({"'yes'"}), "'maxRepeats':9"), {}},
      {"nothing but yes, or nothing at all", repeatingList(node("gate", "select_multiple", options({"'yes'"}))), {}},
  });
}

TEST(RepeatLint, TellsOfGatesWithoutTheirText) {
  const std::string list = ",'sequence':[" + yesNo("gate") + "]";
  expectFindings({
      {"no details", node("a", "module", ",'repeatable':true" + list), {"[0]: warning [missing-repeat-text]"}},
      {"empty text",
       node("a", "module", ",'repeatable':true,'repeatableDetails':{'repeatText':''}" + list),
       {"[0].repeatableDetails.repeatText: warning [missing-repeat-text]"}},
  });
}

TEST(RepeatLint, TellsOfWhatDoesNotWorkInsideARepeat) {
  const auto inner = [](const std::string& details) {
    return node("inner", "module", repeats(details) + ",'sequence':[" + yesNo("inner.gate") + "]");
  };
  const std::string menu =
      node("menu", "cyoa", options({"'a'"}) + ",'adventures':[" + arm("a", node("x", "text")) + "]");
  const std::string deep =
      node("deep", "boolean",
           options({"true", "false"}) + ",'branches':[" + guard("AND", when("equal", "true"), menu) + "]");
  expectFindings({
      {"menu", repeatingList(yesNo("gate") + "," + menu), {"[0].sequence[1]: error [menu-in-repeat]"}},
      {"menu further down",
       repeatingList(yesNo("gate") + "," + deep),
       {"[0].sequence[1].branches[0].branch.sequence[0]: error [menu-in-repeat]"}},
      {"menu in what does not repeat after all",
       repeatingList(yesNo("gate") + "," + menu, "'maxRepeats':1"),
       {"[0].repeatableDetails.maxRepeats: warning [gate-never-repeats]"}},
      {"menu behind a repeat", repeatingList(yesNo("gate")) + "," + menu, {}},
      {"menu whose arms repeat",
       node("menu", "cyoa", repeats() + options({"'a'"}) + ",'adventures':[" + arm("a", yesNo("gate")) + "]"),
       {}},
      {"repeat", repeatingList(yesNo("gate") + "," + inner("")), {"[0].sequence[1]: error [nested-repeat]"}},
      {"repeat of one pass",
       repeatingList(yesNo("gate") + "," + inner("'maxRepeats':0")),
       {"[0].sequence[1].repeatableDetails.maxRepeats: warning [gate-never-repeats]"}},
  });
}

}  // namespace

}  // namespace kestrom::app
