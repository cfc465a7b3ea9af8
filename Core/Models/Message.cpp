#include "Core/Models/Message.hpp"

#include <type_traits>

namespace kestrom::models {

namespace {

template <class Row>
constexpr bool kIsBotRow = std::is_same_v<Row, BotTextMessage> || std::is_same_v<Row, SingleSelectionMessage> ||
                           std::is_same_v<Row, MultipleSelectionMessage>;

}  // namespace

std::string phaseOfModule(const std::string& moduleKey) {
  if (moduleKey == "intro") return "beginning";
  return moduleKey == "wrap_up" ? "end" : "middle";
}

std::string Message::identifier() const {
  return std::visit(
      []<class Row>(const Row& row) -> std::string {
        if constexpr (kIsBotRow<Row>) {
          return row.id + row.moduleId + std::to_string(row.iterationId);
        } else if constexpr (std::is_same_v<Row, TypingMessage>) {
          return row.identifier;
        } else {
          return row.id;
        }
      },
      form);
}

bool Message::isEditable() const {
  return std::visit([](const auto& row) { return row.isEditable; }, form);
}

bool Message::isBotQuestion() const {
  if (const auto* bubble = std::get_if<BotTextMessage>(&form)) {
    return bubble->trigger &&
           !std::holds_alternative<ChatInputTrigger::AutomaticallyContinueWithNextMessage>(bubble->trigger->form);
  }
  if (const auto* typing = std::get_if<TypingMessage>(&form)) return typing->isBotQuestion;
  return std::holds_alternative<SingleSelectionMessage>(form) || std::holds_alternative<MultipleSelectionMessage>(form);
}

bool Message::isBotMessage() const {
  if (const auto* typing = std::get_if<TypingMessage>(&form)) return typing->isBotMessage;
  return std::holds_alternative<BotTextMessage>(form);
}

std::optional<EventMessageDetails> Message::eventDetails(const Message* previous) const {
  return std::visit(
      [&]<class Row>(const Row& row) -> std::optional<EventMessageDetails> {
        if constexpr (kIsBotRow<Row>) {
          std::string text;
          if constexpr (std::is_same_v<Row, BotTextMessage>) {
            text = row.text;
          } else if (const auto* bubble = previous ? std::get_if<BotTextMessage>(&previous->form) : nullptr) {
            text = bubble->text;
          }
          return EventMessageDetails{std::move(text), row.messageType, row.moduleKey, row.messageKey,
                                     phaseOfModule(row.moduleKey)};
        } else {
          return std::nullopt;
        }
      },
      form);
}

}  // namespace kestrom::models
