#include "Apps/kestrom/Lint/GuardRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"
#include "Apps/kestrom/Lint/AnswerSamples.hpp"
#include "Core/Services/Bot/ConditionalEvaluation.hpp"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace kestrom::app {

using models::BotNode;
using models::ConditionalNode;
using models::ConversationDTO;
using models::NativeBotEngineAnswerDTO;
using Case = ConditionalNode::Case;
using LogicalOperator = ConditionalNode::LogicalOperator;
using Operator = Case::Operator;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;

namespace {

/// Tests that are spent on one node. A template of people stays far below; a hostile one could take hours.
constexpr std::size_t kMaximumTests = 2'000'000;

bool isEmptyString(const Case& test) {
  const auto* string = std::get_if<Case::Value::String>(&test.value.form);
  return string != nullptr && string->value.empty();
}

/// Judges guards by what the device's own evaluation says of the samples.
class GuardJudge {
 public:
  GuardJudge(const BotNode& node, const AnswerSamples& samples) : _node(node), _samples(samples) {}

  /// For which samples the guard holds.
  std::vector<bool> outcomes(const ConditionalNode& guard) const {
    // Without what lies below, which costs copying; with a branch, which tells "holds" from "nothing".
    const ConditionalNode probe{guard.logicalOperator, guard.cases, ConditionalNode::Branch{}};
    std::vector<bool> outcomes;
    for (const NativeBotEngineAnswerDTO& answer : _samples.answers()) {
      outcomes.push_back(services::selectBranch(answer, _node, std::span(&probe, 1)) != nullptr);
    }
    return outcomes;
  }

  /// Whether `outcomes` say all about the guard.
  bool isCertain(const ConditionalNode& guard) const {
    return _samples.areEnoughTogether() &&
           std::ranges::all_of(guard.cases, [&](const Case& test) { return _samples.areEnoughFor(test); });
  }

  bool neverHolds(const Case& test) const {
    if (_samples.areEnoughFor(test)) return !holdsForAny({LogicalOperator::AND, {test}, {}});
    return isEmptyString(test) && (test.operation == Operator::doesNotContain || test.operation == Operator::lessThan);
  }

  bool neverHolds(const ConditionalNode& guard) const {
    const auto never = [&](const Case& test) { return neverHolds(test); };
    if (guard.logicalOperator == LogicalOperator::OR) return std::ranges::all_of(guard.cases, never);
    if (std::ranges::any_of(guard.cases, never)) return true;
    // A case that allows one text only makes that text the one sample that counts.
    const auto namesText = [](const Case& test) {
      return test.operation == Operator::equal && std::holds_alternative<Case::Value::String>(test.value.form);
    };
    const bool isKnown =
        isCertain(guard) || (_samples.areEnoughTogether() && std::ranges::any_of(guard.cases, namesText));
    return isKnown && !holdsForAny(guard);
  }

  /// Whether the guard holds for every text.
  static bool holdsForEverything(const ConditionalNode& guard) {
    const auto always = [](const Case& test) { return isEmptyString(test) && test.operation == Operator::contains; };
    return guard.logicalOperator == LogicalOperator::AND ? std::ranges::all_of(guard.cases, always)
                                                         : std::ranges::any_of(guard.cases, always);
  }

 private:
  bool holdsForAny(const ConditionalNode& guard) const {
    const std::vector<bool> holds = outcomes(guard);
    return std::ranges::find(holds, true) != holds.end();
  }

  const BotNode& _node;
  const AnswerSamples& _samples;
};

/// For a finding: what can be answered where that is a list.
std::string possibleKeys(const BotNode& node) {
  constexpr std::size_t kMaximumKeys = 6;
  const AnswerForm form = answerFormOf(node);
  if (form != AnswerForm::singleChoice && form != AnswerForm::multipleChoice) return {};
  std::string text;
  const std::vector<std::string> keys = firstAnswerKeys(node);
  for (std::size_t index = 0; index < keys.size() && index < kMaximumKeys; ++index) {
    text += (index == 0 ? " (keys are " : ", ") + quoted(keys[index]);
  }
  return text + (keys.size() > kMaximumKeys ? ", …)" : ")");
}

/// For a finding: why a case can never hold, where its literal says so.
std::string_view impossibleTest(const Case& test) {
  const bool isPart = test.operation == Operator::contains || test.operation == Operator::doesNotContain;
  const bool isOrder = test.operation == Operator::greaterThan || test.operation == Operator::lessThan;
  if (std::holds_alternative<Case::Value::Number>(test.value.form) && isPart) {
    return "; a number has no parts, write it in quotes to look for it in a text";
  }
  if (std::holds_alternative<Case::Value::Bool>(test.value.form) && (isPart || isOrder)) {
    return "; a boolean is only ever equal or not equal";
  }
  return {};
}

std::optional<std::size_t> sameGuardBefore(std::span<const ConditionalNode> guards, std::size_t index) {
  for (std::size_t earlier = 0; earlier < index; ++earlier) {
    if (guards[earlier].logicalOperator == guards[index].logicalOperator &&
        guards[earlier].cases == guards[index].cases) {
      return earlier;
    }
  }
  return std::nullopt;
}

void reportDeadCases(const ConditionalNode& guard, const Place& place, const GuardJudge& judge, const BotNode& node,
                     LintReport& report) {
  if (guard.logicalOperator != LogicalOperator::OR) return;
  const Place cases = place.member("cases");
  for (std::size_t index = 0; index < guard.cases.size(); ++index) {
    if (!judge.neverHolds(guard.cases[index])) continue;
    report.add(rules::kDeadGuard, cases.element(index),
               "no answer to the question" + possibleKeys(node) +
                   " passes this case: only the other cases lead to the branch" +
                   std::string(impossibleTest(guard.cases[index])));
  }
}

/// Which answers are left when the search comes to a guard, and what that says about the guard.
class GuardSearch {
 public:
  GuardSearch(const GuardJudge& judge, std::size_t samples) : _judge(judge), _isTaken(samples, false) {}

  enum class Result : std::uint8_t { fine, neverReached, takesAll };

  Result pass(const ConditionalNode& guard) {
    _isCertain = _isCertain && _judge.isCertain(guard);
    if (!_isCertain) return GuardJudge::holdsForEverything(guard) ? Result::takesAll : Result::fine;
    const std::vector<bool> holds = _judge.outcomes(guard);
    bool takesSome = false;
    bool leavesSome = false;
    for (std::size_t sample = 0; sample < holds.size(); ++sample) {
      if (_isTaken[sample]) continue;
      (holds[sample] ? takesSome : leavesSome) = true;
      _isTaken[sample] = holds[sample];
    }
    if (!takesSome) return Result::neverReached;
    return leavesSome ? Result::fine : Result::takesAll;
  }

 private:
  const GuardJudge& _judge;
  std::vector<bool> _isTaken;
  bool _isCertain = true;
};

void checkReach(const TemplateVisit& visit, const AnswerSamples& samples, LintReport& report) {
  const auto& guards = *visit.node.branches;
  const Place place = visit.place.member("branches");
  const GuardJudge judge(visit.node, samples);
  GuardSearch search(judge, samples.answers().size());
  const std::string dead = "no answer to the question" + possibleKeys(visit.node) + " satisfies this guard";
  for (std::size_t index = 0; index < guards.size(); ++index) {
    const ConditionalNode& guard = guards[index];
    const Place at = place.element(index);
    if (judge.neverHolds(guard)) {
      std::string_view why = guard.cases.empty() ? "; \"OR\" without cases never holds" : "";
      for (const Case& test : guard.cases) why = why.empty() ? impossibleTest(test) : why;
      report.add(rules::kDeadGuard, at, dead + ": its branch is never walked" + std::string(why));
      continue;
    }
    reportDeadCases(guard, at, judge, visit.node, report);
    if (const auto same = sameGuardBefore(guards, index)) {
      report.add(rules::kDeadGuard, at,
                 "guard " + std::to_string(*same + 1) + " tests the same and comes first: this branch is never walked");
      continue;
    }
    const GuardSearch::Result result = search.pass(guard);
    if (result == GuardSearch::Result::neverReached) {
      report.add(rules::kDeadGuard, at,
                 "every answer that satisfies this guard satisfies an earlier one: this branch is never walked");
    }
    if (result != GuardSearch::Result::takesAll) continue;
    if (index + 1 < guards.size()) {
      report.add(rules::kShadowingGuard, at,
                 "every answer that comes to this guard satisfies it: the guards behind it are never tried");
    }
    return;
  }
}

void checkCases(const TemplateVisit& visit, LintReport& report) {
  const bool isSelection = answerFormOf(visit.node) == AnswerForm::multipleChoice;
  const bool isNumeric = visit.node.type == Type::number || visit.node.type == Type::year;
  const auto& guards = *visit.node.branches;
  const auto& options = optionsOf(visit.node);
  const Place branches = visit.place.member("branches");
  for (std::size_t guard = 0; guard < guards.size(); ++guard) {
    for (std::size_t index = 0; index < guards[guard].cases.size(); ++index) {
      const Case& test = guards[guard].cases[index];
      const auto* string = std::get_if<Case::Value::String>(&test.value.form);
      if (string == nullptr || string->value.empty()) continue;
      const auto place = [&] { return branches.element(guard).member("cases").element(index); };
      const bool isPart = test.operation == Operator::contains || test.operation == Operator::doesNotContain;
      const bool isOrder = test.operation == Operator::greaterThan || test.operation == Operator::lessThan;
      const auto holdsText = [&](const auto& option) { return option.key.contains(string->value); };
      if (isSelection && isPart && std::ranges::count_if(options, holdsText) > 1) {
        report.add(rules::kMisleadingCase, place(),
                   quoted(string->value) +
                       " is part of more than one option's key, so that the case takes each of them "
                       "for it, and the branch is chosen by answers that were not meant");
      }
      if (isNumeric && isOrder) {
        report.add(rules::kMisleadingCase, place(),
                   "a literal in quotes is compared in the order of text, in which \"12\" comes before \"9\": the "
                   "branch is chosen by answers that were not meant");
      }
    }
  }
}

}  // namespace

void checkGuards(const TemplateVisit& visit, std::int64_t presentYear, LintReport& report) {
  if (visit.kind != NodeKind::branching || visit.node.branches->empty()) return;
  checkCases(visit, report);

  // A question that nobody can answer is told as such.
  const bool hasNothingToPick = asksForChoice(visit.node) && optionsOf(visit.node).empty();
  const AnswerSamples samples(visit.node, presentYear);
  if (hasNothingToPick || samples.answers().empty()) return;
  const std::size_t guards = visit.node.branches->size();
  std::size_t cases = guards;
  for (const ConditionalNode& guard : *visit.node.branches) cases += guard.cases.size();
  if (cases > kMaximumTests / samples.answers().size() || guards > kMaximumTests / guards) return;
  checkReach(visit, samples, report);
}

}  // namespace kestrom::app
