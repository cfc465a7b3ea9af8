#include "Apps/kestrom/Lint/RepeatRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"
#include "Core/Services/Bot/LowerCase.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::app {

using models::BotNode;

namespace {

bool isAffirmative(std::string_view key) {
  return services::readsInLowerCase(key, "true") || services::readsInLowerCase(key, "yes");
}

/// The keys with which the node, as the gate of a list, can be answered.
std::vector<std::string> gateKeys(const BotNode& node) {
  return kindOf(node) == NodeKind::sequence ? std::vector<std::string>{} : firstAnswerKeys(node);
}

void checkGate(const TemplateVisit& visit, const WalkedList& list, const UnsoundNodes& unsound, LintReport& report) {
  const BotNode& first = list.nodes->front();
  const Place firstPlace = list.place.element(0);
  if (unsound.contains(firstPlace)) return;

  const std::vector<std::string> keys = gateKeys(first);
  if (std::ranges::any_of(keys, isAffirmative)) {
    const bool isBounded = visit.node.repeatableDetails && visit.node.repeatableDetails->maxRepeats;
    // A multiple choice can also be answered with nothing, which ends the repeat.
    const bool canBeEmpty = answerFormOf(first) == AnswerForm::multipleChoice;
    if (isBounded || canBeEmpty || !std::ranges::all_of(keys, isAffirmative)) return;
    report.add(rules::kGateAlwaysRepeats, firstPlace,
               "every answer to the gate question of this repeat has the key \"yes\" or \"true\", and there is no "
               "\"maxRepeats\": each answer leads to one more pass, and nobody ever gets out");
    return;
  }

  const bool hasOptions = kindOf(first) != NodeKind::sequence && asksForChoice(first) && !optionsOf(first).empty();
  for (std::size_t index = 1; !hasOptions && index < list.nodes->size(); ++index) {
    const Place place = list.place.element(index);
    if (unsound.contains(place) || !std::ranges::any_of(gateKeys((*list.nodes)[index]), isAffirmative)) continue;
    report.add(rules::kGateNotFirst, place,
               "the first child alone is the gate question of a repeat, and this yes/no question is child " +
                   std::to_string(index + 1) + ": its answer decides nothing, and the list is never repeated");
    return;
  }
  report.add(rules::kGateNeverRepeats, firstPlace,
             "the first child is the gate question of the repeat, and no answer to this one has the key \"yes\" or "
             "\"true\": the list is walked once and never repeated");
}

void checkRepeatText(const TemplateVisit& visit, LintReport& report) {
  const auto& details = visit.node.repeatableDetails;
  if (details && !details->repeatText.empty()) return;
  report.add(
      rules::kMissingRepeatText, details ? visit.place.member("repeatableDetails").member("repeatText") : visit.place,
      details ? "from the second pass on the gate question is an empty bubble, as the text of the repeat is empty"
              : "from the second pass on the gate question reads \"missing\", as there is no text of the repeat");
}

}  // namespace

void checkRepeats(const TemplateVisit& visit, const UnsoundNodes& unsound, LintReport& report) {
  if (!visit.node.repeatable.value_or(false) || visit.kind == NodeKind::leaf) return;
  bool hasGate = false;
  for (const WalkedList& list : visit.lists) {
    hasGate = hasGate || !list.nodes->empty();
    if (!list.nodes->empty()) continue;
    report.add(
        rules::kEndlessRepeat, list.place,
        "what repeats here is an empty list, without a gate question that could end the repeat: it is left after "
        "one pass, as if it did not repeat");
  }
  if (!isRepeating(visit.node)) {
    report.add(rules::kGateNeverRepeats, visit.place.member("repeatableDetails").member("maxRepeats"),
               "\"maxRepeats\" counts passes, the first one included: below 2 the list is walked once and never "
               "repeated");
    return;
  }
  if (visit.isInRepeat) {
    report.add(rules::kNestedRepeat, visit.place,
               "this repeat lies in another one and counts its passes from 0 in each pass of the outer one: later "
               "answers take the place of earlier ones, are asked again after a restart, and the repeat ends unasked "
               "where it ended before");
  }
  if (!hasGate) return;
  checkRepeatText(visit, report);
  for (const WalkedList& list : visit.lists) {
    if (!list.nodes->empty()) checkGate(visit, list, unsound, report);
  }
}

}  // namespace kestrom::app
