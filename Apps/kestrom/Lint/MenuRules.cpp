#include "Apps/kestrom/Lint/MenuRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>

namespace kestrom::app {

using models::AdventureNode;
using models::BotNode;
using models::ConversationDTO;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;

namespace {

constexpr std::string_view kNoWayOut =
    "it still counts, and since the menu closes only after as many picks as it has arms, some option has to be picked "
    "a "
    "second time and its questions answered twice";

std::unordered_set<std::string_view> armKeysOf(const BotNode& node) {
  std::unordered_set<std::string_view> keys;
  for (const AdventureNode& arm : *node.adventures) keys.insert(arm.key);
  return keys;
}

bool isSingleChoiceOfKeys(const BotNode& node) {
  return answerFormOf(node) == AnswerForm::singleChoice && !opensCamera(node.type) && node.type != Type::location;
}

void checkType(const TemplateVisit& visit, LintReport& report) {
  const BotNode& node = visit.node;
  if (isSingleChoiceOfKeys(node) || answerFormOf(node) == AnswerForm::none) return;
  const Place at = visit.place.member("type");
  if (node.type == Type::selectMultiple) {
    report.add(rules::kMenuType, Severity::warning, at,
               "of several options that are ticked at once only one arm is walked, the first one in the template, but "
               "all of them get their mark; the others have to be picked again");
    return;
  }
  const auto armKeys = armKeysOf(node);
  const auto namesArm = [&](const std::string& key) { return armKeys.contains(key); };
  if (std::ranges::all_of(firstAnswerKeys(node), namesArm)) return;
  report.add(rules::kMenuType, at,
             "a question of type " + quoted(models::wireString(node.type)) +
                 " is not answered with an option's key, so that its answer names no arm: no question follows, and the "
                 "conversation stops here");
}

void checkArmKeys(const TemplateVisit& visit, LintReport& report) {
  const auto& arms = *visit.node.adventures;
  const Place place = visit.place.member("adventures");
  std::unordered_set<std::string_view> seen;
  for (std::size_t index = 0; index < arms.size(); ++index) {
    if (seen.insert(arms[index].key).second) continue;
    report.add(rules::kDuplicateArmKey, place.element(index).member("key"),
               "an earlier arm has the key " + quoted(arms[index].key) +
                   " too and is taken by every pick, so that this one is never walked; " + std::string(kNoWayOut));
  }
}

void checkKeys(const TemplateVisit& visit, LintReport& report) {
  const auto& options = optionsOf(visit.node);
  const auto armKeys = armKeysOf(visit.node);
  const Place values = visit.place.member("options").member("values");
  std::unordered_set<std::string_view> optionKeys;
  for (std::size_t index = 0; index < options.size(); ++index) {
    const std::string& key = options[index].key;
    if (!optionKeys.insert(key).second || armKeys.contains(key)) continue;
    report.add(rules::kMenuKeyMismatch, values.element(index).member("key"),
               "no arm has the key " + quoted(key) +
                   ": whoever picks this option is asked nothing more and can change no answer, also after a restart");
  }

  const auto& arms = *visit.node.adventures;
  const Place place = visit.place.member("adventures");
  for (std::size_t index = 0; index < arms.size(); ++index) {
    // Of several arms with one key, the first one speaks for all.
    if (!optionKeys.insert(arms[index].key).second) continue;
    report.add(rules::kMenuKeyMismatch, place.element(index).member("key"),
               "no option has the key " + quoted(arms[index].key) + ": the arm can never be chosen; " +
                   std::string(kNoWayOut));
  }
}

}  // namespace

void checkMenu(const TemplateVisit& visit, LintReport& report) {
  if (visit.kind != NodeKind::menu) return;
  if (visit.isInRepeat) {
    report.add(rules::kMenuInRepeat, visit.place,
               "a menu does not know in which pass of the repeat around it it is: that of the first pass takes the "
               "answers of all passes, and from the second pass on it is asked again without end");
  }
  checkType(visit, report);
  checkArmKeys(visit, report);
  // Without options, that they are missing says it all.
  if (!optionsOf(visit.node).empty()) checkKeys(visit, report);
}

}  // namespace kestrom::app
