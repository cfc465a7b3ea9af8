#include "Core/Services/Bot/ConversationConversion.hpp"

#include "Platform/Foundation/Text.hpp"

#include <algorithm>
#include <utility>

namespace kestrom::services {

using models::BotTextMessage;
using models::ChatInputTrigger;
using models::ConversationDTO;
using models::Message;
using models::MultipleSelectionMessage;
using models::SingleSelectionMessage;
using models::UserPhotoMessage;
using models::UserTextMessage;
using models::UserVideoMessage;
using LocalAction = SingleSelectionMessage::Option::LocalAction;
using MessageDTO = ConversationDTO::MessageDTO;
using Type = MessageDTO::MessageTypeDTO;
using Value = ConversationDTO::AnswerDTO::Value;
using ValueDTO = MessageDTO::OptionsDTO::ValueDTO;

namespace {

constexpr std::int64_t kFirstYear = 1800;

/// What a tap on a choice does before or instead of an answer.
std::optional<LocalAction> localAction(Type type, const ValueDTO& choice) {
  const auto unlessDeclined = [&](LocalAction action) {
    return choice.showCamera == false ? LocalAction::declineCapture : action;
  };
  switch (type) {
    case Type::photo:
      return unlessDeclined(LocalAction::photo);
    case Type::video:
      return unlessDeclined(LocalAction::video);
    case Type::panorama:
      return unlessDeclined(LocalAction::panorama);
    case Type::fnol:
      return unlessDeclined(LocalAction::fnol);
    case Type::meshscan:
      return unlessDeclined(LocalAction::meshscan);
    case Type::location:
      return LocalAction::location;
    default:
      return std::nullopt;
  }
}

/// What the two kinds of selection have in common with every row of the bot.
template <class Row>
Row botRow(const MessageDTO& message, std::string id) {
  Row row;
  row.id = std::move(id);
  row.isEditable = message.editable.value_or(false);
  row.iterationId = message.iterationId.value_or(0);
  row.messageKey = message.messageKey.value_or("");
  row.moduleId = message.moduleId.value_or("");
  row.moduleKey = message.moduleKey.value_or("");
  if (message.type) row.messageType = models::wireString(*message.type);
  if (message.options) row.cvEndpoint = message.options->cvEndpoint;
  return row;
}

SingleSelectionMessage singleSelection(const MessageDTO& message, std::string id) {
  auto row = botRow<SingleSelectionMessage>(message, std::move(id));
  row.isModuleSelection = message.type == Type::selectSingleModule || message.type == Type::cyoa;
  if (message.options->values) {
    for (const ValueDTO& choice : *message.options->values) {
      row.options.push_back(
          {choice.key, choice.text, choice.completed.value_or(false), localAction(*message.type, choice)});
    }
  }
  return row;
}

MultipleSelectionMessage multipleSelection(const MessageDTO& message, std::string id) {
  auto row = botRow<MultipleSelectionMessage>(message, std::move(id));
  if (message.options->values) {
    for (const ValueDTO& choice : *message.options->values) {
      row.options.push_back({choice.key, choice.text, false, choice.deselectOthers.value_or(false)});
    }
  }
  return row;
}

/// The moment of an answer, which its record tells in milliseconds.
std::optional<foundation::Date> momentOf(const MessageDTO& message) {
  if (!message.timestamp) return std::nullopt;
  return foundation::Date::fromSecondsSince1970(*message.timestamp / 1000);
}

bool isGIF(const foundation::URL& url) {
  return foundation::lowercased(url.pathExtension()) == "gif";
}

}  // namespace

ConversationConversion::ConversationConversion(Parts parts) : _parts(std::move(parts)) {}

Conversation ConversationConversion::convert(const ConversationDTO& conversation) const {
  Conversation result;
  result.progress = static_cast<float>(conversation.progress.currentModuleCount) /
                    static_cast<float>(conversation.progress.totalModuleCount);
  result.messages.reserve(2 * conversation.updatedMessages.size());
  for (const MessageDTO& message : conversation.updatedMessages) append(message, result.messages);
  if (conversation.lastEditableAnswer) append(*conversation.lastEditableAnswer, result.editableMessages.emplace());
  return result;
}

std::vector<Message> ConversationConversion::messages(const MessageDTO& message) const {
  std::vector<Message> rows;
  append(message, rows);
  return rows;
}

void ConversationConversion::append(const MessageDTO& message, std::vector<Message>& rows) const {
  message.type ? appendQuestion(message, rows) : appendAnswered(message, rows);
  appendUserBubbles(message, rows);
}

BotTextMessage ConversationConversion::bubble(const MessageDTO& message, std::string id) const {
  auto row = botRow<BotTextMessage>(message, std::move(id));
  row.text = _parts.handlebarParser.parse(message.text);
  return row;
}

void ConversationConversion::appendAnswered(const MessageDTO& message, std::vector<Message>& rows) const {
  rows.push_back({bubble(message, _parts.makeIdentifier())});
}

void ConversationConversion::appendQuestion(const MessageDTO& message, std::vector<Message>& rows) const {
  const std::string id = message.messageId ? *message.messageId : _parts.makeIdentifier();
  // Where a question yields two rows, the bubble's identifier is turned round, so that the two differ.
  const auto reversedId = [&] { return foundation::reversedCharacters(id); };
  const auto asking = [&](ChatInputTrigger trigger) {
    BotTextMessage row = bubble(message, id);
    row.trigger = trigger;
    rows.push_back({std::move(row)});
  };
  static const MessageDTO::OptionsDTO kNoLimits;
  const MessageDTO::OptionsDTO& limits = message.options ? *message.options : kNoLimits;

  switch (*message.type) {
    case Type::module:
      return;
    case Type::year:
      return asking({ChatInputTrigger::Year{limits.minValue.value_or(kFirstYear),
                                            limits.maxValue ? *limits.maxValue : _parts.presentYear()}});
    case Type::text:
      return asking({ChatInputTrigger::Text{limits.minLength, limits.maxLength}});
    case Type::number:
      return asking({ChatInputTrigger::Number{limits.minValue, limits.maxValue}});
    case Type::selectMultiple:
      rows.push_back({bubble(message, reversedId())});
      if (message.options) rows.push_back({multipleSelection(message, id)});
      return;
    default:
      break;
  }
  if (message.options) {
    rows.push_back({bubble(message, reversedId())});
    rows.push_back({singleSelection(message, id)});
  } else if (message.type == Type::bot) {
    asking({ChatInputTrigger::AutomaticallyContinueWithNextMessage{}});
  } else {
    rows.push_back({bubble(message, id)});
  }
}

void ConversationConversion::appendUserBubbles(const MessageDTO& message, std::vector<Message>& rows) const {
  if (!message.answers) return;
  const auto isText = [](const auto& entry) { return std::holds_alternative<Value::String>(entry.value.form); };
  if (std::ranges::any_of(*message.answers, isText)) return appendUserText(message, rows);

  const bool isEditable = message.editable.value_or(false);
  const auto moment = momentOf(message);
  for (const auto& [key, value] : *message.answers) {
    if (const auto* address = std::get_if<Value::Url>(&value.form)) {
      if (address->url.absoluteString().contains("mp4")) {
        rows.push_back({UserVideoMessage{key, {UserVideoMessage::State::Success{address->url}}, moment, isEditable}});
      } else {
        const bool isLandscape = key == "thumbnailUrl" || isGIF(address->url);
        rows.push_back({UserPhotoMessage{
            key, {UserPhotoMessage::State::SuccessURL{address->url}}, moment, isEditable, isLandscape}});
      }
    } else if (auto image = _parts.imageCodec->decode(std::get<Value::Data>(value.form).bytes)) {
      rows.push_back({UserPhotoMessage{
          key, {UserPhotoMessage::State::SuccessData{std::move(*image)}}, moment, isEditable, false}});
    }
  }
}

void ConversationConversion::appendUserText(const MessageDTO& message, std::vector<Message>& rows) const {
  std::vector<std::string> texts;
  for (const auto& entry : *message.answers) {
    const auto* string = std::get_if<Value::String>(&entry.value.form);
    if (string && !string->text.empty()) texts.push_back(string->text);
  }
  if (texts.empty()) return;

  std::string joined = texts.size() == 1 ? texts.front() : _parts.listFormatter->string(texts);
  if (joined.empty()) {
    for (const std::string& text : texts) joined += joined.empty() ? text : " " + text;
  }
  rows.push_back({UserTextMessage{_parts.makeIdentifier(), std::move(joined), momentOf(message),
                                  message.editable.value_or(false), false}});
}

}  // namespace kestrom::services
