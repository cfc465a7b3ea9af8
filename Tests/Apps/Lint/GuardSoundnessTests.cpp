#include "Core/Models/BotTemplateCoding.hpp"
#include "Core/Services/Bot/ConditionalEvaluation.hpp"
#include "Tests/Apps/Lint/LintTesting.hpp"

#include <charconv>
#include <map>
#include <random>
#include <span>

/// Random guards against answers that a user could give: what the linter says must be true of each of them.
namespace kestrom::app {

namespace {

using namespace kestrom::test;
using Answers = std::vector<models::NativeBotEngineAnswerDTO>;
using Value = models::ConversationDTO::AnswerDTO::Value;

/// A question, the literals that its guards are made of, and answers to it.
struct Question {
  std::string type;
  std::string options;
  std::vector<std::string> literals;
  /// Keys of choices, or what was typed.
  std::vector<std::vector<std::string>> answers;
  bool areAllAnswers;
};

std::vector<std::vector<std::string>> typedAnswers(std::vector<std::string> texts) {
  std::vector<std::vector<std::string>> answers;
  for (std::string& text : texts) answers.push_back({std::move(text)});
  return answers;
}

std::vector<std::vector<std::string>> selectionsOf(const std::vector<std::string>& keys, std::size_t longest) {
  std::vector<std::vector<std::string>> selections{{}};
  for (std::size_t at = 0; at < selections.size(); ++at) {
    if (selections[at].size() == longest) continue;
    for (const std::string& key : keys) {
      if (std::ranges::find(selections[at], key) != selections[at].end()) continue;
      auto longer = selections[at];
      longer.push_back(key);
      selections.push_back(std::move(longer));
    }
  }
  return selections;
}

std::vector<Question> questions() {
  std::vector<std::string> wholeNumbers;
  for (int number = 3; number <= 9; ++number) {
    for (const std::string form : {"", "0", "+", "+00"}) wholeNumbers.push_back(form + std::to_string(number));
  }
  const std::vector<std::string> numbers{"2",  "3",     "3.5", "6",    "6.0", "9",   "10",
                                         "-1", "1e300", "'6'", "'+6'", "'x'", "true"};
  const std::vector<std::string> texts{"''", "'a'", "'ab'", "'b'",  "'5'",  "'true'",
                                       "5",  "1",   "0",    "-2.5", "true", "false"};
  return {
      {"number", ",'options':{'minValue':3,'maxValue':9}", numbers, typedAnswers(wholeNumbers), false},
      {"text", "", texts,
       typedAnswers({"",     "a",  "ab",   "abc",  "b",    "c",     "5",   "+5",  "5.0",  "5.5", "4",  "1",  "0",
                     "-2.5", "-3", "true", "TRUE", "True", "False", "nan", "inf", "-inf", "0x5", " 5", "5 ", "a;b"}),
       false},
      {"select_one", options({"'a'", "'ab'", "true", "5", "'0'"}), texts, typedAnswers({"a", "ab", "true", "5", "0"}),
       true},
      {"select_multiple",
       options({"'a'", "'ab'", "5"}),
       {"''", "'a'", "'ab'", "'a;ab'", "'5'", "5", "4", "true", "';'"},
       selectionsOf({"a", "ab", "5"}, 3),
       true},
      {"select_multiple",
       options({"'a'", "'ab'", "'b'", "'c'", "'d'", "'e'", "1", "'g'"}),
       {"''", "'a'", "'ab'", "'c'", "'d'", "'e;a'", "'x'", "'a;a'", "1", "0", "true", "';'", "'1'"},
       selectionsOf({"a", "ab", "b", "c", "d", "e", "1", "g"}, 3),
       false},
  };
}

Answers answersOf(const Question& question) {
  Answers answers;
  for (const auto& parts : question.answers) {
    auto& answer = answers.emplace_back();
    for (const std::string& part : parts) answer.answers.push_back({part, Value::string(part)});
  }
  return answers;
}

std::string randomGuards(const Question& question, std::mt19937& random) {
  const auto pick = [&](std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random); };
  const std::vector<std::string> operations{"equal",    "notEqual", "greaterThan",
                                            "lessThan", "contains", "doesNotContain"};
  std::string guards;
  for (std::size_t count = 1 + pick(4); count > 0; --count) {
    std::string cases;
    for (std::size_t tests = pick(4); tests > 0; --tests) {
      cases += (cases.empty() ? "" : ",") +
               when(operations[pick(operations.size())], question.literals[pick(question.literals.size())]);
    }
    guards += (guards.empty() ? "" : ",") + guard(pick(2) == 0 ? "AND" : "OR", cases);
  }
  return guards;
}

/// The guard that each answer selects; their number for none.
std::vector<std::size_t> selectedGuards(const models::BotNode& node, const Answers& answers) {
  const auto& guards = *node.branches;
  std::vector<std::size_t> selected;
  for (const auto& answer : answers) {
    const auto* branch = services::selectBranch(answer, node, guards);
    const auto isIt = [branch](const models::ConditionalNode& guard) { return &*guard.branch == branch; };
    selected.push_back(static_cast<std::size_t>(std::ranges::find_if(guards, isIt) - guards.begin()));
  }
  return selected;
}

std::size_t indexBehind(std::string_view text, std::string_view key) {
  const std::size_t at = text.find(key) + key.size();
  std::size_t index = 0;
  std::from_chars(text.data() + at, text.data() + text.size(), index);
  return index;
}

TEST(GuardSoundness, SaysNothingThatAnAnswerContradicts) {
  std::mt19937 random(20260101);
  std::map<std::string, int> told;
  for (const Question& question : questions()) {
    const Answers answers = answersOf(question);
    for (int round = 0; round < 400; ++round) {
      const std::string text =
          node("q", question.type, question.options + ",'branches':[" + randomGuards(question, random) + "]");
      const auto whole = models::decodeBotTemplate(json("{'sequence':[" + text + "]}"));
      ASSERT_TRUE(whole) << text;
      const models::BotNode& asked = whole->sequence[0];
      const std::vector<std::size_t> selected = selectedGuards(asked, answers);
      std::vector<bool> isExcused(asked.branches->size(), false);
      for (const std::string& line : lintList(text)) {
        const std::size_t index = indexBehind(line, ".branches[");
        if (line.contains("shadowing-guard")) {
          EXPECT_TRUE(std::ranges::all_of(selected, [&](std::size_t guard) { return guard <= index; })) << line << text;
          std::fill(isExcused.begin() + static_cast<std::ptrdiff_t>(index) + 1, isExcused.end(), true);
        } else if (line.contains(".cases[") && line.contains("dead-guard")) {
          const auto& test = (*asked.branches)[index].cases[indexBehind(line, ".cases[")];
          const models::ConditionalNode probe{
              models::ConditionalNode::LogicalOperator::AND, {test}, models::ConditionalNode::Branch{}};
          EXPECT_TRUE(std::ranges::none_of(answers,
                                           [&](const auto& answer) {
                                             return services::selectBranch(answer, asked, std::span(&probe, 1)) !=
                                                    nullptr;
                                           }))
              << line << text;
        } else if (line.contains("dead-guard")) {
          EXPECT_EQ(std::ranges::count(selected, index), 0) << line << text;
          isExcused[index] = true;
        }
        ++told[line.substr(line.rfind('['))];
      }
      for (std::size_t index = 0; question.areAllAnswers && index < isExcused.size(); ++index) {
        EXPECT_TRUE(isExcused[index] || std::ranges::count(selected, index) > 0) << index << text;
      }
    }
  }
  // The guards must be such that both kinds of finding come up, and often.
  EXPECT_GT(told["[dead-guard]"], 100);
  EXPECT_GT(told["[shadowing-guard]"], 100);
}

}  // namespace

}  // namespace kestrom::app
