#include "Apps/kestrom/Lint/FieldRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"

#include <string>
#include <string_view>

namespace kestrom::app {

using models::BotNode;
using models::ConversationDTO;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;

namespace {

void ignore(const Place& place, std::string_view why, LintReport& report) {
  report.add(rules::kIgnoredField, place, "this is never read and has no effect: " + std::string(why));
}

void checkLists(const TemplateVisit& visit, LintReport& report) {
  const BotNode& node = visit.node;
  if (node.sequence && node.adventures) {
    ignore(visit.place.member("adventures"), "the node also holds a \"sequence\", and only that is walked", report);
  }
  if (node.sequence && node.branches) {
    ignore(visit.place.member("branches"), "the node also holds a \"sequence\", and only that is walked", report);
  } else if (node.adventures && node.branches) {
    ignore(visit.place.member("branches"), "the node also holds \"adventures\", and only those are walked", report);
  }
}

void checkRepeatFields(const TemplateVisit& visit, LintReport& report) {
  const BotNode& node = visit.node;
  const bool isMarked = node.repeatable.value_or(false);
  if (isMarked && visit.kind == NodeKind::leaf) {
    ignore(visit.place.member("repeatable"), "only a node that holds a list can repeat", report);
  }
  if (!isMarked && node.repeatableDetails) {
    ignore(visit.place.member("repeatableDetails"), "the node does not repeat", report);
  }
  if (node.repeatText && visit.kind != NodeKind::menu) {
    ignore(visit.place.member("repeatText"),
           "only a menu has it; the text of a repeat belongs into \"repeatableDetails\"", report);
  }
}

void checkOptionFields(const TemplateVisit& visit, LintReport& report) {
  const BotNode& node = visit.node;
  const bool isCapture = opensCamera(node.type);
  const Place values = visit.place.member("options").member("values");
  const auto& options = optionsOf(node);
  for (std::size_t index = 0; index < options.size(); ++index) {
    if (options[index].deselectOthers.value_or(false) && node.type != Type::selectMultiple) {
      ignore(values.element(index).member("deselectOthers"), "only one option of a single choice can be picked",
             report);
    }
    if (!options[index].showCamera || isCapture) continue;
    if (node.type != Type::location) {
      ignore(values.element(index).member("showCamera"), "a question of this type opens no camera", report);
    } else if (!*options[index].showCamera) {
      ignore(values.element(index).member("showCamera"),
             "the option does not decline, it opens the address page like any other", report);
    }
  }
}

void checkOptions(const TemplateVisit& visit, LintReport& report) {
  const BotNode& node = visit.node;
  if (!node.options) return;
  const Place options = visit.place.member("options");
  if (visit.kind == NodeKind::sequence) {
    ignore(options, "a node with a \"sequence\" is not shown itself", report);
    return;
  }
  if (answerFormOf(node) == AnswerForm::typed) {
    // From its second showing on, a menu offers its options whatever its type.
    if (node.options->values && visit.kind != NodeKind::menu) {
      ignore(options.member("values"), "what is typed is not picked from a list", report);
    }
  } else {
    checkOptionFields(visit, report);
  }
  const auto checkLimit = [&](const auto& limit, bool isRead, std::string_view key) {
    if (limit && !isRead) ignore(options.member(key), "a question of this type takes no such limit", report);
  };
  const bool isNumeric = node.type == Type::year || node.type == Type::number;
  checkLimit(node.options->minValue, isNumeric, "minValue");
  checkLimit(node.options->maxValue, isNumeric, "maxValue");
  checkLimit(node.options->minLength, node.type == Type::text, "minLength");
  checkLimit(node.options->maxLength, node.type == Type::text, "maxLength");
}

void checkText(const TemplateVisit& visit, LintReport& report) {
  const auto& text = visit.node.text;
  if (visit.kind == NodeKind::sequence || answerFormOf(visit.node) == AnswerForm::none) return;
  if (text && !text->empty()) return;
  report.add(rules::kMissingText, text ? visit.place.member("text") : visit.place,
             "there is no text: the device shows an empty bubble");
}

}  // namespace

void checkFields(const TemplateVisit& visit, LintReport& report) {
  checkLists(visit, report);
  checkRepeatFields(visit, report);
  checkOptions(visit, report);
  checkText(visit, report);
}

}  // namespace kestrom::app
