#include "Apps/kestrom/Lint/RepeatRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"

#include <algorithm>
#include <string_view>

namespace kestrom::app {

using models::BotNode;

namespace {

bool isAffirmative(std::string_view key) {
  const auto reads = [key](std::string_view word) {
    return std::ranges::equal(key, word, [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + ('a' - 'A') : a) == b; });
  };
  return reads("true") || reads("yes");
}

/// Whether some answer to the node makes a list repeat of which it is the first child.
bool canRepeat(const BotNode& node) {
  return kindOf(node) != NodeKind::sequence && std::ranges::any_of(firstAnswerKeys(node), isAffirmative);
}

void checkGate(const WalkedList& list, const UnsoundNodes& unsound, LintReport& report) {
  const BotNode& first = list.nodes->front();
  const Place firstPlace = list.place.element(0);
  if (unsound.contains(firstPlace) || canRepeat(first)) return;

  const bool isQuestionWithOptions =
      kindOf(first) != NodeKind::sequence && asksForChoice(first) && !optionsOf(first).empty();
  for (std::size_t index = 1; !isQuestionWithOptions && index < list.nodes->size(); ++index) {
    const Place place = list.place.element(index);
    if (unsound.contains(place) || !canRepeat((*list.nodes)[index])) continue;
    report.add(rules::kGateNotFirst, place,
               "the device decides on a repeat by the answer to the first child alone, and this yes/no question is child " +
                   std::to_string(index + 1) + ": its answer is not looked at, and the list is walked once");
    return;
  }
  report.add(rules::kGateNeverRepeats, firstPlace,
             "the first child of what repeats is its gate question, and no answer to this one has the key \"yes\" or "
             "\"true\": the list is walked once and never repeated");
}

}  // namespace

void checkRepeats(const TemplateVisit& visit, const UnsoundNodes& unsound, LintReport& report) {
  if (!visit.node.repeatable.value_or(false)) return;
  for (const WalkedList& list : visit.lists) {
    if (!list.nodes->empty()) {
      checkGate(list, unsound, report);
      continue;
    }
    report.add(rules::kEndlessRepeat, list.place,
               "what repeats here is an empty list, without a gate question that could end it: a device may spin here "
               "for ever");
  }
}

}  // namespace kestrom::app
