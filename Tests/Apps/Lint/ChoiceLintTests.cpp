#include "Tests/Apps/Lint/LintTesting.hpp"

namespace kestrom::app {

namespace {

using namespace kestrom::test;
using Lines = std::vector<std::string>;

TEST(ChoiceLint, TellsOfQuestionsWithoutAnythingToPick) {
  for (const std::string type : {"select_one", "select_single_module", "cyoa", "select_multiple", "boolean"}) {
    expectFindings({
        {type + " without options", node("a", type), {"[0]: error [choice-without-options]"}},
        {type + " without values", node("a", type, ",'options':{}"), {"[0].options: error [choice-without-options]"}},
        {type + " with no value", node("a", type, options({})), {"[0].options: error [choice-without-options]"}},
        {type + " with a value", node("a", type, options({"'x'"})), {}},
    });
  }
  for (const std::string type : {"photo", "video", "panorama", "fnol", "meshscan", "location"}) {
    expectFindings({{type, node("a", type), {"[0]: error [capture-without-camera]"}}});
  }
  const std::string declining = ",'options':{'values':[{'text':'x','key':'a','showCamera':false}]}";
  expectFindings({
      {"statement", node("a", "bot"), {}},
      {"statement that has to be picked",
       node("a", "bot", ",'options':{}"),
       {"[0].options: error [choice-without-options]"}},
      {"capture that can only be declined",
       node("a", "photo", declining),
       {"[0].options.values: warning [capture-without-camera]"}},
      {"capture with one camera", node("a", "photo", options({"'take'"})), {}},
      {"sequence of a choice's type", node("a", "cyoa", ",'sequence':[]"), {}},
      {"typed", node("a", "text") + "," + node("b", "year") + "," + node("c", "number"), {}},
  });
}

TEST(ChoiceLint, TellsOfOptionsWithOneKey) {
  expectFindings({
      {"same text of keys",
       node("a", "select_one", options({"1", "'1'", "true", "'x'", "'true'"})),
       {"[0].options.values[1].key: warning [duplicate-option-key]",
        "[0].options.values[4].key: warning [duplicate-option-key]"}},
      {"keys differ by case", node("a", "select_multiple", options({"'a'", "'A'"})), {}},
  });
}

TEST(ChoiceLint, TellsOfLimitsThatNothingMeets) {
  const auto limits = [](const std::string& type, const std::string& members) {
    return node("a", type, ",'options':{" + members + "}");
  };
  expectFindings({
      {"number", limits("number", "'minValue':2,'maxValue':1"), {"[0].options.minValue: error [inverted-value-range]"}},
      {"number with one value", limits("number", "'minValue':2,'maxValue':2"), {}},
      {"number with one limit", limits("number", "'minValue':99999"), {}},
      {"year",
       limits("year", "'minValue':2001,'maxValue':2000"),
       {"[0].options.minValue: error [inverted-value-range]"}},
      {"year before the first",
       limits("year", "'maxValue':1799"),
       {"[0].options.maxValue: error [inverted-value-range]"}},
      {"first year", limits("year", "'maxValue':1800"), {}},
      {"year after the present",
       limits("year", "'minValue':2027"),
       {"[0].options.minValue: error [inverted-value-range]"}},
      {"present year", limits("year", "'minValue':2026"), {}},
      {"text", limits("text", "'minLength':2,'maxLength':1"), {"[0].options.minLength: error [inverted-length-range]"}},
      {"text of one length", limits("text", "'minLength':2,'maxLength':2"), {}},
      {"longer than the field",
       limits("text", "'minLength':101"),
       {"[0].options.minLength: error [inverted-length-range]"}},
      {"as long as the field", limits("text", "'minLength':100"), {}},
      {"long field", limits("text", "'minLength':101,'maxLength':200"), {}},
      {"less than nothing", limits("text", "'maxLength':-1"), {"[0].options.maxLength: error [inverted-length-range]"}},
  });
}

std::string menu(const std::string& type, const std::vector<std::string>& optionKeys, const std::string& arms) {
  return node("menu", type, (optionKeys.empty() ? "" : options(optionKeys)) + ",'adventures':[" + arms + "]");
}

TEST(MenuLint, TellsOfOptionsAndArmsThatDoNotMeet) {
  const std::string both = arm("a", node("x", "text")) + "," + arm("b", "");
  expectFindings({
      {"sound", menu("cyoa", {"'b'", "'a'"}, both), {}},
      {"option without arm",
       menu("cyoa", {"'a'", "'b'", "'c'"}, both),
       {"[0].options.values[2].key: error [menu-key-mismatch]"}},
      {"arm without option", menu("select_one", {"'a'"}, both), {"[0].adventures[1].key: error [menu-key-mismatch]"}},
      {"keys differ by case",
       menu("boolean", {"'a'", "'B'"}, both),
       {"[0].options.values[1].key: error [menu-key-mismatch]", "[0].adventures[1].key: error [menu-key-mismatch]"}},
      {"keys that are no strings", menu("boolean", {"true", "12"}, arm("true", "") + "," + arm("12", "")), {}},
      {"no arms", menu("cyoa", {"'a'"}, ""), {"[0].options.values[0].key: error [menu-key-mismatch]"}},
      {"no options", menu("cyoa", {}, both), {"[0]: error [choice-without-options]"}},
      {"one key twice",
       menu("bot", {"'a'", "'b'"}, both + "," + arm("a", "") + "," + arm("b", "")),
       {"[0].adventures[2].key: error [duplicate-arm-key]", "[0].adventures[3].key: error [duplicate-arm-key]"}},
  });
}

TEST(MenuLint, TellsOfTypesThatPickNoArm) {
  const std::string arms = arm("a", "") + "," + arm("b", "");
  expectFindings({
      {"a picture's key is no arm's", menu("photo", {"'a'", "'b'"}, arms), {"[0].type: error [menu-type]"}},
      {"typed", menu("text", {}, arms), {"[0].type: error [menu-type]"}},
      {"capture without a button", menu("photo", {}, arms), {"[0]: error [capture-without-camera]"}},
      {"statement", menu("bot", {}, arms), {"[0].type: error [menu-type]"}},
      {"several at once", menu("select_multiple", {"'a'", "'b'"}, arms), {"[0].type: warning [menu-type]"}},
      {"typed, and the only arm has the node's key", menu("text", {}, arm("menu.key", "")), {}},
  });
}

}  // namespace

}  // namespace kestrom::app
