#pragma once

#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrom::models {

/// The state of a conversation as the walk over a template tells it. Lives in memory only; its members `ProgressDTO`,
/// `MessageDTO` and `AnswerDTO` also have a JSON form, with the field names as keys. Plain values; any thread.
struct ConversationDTO {
  /// How far the conversation is, counted in top-level nodes of the template.
  struct ProgressDTO {
    std::int64_t totalModuleCount = 0;
    std::int64_t currentModuleCount = 0;
    bool isFinished = false;

    friend bool operator==(const ProgressDTO&, const ProgressDTO&) = default;
  };

  /// One entry of an answer: the key of a choice or the role of a medium, and what was answered.
  struct AnswerDTO {
    /// What was answered. Its own JSON form is an object with the case as its only key, holding the payload under "_0".
    struct Value {
      struct String {
        std::string text;
        friend bool operator==(const String&, const String&) = default;
      };
      struct Url {
        foundation::URL url;
        friend bool operator==(const Url&, const Url&) = default;
      };
      struct Data {
        foundation::Bytes bytes;
        friend bool operator==(const Data&, const Data&) = default;
      };

      std::variant<String, Url, Data> form;

      static Value string(std::string text) { return {String{std::move(text)}}; }
      static Value url(foundation::URL url) { return {Url{std::move(url)}}; }
      static Value data(foundation::Bytes bytes) { return {Data{std::move(bytes)}}; }

      friend bool operator==(const Value&, const Value&) = default;
    };

    std::string key;
    Value value;

    friend bool operator==(const AnswerDTO&, const AnswerDTO&) = default;
  };

  /// One message of the conversation: an answered one, or the question that is pending.
  struct MessageDTO {
    /// The closed list of node types, in the order of the wire's table.
    enum class MessageTypeDTO : std::uint8_t {
      module,
      bot,
      selectOne,
      selectSingleModule,
      cyoa,
      selectMultiple,
      year,
      text,
      number,
      photo,
      video,
      panorama,
      fnol,
      meshscan,
      location,
      boolean,
    };

    /// Choices and input limits of a question.
    struct OptionsDTO {
      /// One choice. Its key may be written as a boolean, an integer or a string; it is kept as text in each case.
      struct ValueDTO {
        std::string text;
        std::string key;
        std::optional<bool> showCamera;
        std::optional<bool> completed;
        std::optional<bool> deselectOthers;

        friend bool operator==(const ValueDTO&, const ValueDTO&) = default;
      };

      std::optional<std::vector<ValueDTO>> values;
      std::optional<std::int64_t> maxValue;
      std::optional<std::int64_t> minValue;
      /// Bounds of a text's length in user-perceived characters.
      std::optional<std::int64_t> maxLength;
      std::optional<std::int64_t> minLength;
      /// Path of the computer-vision check for a capture.
      std::optional<std::string> cvEndpoint;

      friend bool operator==(const OptionsDTO&, const OptionsDTO&) = default;
    };

    /// Present once the message is answered.
    std::optional<std::vector<AnswerDTO>> answers;
    /// Bot text, placeholders not yet filled.
    std::string text;
    std::optional<std::string> messageId;
    /// Milliseconds since 1970 on answered messages, seconds since 1970 on questions.
    std::optional<double> timestamp;
    std::optional<OptionsDTO> options;
    /// Absent on answered messages.
    std::optional<MessageTypeDTO> type;
    std::optional<bool> editable;
    std::optional<std::int64_t> iterationId;
    std::optional<std::string> messageKey;
    std::optional<std::string> moduleId;
    std::optional<std::string> moduleKey;

    friend bool operator==(const MessageDTO&, const MessageDTO&) = default;
  };

  ProgressDTO progress;
  /// The one question that may be answered anew.
  std::optional<MessageDTO> lastEditableAnswer;
  /// All messages, oldest first.
  std::vector<MessageDTO> updatedMessages;

  friend bool operator==(const ConversationDTO&, const ConversationDTO&) = default;
};

/// The type's text on the wire, for example "select_one".
std::string_view wireString(ConversationDTO::MessageDTO::MessageTypeDTO type);

/// The type of a wire string; absent for any text outside the closed list.
std::optional<ConversationDTO::MessageDTO::MessageTypeDTO> messageTypeOfWireString(std::string_view text);

}  // namespace kestrom::models
