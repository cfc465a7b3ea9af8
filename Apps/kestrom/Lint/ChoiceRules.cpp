#include "Apps/kestrom/Lint/ChoiceRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>

namespace kestrom::app {

using models::AdventureNode;
using models::BotNode;
using models::ConversationDTO;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;

namespace {

/// Lower bound of a year without "minValue".
constexpr std::int64_t kEarliestYear = 1800;
/// What the chat's text field holds without "maxLength".
constexpr std::int64_t kLongestText = 100;

std::string typeName(const BotNode& node) {
  return '"' + std::string(models::wireString(node.type)) + '"';
}

void checkOptions(const TemplateVisit& visit, LintReport& report) {
  if (visit.kind == NodeKind::sequence || !asksForChoice(visit.node) || !optionsOf(visit.node).empty()) return;
  const Place at = visit.node.options ? visit.place.member("options") : visit.place;
  report.add(rules::kChoiceWithoutOptions, at,
             "a question of type " + typeName(visit.node) +
                 " is answered by picking an option, and there is none: it has no answer, and the conversation stops "
                 "here");
}

void checkValueRange(const TemplateVisit& visit, LintReport& report) {
  const auto& options = *visit.node.options;
  const bool isYear = visit.node.type == Type::year;
  const std::optional<std::int64_t> low = isYear ? options.minValue.value_or(kEarliestYear) : options.minValue;
  if (!low || !options.maxValue || *low <= *options.maxValue) return;
  const std::string range = options.minValue ? "\"minValue\" " + std::to_string(*low)
                                             : "the lower bound of a year, " + std::to_string(*low) + ",";
  const bool isRead = (isYear || visit.node.type == Type::number) && visit.kind != NodeKind::sequence;
  report.add(rules::kInvertedValueRange, visit.place.member("options").member(options.minValue ? "minValue" : "maxValue"),
             range + " is above \"maxValue\" " + std::to_string(*options.maxValue) +
                 (isRead ? ": no input is within the bounds, and the app stops when it builds their range"
                         : "; nothing reads the bounds of a node of type " + typeName(visit.node) +
                               ", but where they are read, the app stops"));
}

void checkLengthRange(const TemplateVisit& visit, LintReport& report) {
  const auto& options = *visit.node.options;
  if (!options.minLength) return;
  const std::int64_t low = *options.minLength;
  const bool isRead = visit.node.type == Type::text && visit.kind != NodeKind::sequence;
  const Place at = visit.place.member("options").member("minLength");
  if (options.maxLength && low > *options.maxLength) {
    report.add(rules::kInvertedLengthRange, at,
               "\"minLength\" " + std::to_string(low) + " is above \"maxLength\" " + std::to_string(*options.maxLength) +
                   (isRead ? ": no text is within the bounds, and the app stops when it builds their range"
                           : "; nothing reads the lengths of a node of type " + typeName(visit.node) +
                                 ", but where they are read, the app stops"));
  } else if (!options.maxLength && low > kLongestText && isRead) {
    report.add(rules::kInvertedLengthRange, at,
               "\"minLength\" " + std::to_string(low) + " is above the " + std::to_string(kLongestText) +
                   " characters that the field holds without \"maxLength\": no text is long enough, and the "
                   "conversation stops here");
  }
}

void checkArmKeys(const TemplateVisit& visit, LintReport& report) {
  const auto& arms = *visit.node.adventures;
  const Place place = visit.place.member("adventures");
  std::unordered_set<std::string_view> seen;
  for (std::size_t index = 0; index < arms.size(); ++index) {
    if (seen.insert(arms[index].key).second) continue;
    report.add(rules::kDuplicateArmKey, place.element(index).member("key"),
               "an earlier arm has the key " + quoted(arms[index].key) +
                   " too and is always taken: this arm is never walked, and since the menu closes only after as many "
                   "choices as it has arms, the user has to go through an arm twice to leave it");
  }
}

/// The keys of a menu's options and of its arms must be the same, or a choice leads nowhere or an arm is never chosen.
void checkMenuKeys(const TemplateVisit& visit, LintReport& report) {
  const BotNode& node = visit.node;
  const auto& arms = *node.adventures;
  std::unordered_set<std::string_view> armKeys;
  for (const AdventureNode& arm : arms) armKeys.insert(arm.key);

  // What the menu is answered with at first is not an option's key where typing, a capture or nothing answers it.
  const std::vector<std::string> firstKeys = firstAnswerKeys(node);
  std::unordered_set<std::string_view> offered(firstKeys.begin(), firstKeys.end());
  const auto& options = optionsOf(node);
  const Place values = visit.place.member("options").member("values");
  std::unordered_set<std::string_view> optionKeys;
  for (std::size_t index = 0; index < options.size(); ++index) {
    const std::string& key = options[index].key;
    if (!optionKeys.insert(key).second || armKeys.contains(key)) continue;
    report.add(rules::kMenuKeyMismatch, values.element(index).member("key"),
               "the option " + quoted(key) +
                   " names no arm of the menu: whoever picks it gets no further message, and the conversation stops "
                   "here");
  }
  for (const std::string& key : firstKeys) {
    if (optionKeys.contains(key) || armKeys.contains(key)) continue;
    report.add(rules::kMenuKeyMismatch, visit.place.member("type"),
               "a menu of type " + typeName(node) + " is answered with the key " + quoted(key) +
                   ", which names no arm: no message follows, and the conversation stops here");
  }

  // From the second showing on, the menu is a single choice of its options.
  if (arms.size() > 1) offered.insert(optionKeys.begin(), optionKeys.end());
  const Place place = visit.place.member("adventures");
  for (std::size_t index = 0; index < arms.size(); ++index) {
    if (offered.contains(arms[index].key) || armKeys.erase(arms[index].key) == 0) continue;
    report.add(rules::kMenuKeyMismatch, place.element(index).member("key"),
               "no option has the arm's key " + quoted(arms[index].key) +
                   ": the arm is never walked, and since the menu closes only after as many choices as it has arms, "
                   "the user has to go through another arm twice to leave it");
  }
}

}  // namespace

void checkChoices(const TemplateVisit& visit, LintReport& report) {
  checkOptions(visit, report);
  if (visit.node.options) {
    checkValueRange(visit, report);
    checkLengthRange(visit, report);
  }
  if (visit.kind != NodeKind::menu) return;
  checkArmKeys(visit, report);
  const bool hasNothingToPick = asksForChoice(visit.node) && optionsOf(visit.node).empty();
  if (!hasNothingToPick && answerFormOf(visit.node) != AnswerForm::none) checkMenuKeys(visit, report);
}

}  // namespace kestrom::app
