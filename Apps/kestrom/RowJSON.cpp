#include "Apps/kestrom/RowJSON.hpp"

#include "UI/Scenes/Chat/MessageGrouping.hpp"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kestrom::app {

using foundation::Date;
using foundation::JSONWriter;
using models::BotTextMessage;
using models::ChatInputTrigger;
using models::MultipleSelectionMessage;
using models::SingleSelectionMessage;
using models::UserPhotoMessage;
using models::UserVideoMessage;

namespace {

void writeText(JSONWriter& writer, std::string_view key, std::string_view text) {
  writer.key(key);
  writer.string(text);
}

void writeBoolean(JSONWriter& writer, std::string_view key, bool value) {
  writer.key(key);
  writer.boolean(value);
}

void writeInteger(JSONWriter& writer, std::string_view key, std::optional<std::int64_t> value) {
  if (!value) return;
  writer.key(key);
  writer.integer(*value);
}

void writeTimestamp(JSONWriter& writer, std::optional<Date> timestamp) {
  if (!timestamp) return;
  writer.key("timestamp");
  writer.number(timestamp->secondsSince1970());
}

void writeImage(JSONWriter& writer, std::string_view key, const imaging::Image& image) {
  writer.key(key);
  writer.beginObject();
  writeInteger(writer, "width", image.width);
  writeInteger(writer, "height", image.height);
  writer.endObject();
}

std::string_view nameOf(SingleSelectionMessage::Option::LocalAction action) {
  static constexpr std::array<std::string_view, 7> kNames{"photo",    "video",          "panorama", "fnol",
                                                          "meshscan", "declineCapture", "location"};
  return kNames[static_cast<std::size_t>(action)];
}

std::string_view nameOf(models::BotMessageGroupingGuide guide) {
  static constexpr std::array<std::string_view, 4> kNames{"standalone", "first", "last", "groupPart"};
  return kNames[static_cast<std::size_t>(guide)];
}

/// Writes what a row's kind has beyond "type", "identifier" and "isEditable".
class FieldWriter {
 public:
  explicit FieldWriter(JSONWriter& writer) : _writer(writer) {}

  void operator()(const BotTextMessage& message) {
    writeText(_writer, "id", message.id);
    writeText(_writer, "text", message.text);
    if (message.trigger) writeTrigger(*message.trigger);
    writeOrigin(message);
  }

  void operator()(const SingleSelectionMessage& message) {
    writeText(_writer, "id", message.id);
    _writer.key("options");
    _writer.beginArray();
    for (const auto& option : message.options) {
      _writer.beginObject();
      writeText(_writer, "id", option.id);
      writeText(_writer, "text", option.text);
      writeBoolean(_writer, "wasFulfilled", option.wasFulfilled);
      if (option.localAction) writeText(_writer, "localAction", nameOf(*option.localAction));
      _writer.endObject();
    }
    _writer.endArray();
    writeBoolean(_writer, "isModuleSelection", message.isModuleSelection);
    writeOrigin(message);
  }

  void operator()(const MultipleSelectionMessage& message) {
    writeText(_writer, "id", message.id);
    _writer.key("options");
    _writer.beginArray();
    for (const auto& option : message.options) {
      _writer.beginObject();
      writeText(_writer, "id", option.id);
      writeText(_writer, "text", option.text);
      writeBoolean(_writer, "isSelected", option.isSelected);
      writeBoolean(_writer, "deselectOthers", option.deselectOthers);
      _writer.endObject();
    }
    _writer.endArray();
    writeOrigin(message);
  }

  void operator()(const models::UserTextMessage& message) {
    writeText(_writer, "id", message.id);
    writeText(_writer, "text", message.text);
    writeTimestamp(_writer, message.timestamp);
    writeBoolean(_writer, "isTextInputIntroductionPlaceholder", message.isTextInputIntroductionPlaceholder);
  }

  void operator()(const UserPhotoMessage& message) {
    using State = UserPhotoMessage::State;
    writeText(_writer, "id", message.id);
    _writer.key("state");
    _writer.beginObject();
    if (const auto* failed = std::get_if<State::Failed>(&message.state.form)) {
      writeImage(_writer, "failed", failed->image);
    } else if (const auto* stored = std::get_if<State::SuccessURL>(&message.state.form)) {
      writeText(_writer, "successURL", stored->url.absoluteString());
    } else {
      writeImage(_writer, "successData", std::get<State::SuccessData>(message.state.form).image);
    }
    _writer.endObject();
    writeTimestamp(_writer, message.timestamp);
    writeBoolean(_writer, "landscape", message.landscape);
  }

  void operator()(const UserVideoMessage& message) {
    using State = UserVideoMessage::State;
    writeText(_writer, "id", message.id);
    _writer.key("state");
    _writer.beginObject();
    if (const auto* uploading = std::get_if<State::Uploading>(&message.state.form)) {
      _writer.key("uploading");
      _writer.beginObject();
      writeText(_writer, "url", uploading->url.absoluteString());
      _writer.key("current");
      _writer.number(uploading->current);
      _writer.key("previous");
      _writer.number(uploading->previous);
      _writer.endObject();
    } else if (const auto* failed = std::get_if<State::Failed>(&message.state.form)) {
      writeText(_writer, "failed", failed->url.absoluteString());
    } else {
      writeText(_writer, "success", std::get<State::Success>(message.state.form).url.absoluteString());
    }
    _writer.endObject();
    writeTimestamp(_writer, message.timestamp);
  }

  void operator()(const models::InfoMessage& message) {
    writeText(_writer, "id", message.id);
    writeText(_writer, "text", message.text);
  }

  void operator()(const models::TypingMessage&) {}

 private:
  /// The node and the place in the conversation that a question or statement comes from.
  template <class Message>
  void writeOrigin(const Message& message) {
    writeInteger(_writer, "iterationId", message.iterationId);
    writeText(_writer, "messageKey", message.messageKey);
    writeText(_writer, "moduleId", message.moduleId);
    writeText(_writer, "moduleKey", message.moduleKey);
    writeText(_writer, "messageType", message.messageType);
    if (message.cvEndpoint) writeText(_writer, "cvEndpoint", *message.cvEndpoint);
  }

  void writeTrigger(const ChatInputTrigger& trigger) {
    if (std::holds_alternative<ChatInputTrigger::AutomaticallyContinueWithNextMessage>(trigger.form)) {
      return writeText(_writer, "trigger", "automaticallyContinueWithNextMessage");
    }
    _writer.key("trigger");
    _writer.beginObject();
    if (const auto* year = std::get_if<ChatInputTrigger::Year>(&trigger.form)) {
      writeBounds("year", year->min, year->max);
    } else if (const auto* number = std::get_if<ChatInputTrigger::Number>(&trigger.form)) {
      writeBounds("number", number->min, number->max);
    } else if (const auto* text = std::get_if<ChatInputTrigger::Text>(&trigger.form)) {
      writeBounds("text", text->min, text->max);
    }
    _writer.endObject();
  }

  void writeBounds(std::string_view kind, std::optional<std::int64_t> min, std::optional<std::int64_t> max) {
    _writer.key(kind);
    _writer.beginObject();
    writeInteger(_writer, "min", min);
    writeInteger(_writer, "max", max);
    _writer.endObject();
  }

  JSONWriter& _writer;
};

/// In the order of the alternatives of `Message::form`.
constexpr std::array<std::string_view, 8> kTypeNames{
    "BotTextMessage",  "SingleSelectionMessage", "MultipleSelectionMessage",
    "UserTextMessage", "UserPhotoMessage",       "UserVideoMessage",
    "InfoMessage",     "TypingMessage"};

}  // namespace

void writeRows(std::span<const models::Message> rows, JSONWriter& writer) {
  writer.beginArray();
  for (std::size_t index = 0; index < rows.size(); ++index) writeRow(rows, index, writer);
  writer.endArray();
}

void writeRow(std::span<const models::Message> rows, std::size_t index, JSONWriter& writer) {
  const models::Message& row = rows[index];
  writer.beginObject();
  writeText(writer, "type", kTypeNames[row.form.index()]);
  writeText(writer, "identifier", row.identifier());
  writeBoolean(writer, "isEditable", row.isEditable());
  std::visit(FieldWriter(writer), row.form);
  if (std::holds_alternative<BotTextMessage>(row.form)) {
    writeText(writer, "grouping", nameOf(ui::groupingGuide(rows, index)));
  }
  writer.endObject();
}

}  // namespace kestrom::app
