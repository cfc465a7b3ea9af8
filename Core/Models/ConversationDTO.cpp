#include "Core/Models/ConversationDTO.hpp"

#include "Core/Models/ConversationCoding.hpp"
#include "Core/Models/StoredURL.hpp"
#include "Platform/Foundation/Base64.hpp"

namespace kestrom::models {

using foundation::DecodingContext;
using foundation::DecodingError;
using foundation::JSONType;
using foundation::JSONValue;
using foundation::JSONWriter;
using Types = foundation::Coding<ConversationDTO::MessageDTO::MessageTypeDTO>;

std::string_view wireString(ConversationDTO::MessageDTO::MessageTypeDTO type) {
  return Types::kCases[static_cast<std::size_t>(type)];
}

std::optional<ConversationDTO::MessageDTO::MessageTypeDTO> messageTypeOfWireString(std::string_view text) {
  for (std::size_t index = 0; index < Types::kCases.size(); ++index) {
    if (Types::kCases[index] == text) return static_cast<ConversationDTO::MessageDTO::MessageTypeDTO>(index);
  }
  return std::nullopt;
}

namespace {

/// What a bare text of an answer means: an address of a medium, bytes in a data URI, or just a text.
ConversationDTO::AnswerDTO::Value classified(std::string_view text, const foundation::URL& documentsDirectory) {
  using Value = ConversationDTO::AnswerDTO::Value;
  if (auto url = storedURL(text, documentsDirectory)) return Value::url(std::move(*url));
  if (text.find("base64") != std::string_view::npos) {
    const std::size_t comma = text.find(',');
    const std::string_view encoded = comma == std::string_view::npos ? std::string_view{} : text.substr(comma + 1);
    if (auto bytes = foundation::decodeBase64(encoded)) return Value::data(std::move(*bytes));
  }
  return Value::string(std::string(text));
}

}  // namespace

}  // namespace kestrom::models

namespace kestrom::foundation {

using models::ConversationDTO;

void Coder<ConversationDTO::AnswerDTO::Value>::decode(Value& out, JSONValue value, DecodingContext& context) {
  if (!value.isObject()) return failType(context, value, "an object");
  if (value.size() != 1) {
    return context.fail(DecodingError::Kind::typeMismatch, "Invalid number of keys found, expected one.");
  }
  auto member = value.begin();
  const std::string_view form = (*member).string();
  const JSONValue content = *++member;
  context.enterKey(form);
  const auto payload = content.member("_0");
  std::string text;
  if (!content.isObject()) {
    failType(context, content, "an object");
  } else if (!payload) {
    context.fail(DecodingError::Kind::keyNotFound, "required key \"_0\" is missing", "_0");
  } else if (form == "string") {
    context.enterKey("_0");
    Coder<std::string>::decode(text, *payload, context);
    out = Value::string(std::move(text));
    context.leave();
  } else if (form == "url") {
    context.enterKey("_0");
    URL url = URL::fromFilePath("/");
    Coder<URL>::decode(url, *payload, context);
    out = Value::url(std::move(url));
    context.leave();
  } else if (form == "data") {
    context.enterKey("_0");
    Coder<std::string>::decode(text, *payload, context);
    auto bytes = decodeBase64(text);
    if (!bytes) {
      context.fail(DecodingError::Kind::dataCorrupted, "the text is no base64");
    } else {
      out = Value::data(std::move(*bytes));
    }
    context.leave();
  } else {
    context.fail(DecodingError::Kind::dataCorrupted, "unknown case; allowed are \"string\" \"url\" \"data\"");
  }
  context.leave();
}

void Coder<ConversationDTO::AnswerDTO::Value>::encode(const Value& in, JSONWriter& writer) {
  const auto write = [&](std::string_view form, std::string_view payload) {
    writer.beginObject();
    writer.key(form);
    writer.beginObject();
    writer.key("_0");
    writer.string(payload);
    writer.endObject();
    writer.endObject();
  };
  if (const auto* string = std::get_if<Value::String>(&in.form)) {
    write("string", string->text);
  } else if (const auto* url = std::get_if<Value::Url>(&in.form)) {
    write("url", url->url.absoluteString());
  } else {
    write("data", encodeBase64(std::get<Value::Data>(in.form).bytes));
  }
}

void Coder<ConversationDTO::AnswerDTO>::decode(AnswerDTO& out, JSONValue value, DecodingContext& context) {
  if (!value.isObject()) return failType(context, value, "an object");
  const auto key = value.member("key");
  if (!key) {
    context.fail(DecodingError::Kind::keyNotFound, "required key \"key\" is missing", "key");
  } else {
    context.enterKey("key");
    if (key->isBoolean()) {
      out.key = key->boolean() ? "true" : "false";
    } else {
      Coder<std::string>::decode(out.key, *key, context);
    }
    context.leave();
  }
  if (context.isStopped()) return;

  const auto answered = value.member("value");
  if (!answered) {
    return context.fail(DecodingError::Kind::keyNotFound, "required key \"value\" is missing", "value");
  }
  context.enterKey("value");
  if (const auto integer = answered->integer()) {
    out.value = AnswerDTO::Value::string(std::to_string(*integer));
  } else {
    std::string text;
    Coder<std::string>::decode(text, *answered, context);
    out.value = models::classified(text, context.options().documentsDirectory);
  }
  context.leave();
}

void Coder<ConversationDTO::AnswerDTO>::encode(const AnswerDTO& in, JSONWriter& writer) {
  writer.beginObject();
  writer.key("key");
  writer.string(in.key);
  writer.key("value");
  Coder<AnswerDTO::Value>::encode(in.value, writer);
  writer.endObject();
}

}  // namespace kestrom::foundation
