#include "Core/Services/Bot/ConditionalEvaluation.hpp"

#include "Tests/Support/TemplateBuilder.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace kestrom::services {

namespace {

using models::ConditionalNode;
using tests::Answer;
using tests::NodeType;
using Case = ConditionalNode::Case;
using Operator = Case::Operator;
using Logic = ConditionalNode::LogicalOperator;
using Value = models::ConversationDTO::AnswerDTO::Value;

Case::Value number(double value) {
  return {Case::Value::Number{value}};
}
Case::Value string(std::string value) {
  return {Case::Value::String{std::move(value)}};
}
Case::Value boolean(bool value) {
  return {Case::Value::Bool{value}};
}

bool holds(const Answer& answer, NodeType type, Logic logic, std::vector<Case> cases) {
  models::BotNode node = tests::leaf("n", type);
  const std::vector<ConditionalNode> guards{{logic, std::move(cases), ConditionalNode::Branch{}}};
  return selectBranch(answer, node, guards) != nullptr;
}

Answer typed(std::vector<Value> values) {
  Answer answer = tests::answer("n", "");
  answer.answers.clear();
  for (Value& value : values) answer.answers.push_back({"key", std::move(value)});
  return answer;
}

Answer chosen(const std::vector<std::string>& keys) {
  Answer answer = tests::answer("n", "");
  answer.answers.clear();
  for (const std::string& key : keys) answer.answers.push_back(tests::entry(key, "not looked at"));
  return answer;
}

}  // namespace

TEST(ConditionalEvaluation, TestsOneCaseAgainstTheAnswer) {
  struct Row {
    std::string label;
    std::string text;
    Operator operation;
    Case::Value value;
    bool want;
  };
  using enum Operator;
  const Row rows[] = {
      {"a number, not a text", "5.0", equal, number(5), true},
      {"a whole number", "5", notEqual, number(5), false},
      {"another number", "6", notEqual, number(5), true},
      {"no number differs from nothing", "abc", notEqual, number(5), false},
      {"larger by value", "12", greaterThan, number(9), true},
      {"not larger than itself", "9", greaterThan, number(9), false},
      {"smaller by value", "-1", lessThan, number(0), true},
      {"numbers contain nothing", "12", contains, number(1), false},
      {"nor fail to contain", "12", doesNotContain, number(3), false},
      {"leading blank", " 7", equal, number(7), false},
      {"leading tab", "\t7", equal, number(7), false},
      {"trailing blank", "7 ", equal, number(7), false},
      {"leading NUL", std::string("\0", 1), notEqual, number(7), false},
      {"NUL inside", std::string("7\0", 2), equal, number(7), false},
      {"empty", "", notEqual, number(7), false},
      {"sign", "+7", equal, number(7), true},
      {"exponent", "7e1", equal, number(70), true},
      {"hexadecimal", "0x1F", equal, number(31), true},
      {"infinite", "inf", greaterThan, number(1e308), true},
      {"beyond the largest", "1e400", greaterThan, number(1e308), true},
      {"not a number differs from all", "nan", notEqual, number(5), true},
      {"not a number equals none", "NaN", equal, number(5), false},
      {"decimal comma", "1,5", notEqual, number(1), false},

      {"texts are exact", "Yes", equal, string("yes"), false},
      {"texts differ", "Yes", notEqual, string("yes"), true},
      {"texts sort as texts", "12", greaterThan, string("9"), false},
      {"and so are smaller", "12", lessThan, string("9"), true},
      {"bytes are unsigned", "\xc3\xa9", greaterThan, string("z"), true},
      {"composed and decomposed differ", "\xc3\xa9", equal, string("e\xcc\x81"), false},
      {"substring", "abc", contains, string("bc"), true},
      {"everything contains nothing", "abc", contains, string(""), true},
      {"no substring", "abc", doesNotContain, string("ac"), true},

      {"a boolean in capitals", "TRUE", equal, boolean(true), true},
      {"one is true", "1", equal, boolean(true), true},
      {"zero is false", "0", notEqual, boolean(true), true},
      {"false", "False", equal, boolean(false), true},
      {"yes is no boolean", "yes", equal, boolean(true), false},
      {"and differs from none", "yes", notEqual, boolean(true), false},
      {"booleans do not sort", "true", greaterThan, boolean(false), false},
      {"booleans contain nothing", "true", contains, boolean(true), false},
  };
  for (const Row& row : rows) {
    const std::vector<Case> cases{{row.operation, row.value}};
    EXPECT_EQ(holds(typed({Value::string(row.text)}), NodeType::text, Logic::AND, cases), row.want) << row.label;
    EXPECT_EQ(holds(chosen({row.text}), NodeType::boolean, Logic::OR, cases), row.want) << row.label << ", as a key";
  }
}

TEST(ConditionalEvaluation, FlattensTheAnswerByTheTypeOfTheNode) {
  const auto bytes = [](std::string_view text) { return Value::data({text.begin(), text.end()}); };
  struct Row {
    std::string label;
    Answer answer;
    NodeType type;
    std::string want;
  };
  const Row rows[] = {
      {"no entries", chosen({}), NodeType::selectMultiple, ""},
      {"keys are joined", chosen({"a", "b"}), NodeType::selectMultiple, "a;b"},
      {"a medium's key stays", chosen({"a", "mediaUrl"}), NodeType::photo, "a;mediaUrl"},
      {"typed values are joined", typed({Value::string("x"), Value::string("")}), NodeType::number, "x;"},
      {"the year is typed", typed({Value::string("1999")}), NodeType::year, "1999"},
      {"a location is not", typed({Value::string("1999")}), NodeType::location, "key"},
      {"an address", typed({Value::url(*foundation::URL::parse("https://h.test/a%20b"))}), NodeType::text,
       "https://h.test/a%20b"},
      {"bytes", typed({bytes("h\xc3\xa9")}), NodeType::text, "h\xc3\xa9"},
      {"the last code point", typed({bytes("\xf4\x8f\xbf\xbf")}), NodeType::text, "\xf4\x8f\xbf\xbf"},
      {"beyond it", typed({bytes("\xf4\x90\x80\x80")}), NodeType::text, ""},
      {"cut short", typed({bytes("a\xc3"), bytes("b")}), NodeType::text, ";b"},
      {"overlong", typed({bytes("\xc0\xaf")}), NodeType::text, ""},
      {"overlong in three", typed({bytes("\xe0\x80\xaf")}), NodeType::text, ""},
      {"a surrogate", typed({bytes("\xed\xa0\x80")}), NodeType::text, ""},
      {"a lone continuation", typed({bytes("\x80")}), NodeType::text, ""},
  };
  for (const Row& row : rows) {
    EXPECT_TRUE(holds(row.answer, row.type, Logic::AND, {{Operator::equal, string(row.want)}})) << row.label;
  }
}

TEST(ConditionalEvaluation, TakesTheFirstGuardThatHolds) {
  const Case passes = tests::test(Operator::equal, "a");
  const Case fails = tests::test(Operator::equal, "b");
  struct Row {
    std::string label;
    std::vector<ConditionalNode> guards;
    int want;
  };
  const ConditionalNode::Branch branch;
  const Row rows[] = {
      {"no guards", {}, -1},
      {"none holds", {{Logic::AND, {passes, fails}, branch}, {Logic::OR, {fails, fails}, branch}}, -1},
      {"all of them", {{Logic::AND, {passes, passes}, branch}}, 0},
      {"one of them", {{Logic::OR, {fails, passes}, branch}}, 0},
      {"the first of two", {{Logic::AND, {fails}, branch}, {Logic::OR, {passes}, branch}, {Logic::AND, {}, branch}}, 1},
      {"no cases", {{Logic::OR, {}, branch}, {Logic::AND, {}, branch}}, 1},
      {"a guard that leads nowhere", {{Logic::AND, {passes}, {}}, {Logic::AND, {passes}, branch}}, -1},
  };
  for (const Row& row : rows) {
    const auto* selected = selectBranch(chosen({"a"}), tests::leaf("n", NodeType::selectOne), row.guards);
    const auto* want = row.want < 0 ? nullptr : &*row.guards[static_cast<std::size_t>(row.want)].branch;
    EXPECT_EQ(selected, want) << row.label;
  }
}

}  // namespace kestrom::services
