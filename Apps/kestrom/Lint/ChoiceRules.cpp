#include "Apps/kestrom/Lint/ChoiceRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kestrom::app {

using models::BotNode;
using models::ConversationDTO;
using Option = ConversationDTO::MessageDTO::OptionsDTO::ValueDTO;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;

namespace {

/// What the chat's text field holds without "maxLength".
constexpr std::int64_t kLongestText = 100;

void checkHasOptions(const TemplateVisit& visit, LintReport& report) {
  const BotNode& node = visit.node;
  const auto& options = optionsOf(node);
  const bool isCapture = opensCamera(node.type);
  const Place at = node.options ? visit.place.member("options") : visit.place;
  if (options.empty()) {
    const bool needsButton = isCapture || node.type == Type::location;
    report.add(needsButton ? rules::kCaptureWithoutCamera : rules::kChoiceWithoutOptions, at,
               "a question of type " + quoted(models::wireString(node.type)) +
                   (needsButton ? " is answered behind one of its options, and it has none: there is no button"
                                : " is answered by picking an option, and it has none: there is nothing to pick") +
                   ", and the conversation stops here");
    return;
  }
  const auto declines = [](const Option& option) { return !option.showCamera.value_or(true); };
  if (isCapture && std::ranges::all_of(options, declines)) {
    report.add(
        rules::kCaptureWithoutCamera, Severity::warning, at.member("values"),
        "every option declines by \"showCamera\" false: no button opens the camera, and nothing can be captured");
  }
}

void checkOptionKeys(const TemplateVisit& visit, LintReport& report) {
  const auto& options = optionsOf(visit.node);
  const Place values = visit.place.member("options").member("values");
  std::unordered_map<std::string_view, std::size_t> seen;
  for (std::size_t index = 0; index < options.size(); ++index) {
    const auto [first, isNew] = seen.try_emplace(options[index].key, index);
    if (isNew) continue;
    report.add(rules::kDuplicateOptionKey, values.element(index).member("key"),
               "option " + std::to_string(first->second + 1) + " has the key " + quoted(options[index].key) +
                   " too: guards and menus cannot tell the two apart, and " +
                   (visit.node.type == Type::selectMultiple ? "a tap on this one ticks that one"
                                                            : "they get their marks together"));
  }
}

void checkValueRange(const TemplateVisit& visit, std::int64_t presentYear, LintReport& report) {
  const auto& options = *visit.node.options;
  const bool isYear = visit.node.type == Type::year;
  std::optional<std::int64_t> low = options.minValue;
  std::optional<std::int64_t> high = options.maxValue;
  if (isYear) {
    low = low.value_or(kEarliestYear);
    high = high.value_or(presentYear);
  }
  if (!low || !high || *low <= *high) return;
  const Place place = visit.place.member("options");
  if (!options.minValue && !options.maxValue) return;
  report.add(rules::kInvertedValueRange, place.member(options.minValue ? "minValue" : "maxValue"),
             "the lower bound " + std::to_string(*low) + (options.minValue ? "" : " of every year") +
                 " is above the upper bound " + std::to_string(*high) +
                 (options.maxValue ? "" : ", which is the present year") +
                 ": the app stops when the user sends an answer");
}

void checkLengthRange(const TemplateVisit& visit, LintReport& report) {
  const auto& options = *visit.node.options;
  const Place place = visit.place.member("options");
  if (options.maxLength.value_or(0) < 0) {
    report.add(rules::kInvertedLengthRange, place.member("maxLength"),
               "no text is shorter than nothing: none is ever accepted, and the conversation stops here");
    return;
  }
  if (!options.minLength) return;
  const std::string low = std::to_string(*options.minLength);
  if (options.maxLength && *options.minLength > *options.maxLength) {
    report.add(rules::kInvertedLengthRange, place.member("minLength"),
               "the least length " + low + " is above the greatest length " + std::to_string(*options.maxLength) +
                   ": the app stops when the user sends an answer");
  } else if (!options.maxLength && *options.minLength > kLongestText) {
    report.add(rules::kInvertedLengthRange, place.member("minLength"),
               "the least length " + low + " is above the " + std::to_string(kLongestText) +
                   " characters that the field takes without \"maxLength\": no text is ever accepted, and the "
                   "conversation stops here");
  }
}

}  // namespace

void checkChoices(const TemplateVisit& visit, std::int64_t presentYear, LintReport& report) {
  if (visit.kind == NodeKind::sequence) return;
  if (asksForChoice(visit.node)) {
    checkHasOptions(visit, report);
    checkOptionKeys(visit, report);
  }
  if (!visit.node.options) return;
  if (visit.node.type == Type::year || visit.node.type == Type::number) checkValueRange(visit, presentYear, report);
  if (visit.node.type == Type::text) checkLengthRange(visit, report);
}

}  // namespace kestrom::app
