#include "Core/Models/ConversationCoding.hpp"

#include <gtest/gtest.h>

namespace kestrom::models {
namespace {

using AnswerDTO = ConversationDTO::AnswerDTO;
using foundation::Bytes;
using foundation::DecodingError;
using foundation::URL;

foundation::DecodingOptions options() {
  foundation::DecodingOptions options;
  options.documentsDirectory = URL::fromFilePath("/now/Documents");
  return options;
}

AnswerDTO::Value url(std::string_view text) {
  return AnswerDTO::Value::url(*URL::parse(text));
}

TEST(AnswerDTO, ClassifiesABareValue) {
  struct Row {
    std::string_view label;
    std::string_view json;
    AnswerDTO want;
  };
  const Row rows[] = {
      {"boolean key, integer", R"({"key":true,"value":5})", {"true", AnswerDTO::Value::string("5")}},
      {"whole number", R"({"key":"k","value":5.0})", {"k", AnswerDTO::Value::string("5")}},
      {"text", R"({"key":"k","value":"plain"})", {"k", AnswerDTO::Value::string("plain")}},
      {"web", R"({"key":"k","value":"https://a.example/x.jpeg"})", {"k", url("https://a.example/x.jpeg")}},
      {"file of an earlier install",
       R"({"key":"k","value":"file:///old/Documents/a%20b.mp4"})",
       {"k", url("file:///now/Documents/a%20b.mp4")}},
      {"other scheme",
       R"({"key":"k","value":"mailto:a@b.example"})",
       {"k", AnswerDTO::Value::string("mailto:a@b.example")}},
      {"no URL, though it says http",
       R"({"key":"k","value":"see http stuff"})",
       {"k", AnswerDTO::Value::string("see http stuff")}},
      {"data URI", R"({"key":"k","value":"data:image/png;base64,AQID"})", {"k", AnswerDTO::Value::data({1, 2, 3})}},
      {"marker without a comma", R"({"key":"k","value":"base64"})", {"k", AnswerDTO::Value::data({})}},
      {"marker with no base64", R"({"key":"k","value":"base64,%%"})", {"k", AnswerDTO::Value::string("base64,%%")}},
      {"address out of the directory",
       R"({"key":"k","value":"file:///a/.."})",
       {"k", AnswerDTO::Value::string("file:///a/..")}},
  };
  for (const Row& row : rows) {
    const auto decoded = foundation::decodeJSON<AnswerDTO>(row.json, options());
    ASSERT_TRUE(decoded) << row.label << ": " << decoded.error().description;
    EXPECT_EQ(*decoded, row.want) << row.label;
  }
  EXPECT_EQ(foundation::decodeJSON<AnswerDTO>(R"({"key":5,"value":"a"})", options()).error().path, "key");
  EXPECT_EQ(foundation::decodeJSON<AnswerDTO>(R"({"key":"","value":true})", options()).error().path, "value");
  EXPECT_EQ(foundation::decodeJSON<AnswerDTO>(R"({"key":"","value":1.5})", options()).error().path, "value");
}

TEST(AnswerDTOValue, HasAFormOfItsOwn) {
  struct Row {
    AnswerDTO::Value value;
    std::string_view json;
  };
  const Row rows[] = {
      {AnswerDTO::Value::string("a\"b"), R"({"string":{"_0":"a\"b"}})"},
      {url("https://a.example/x"), R"({"url":{"_0":"https://a.example/x"}})"},
      {AnswerDTO::Value::data({0, 255, 16}), R"({"data":{"_0":"AP8Q"}})"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(foundation::encodeJSON(row.value), row.json);
    EXPECT_EQ(foundation::decodeJSON<AnswerDTO::Value>(row.json, options()), row.value);
  }

  const auto two = foundation::decodeJSON<AnswerDTO::Value>(R"({"string":{"_0":""},"url":{"_0":""}})", options());
  EXPECT_EQ(two.error(),
            (DecodingError{DecodingError::Kind::typeMismatch, "", "Invalid number of keys found, expected one."}));
  EXPECT_EQ(foundation::decodeJSON<AnswerDTO::Value>("{}", options()).error().description,
            "Invalid number of keys found, expected one.");
  EXPECT_EQ(foundation::decodeJSON<AnswerDTO::Value>(R"({"text":{"_0":""}})", options()).error().path, "text");
  EXPECT_EQ(foundation::decodeJSON<AnswerDTO::Value>(R"({"url":{}})", options()).error().path, "url._0");
  EXPECT_EQ(foundation::decodeJSON<AnswerDTO::Value>(R"({"data":{"_0":"%"}})", options()).error().path, "data._0");
}

TEST(MessageDTO, LeavesAbsentKeysOut) {
  ConversationDTO::MessageDTO message;
  message.text = "t";
  EXPECT_EQ(foundation::encodeJSON(message), R"({"text":"t"})");

  message.answers = {{"k", AnswerDTO::Value::string("v")}};
  message.messageId = "m";
  message.timestamp = 1700000000123;
  message.options.emplace();
  message.options->values = {{"A", "a", true, {}, {}}};
  message.options->maxValue = 3;
  message.type = ConversationDTO::MessageDTO::MessageTypeDTO::selectSingleModule;
  message.editable = false;
  message.iterationId = 2;
  const std::string json = foundation::encodeJSON(message);
  EXPECT_EQ(json,
            R"({"answers":[{"key":"k","value":{"string":{"_0":"v"}}}],"text":"t","messageId":"m",)"
            R"("timestamp":1700000000123,"options":{"values":[{"text":"A","showCamera":true,"key":"a"}],"maxValue":3},)"
            R"("type":"select_single_module","editable":false,"iterationId":2})");
}

}  // namespace
}  // namespace kestrom::models
