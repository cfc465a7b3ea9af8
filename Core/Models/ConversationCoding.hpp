#pragma once

#include "Core/Models/ConversationDTO.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

/// The JSON forms of the conversation's records.
namespace kestrom::foundation {

template <>
struct Coding<models::ConversationDTO::MessageDTO::MessageTypeDTO> {
  static constexpr std::array<std::string_view, 16> kCases{"module",     "bot",
                                                           "select_one", "select_single_module",
                                                           "cyoa",       "select_multiple",
                                                           "year",       "text",
                                                           "number",     "photo",
                                                           "video",      "panorama",
                                                           "fnol",       "meshscan",
                                                           "location",   "boolean"};
};

/// The table's line for a choice's key, which may stand as a boolean, an integer or a string and is kept as text.
constexpr FieldCoding choiceKeyField(std::string_view key) {
  using ValueDTO = models::ConversationDTO::MessageDTO::OptionsDTO::ValueDTO;
  FieldCoding coding = field<&ValueDTO::key>(key);
  coding.decode = [](void* record, JSONValue value, DecodingContext& context) {
    std::string& text = static_cast<ValueDTO*>(record)->key;
    if (value.isBoolean()) {
      text = value.boolean() ? "true" : "false";
    } else if (const auto integer = value.integer()) {
      text = std::to_string(*integer);
    } else {
      Coder<std::string>::decode(text, value, context);
    }
  };
  return coding;
}

template <>
struct Coding<models::ConversationDTO::MessageDTO::OptionsDTO::ValueDTO> {
  using ValueDTO = models::ConversationDTO::MessageDTO::OptionsDTO::ValueDTO;
  static constexpr std::array kFields{
      field<&ValueDTO::completed>("completed"),
      field<&ValueDTO::text>("text"),
      field<&ValueDTO::showCamera>("showCamera"),
      field<&ValueDTO::deselectOthers>("deselectOthers"),
      choiceKeyField("key"),
  };
};

template <>
struct Coding<models::ConversationDTO::MessageDTO::OptionsDTO> {
  using OptionsDTO = models::ConversationDTO::MessageDTO::OptionsDTO;
  static constexpr std::array kFields{
      field<&OptionsDTO::values>("values"),       field<&OptionsDTO::maxValue>("maxValue"),
      field<&OptionsDTO::minValue>("minValue"),   field<&OptionsDTO::maxLength>("maxLength"),
      field<&OptionsDTO::minLength>("minLength"), field<&OptionsDTO::cvEndpoint>("cvEndpoint"),
  };
};

template <>
struct Coding<models::ConversationDTO::ProgressDTO> {
  using ProgressDTO = models::ConversationDTO::ProgressDTO;
  static constexpr std::array kFields{
      field<&ProgressDTO::totalModuleCount>("totalModuleCount"),
      field<&ProgressDTO::currentModuleCount>("currentModuleCount"),
      field<&ProgressDTO::isFinished>("isFinished"),
  };
};

/// The union's own form: an object with the case as its only key, holding {"_0": payload}.
template <>
struct Coder<models::ConversationDTO::AnswerDTO::Value> {
  using Value = models::ConversationDTO::AnswerDTO::Value;
  static void decode(Value& out, JSONValue value, DecodingContext& context);
  static void encode(const Value& in, JSONWriter& writer);
};

/// Read from the short form, in which "value" stands bare and is classified; written with the union's own form.
template <>
struct Coder<models::ConversationDTO::AnswerDTO> {
  using AnswerDTO = models::ConversationDTO::AnswerDTO;
  static void decode(AnswerDTO& out, JSONValue value, DecodingContext& context);
  static void encode(const AnswerDTO& in, JSONWriter& writer);
};

template <>
struct Coding<models::ConversationDTO::MessageDTO> {
  using MessageDTO = models::ConversationDTO::MessageDTO;
  static constexpr std::array kFields{
      field<&MessageDTO::answers>("answers"),       field<&MessageDTO::text>("text"),
      field<&MessageDTO::messageId>("messageId"),   field<&MessageDTO::timestamp>("timestamp"),
      field<&MessageDTO::options>("options"),       field<&MessageDTO::type>("type"),
      field<&MessageDTO::editable>("editable"),     field<&MessageDTO::iterationId>("iterationId"),
      field<&MessageDTO::messageKey>("messageKey"), field<&MessageDTO::moduleId>("moduleId"),
      field<&MessageDTO::moduleKey>("moduleKey"),
  };
};

template <>
struct Coding<models::LocationSnapshotDTO> {
  using LocationSnapshotDTO = models::LocationSnapshotDTO;
  static constexpr std::array kFields{
      field<&LocationSnapshotDTO::coordinates>("coordinates"),
      field<&LocationSnapshotDTO::type>("type"),
  };
};

template <>
struct Coding<models::NativeBotEngineAnswerDTO> {
  using NativeBotEngineAnswerDTO = models::NativeBotEngineAnswerDTO;
  static constexpr std::array kFields{
      field<&NativeBotEngineAnswerDTO::answers>("answers"),
      field<&NativeBotEngineAnswerDTO::location>("location"),
      field<&NativeBotEngineAnswerDTO::locationType>("locationType"),
      field<&NativeBotEngineAnswerDTO::iterationId>("iterationId"),
      field<&NativeBotEngineAnswerDTO::messageId>("messageId"),
      field<&NativeBotEngineAnswerDTO::moduleId>("moduleId"),
      field<&NativeBotEngineAnswerDTO::timestamp>("timestamp"),
  };
};

}  // namespace kestrom::foundation
