#include "Core/Models/BotAPIAnswerCoding.hpp"

#include <gtest/gtest.h>

namespace kestrom::models {
namespace {

using foundation::DecodingError;
using foundation::DecodingOptions;
using foundation::URL;

DecodingOptions options(DecodingOptions::Dates dates = DecodingOptions::Dates::secondsSinceReferenceDate) {
  return {.dates = dates, .documentsDirectory = URL::fromFilePath("/now/Documents")};
}

/// How a form reads and is written again, or why it does not read.
template <class Union>
std::string again(std::string_view json) {
  const auto decoded = foundation::decodeJSON<Union>(json, options());
  if (!decoded) return decoded.error().path + ": " + decoded.error().description;
  return std::to_string(decoded->form.index()) + foundation::encodeJSON(*decoded);
}

struct Row {
  std::string_view label;
  std::string_view json;
  /// The form's index and its JSON, or path and description of the error.
  std::string_view want;
};

constexpr std::string_view kBoth =
    R"({"mediaUrl":"https://a.example/m","address":"here","coords":{"lat":1,"lng":2.5},"locationType":"precise"})";

TEST(BotAnswerValueDTO, TakesTheFirstFormThatFits) {
  const Row rows[] = {
      {"text", R"("plain")", R"(0"plain")"},
      {"web address", R"("https://a.example/x")", R"(0"https://a.example/x")"},
      {"file of an earlier install", R"("file:///old/a%20b.mp4")", R"(0"file:///now/Documents/a%20b.mp4")"},
      {"file out of the directory", R"("file:///old/..")", R"(0"file:///old/..")"},
      {"list", R"(["a","","file:///old/a"])", R"(1["a","","file:///old/a"])"},
      {"empty list", "[]", "1[]"},
      {"location", R"({"address":"here","coords":null,"locationType":"none","more":1})",
       R"(2{"address":"here","locationType":"none"})"},
      {"bundle", R"({"mediaUrl":"file:///old/a.tar","thumbnailUrl":"https://a.example/t"})",
       R"(3{"mediaUrl":"file:///now/Documents/a.tar","thumbnailUrl":"https://a.example/t"})"},
      {"bundle of another scheme stays", R"({"mediaUrl":"ftp://a.example/m","thumbnailUrl":null})",
       R"(3{"mediaUrl":"ftp://a.example/m"})"},
      {"bundle before location", kBoth, R"(3{"mediaUrl":"https://a.example/m"})"},
      {"bundle of a broken URL", R"({"mediaUrl":"a b"})", ": expected a string, found an object"},
      {"bundle with a file above stays", R"({"mediaUrl":"https://a.example/m","thumbnailUrl":"file:///a/..%2Fb"})",
       R"(3{"mediaUrl":"https://a.example/m","thumbnailUrl":"file:///a/..%2Fb"})"},
      {"location of half a coordinate", R"({"address":"a","locationType":"none","coords":{"lat":1}})",
       ": expected a string, found an object"},
      {"mixed list", R"(["a",1])", ": expected a string, found a list"},
      {"number", "5", ": expected a string, found a number"},
      {"null", "null", ": expected a string, found null"},
  };
  for (const Row& row : rows) EXPECT_EQ(again<BotAnswerValueDTO>(row.json), row.want) << row.label;
}

TEST(BotAnswerKeyValueDTO, TakesTheFirstFormThatFits) {
  const Row rows[] = {
      {"one", R"({"key":"k","value":"file:///old/a"})", R"(0{"key":"k","value":"file:///old/a"})"},
      {"list", R"([{"key":"k","value":"v"},{"key":"","value":""}])",
       R"(1[{"key":"k","value":"v"},{"key":"","value":""}])"},
      {"location before bundle", kBoth, R"(2{"address":"here","coords":{"lat":1,"lng":2.5},"locationType":"precise"})"},
      {"bundle", R"({"mediaUrl":"https://a.example/m","key":"k","value":"v"})",
       R"(3{"mediaUrl":"https://a.example/m"})"},
      {"bare text", R"("v")", ": expected an object, found a string"},
      {"no key", R"({"value":"v"})", "key: required key \"key\" is missing"},
      {"value of another type", R"({"key":"k","value":5})", "value: expected a string, found a number"},
  };
  for (const Row& row : rows) EXPECT_EQ(again<BotAnswerKeyValueDTO>(row.json), row.want) << row.label;
}

BotAPIAnswerDTO fullAnswer() {
  return {
      .value = {"yes"},
      .keyValue = {KeyValue{"y", "yes"}},
      .location = LocationSnapshotDTO{{-89.65, 39.8}, "Point"},
      .iterationId = 3,
      .messageId = "message",
      .moduleId = "module",
      .type = "select_one",
      .locationType = "precise",
      .context = "cv",
      .answeredAt = foundation::Date::fromSecondsSince1970(1'717'761'600.25),
      .wasSynced = false,
  };
}

TEST(BotAPIAnswerDTO, HasItsWireForm) {
  constexpr std::string_view kJSON =
      R"({"value":"yes","keyValue":{"key":"y","value":"yes"},"location":{"coordinates":[-89.65,39.8],"type":"Point"},)"
      R"("iterationId":3,"messageId":"message","moduleId":"module","type":"select_one","locationType":"precise",)"
      R"("context":"cv","answeredAt":"2024-06-07T12:00:00.250Z","wasSynced":false})";
  const BotAPIAnswerDTO answer = fullAnswer();
  const auto decoded = foundation::decodeJSON<BotAPIAnswerDTO>(kJSON, options(DecodingOptions::Dates::answers));
  ASSERT_TRUE(decoded) << decoded.error().path << decoded.error().description;
  EXPECT_EQ(*decoded, answer);

  BotAPIAnswerDTO bare = answer;
  bare.location.reset();
  bare.type.reset();
  bare.context.reset();
  bare.wasSynced.reset();
  constexpr std::string_view kBare =
      R"({"value":"yes","keyValue":{"key":"y","value":"yes"},"iterationId":3,"messageId":"message",)"
      R"("moduleId":"module","locationType":"precise","answeredAt":739454400.25})";
  EXPECT_EQ(foundation::encodeJSON(bare), kBare);
  EXPECT_EQ(foundation::decodeJSON<BotAPIAnswerDTO>(kBare, options()), bare);
}

TEST(BotAPIAnswerDTO, ComesAsHistoryAndAsAFile) {
  const std::vector<BotAPIAnswerDTO> answers(2, fullAnswer());
  std::string file = foundation::encodeJSON(answers);
  EXPECT_EQ(foundation::decodeJSON<std::vector<BotAPIAnswerDTO>>(file, options()), answers);
  EXPECT_EQ(foundation::decodeJSON<AnswersHistoryResponse>(R"({"answers":)" + file + "}", options())->answers, answers);

  const auto error = [](std::string_view json) {
    const auto decoded = foundation::decodeJSON<std::vector<BotAPIAnswerDTO>>(json, options());
    return decoded ? "" : decoded.error().path;
  };
  const std::string_view required[] = {"value",    "keyValue",     "iterationId", "messageId",
                                       "moduleId", "locationType", "answeredAt"};
  for (const std::string_view key : required) {
    std::string without = file;
    without.replace(without.find("\"" + std::string(key) + "\":"), key.size() + 3, "\"x\":");
    EXPECT_EQ(error(without), "[0]." + std::string(key));
  }
  EXPECT_EQ(error(R"([{"value":[1]}])"), "[0].value");
}

/// A file as the device writes it: reading and writing it changes no byte.
constexpr std::string_view kFile =
    R"([{"value":"red \"1\"","keyValue":{"key":"k","value":"red \"1\""},"location":{"coordinates":[13.25,52.5],)"
    R"("type":"Point"},"iterationId":0,"messageId":"n1","moduleId":"m1","type":"text","locationType":"precise",)"
    R"("context":"cv_utilities.na.skip_cv","answeredAt":721692800.25,"wasSynced":true},)"
    R"({"value":["B","A"],"keyValue":[{"key":"b","value":"B"},{"key":"a","value":"A"}],"iterationId":2,)"
    R"("messageId":"n2","moduleId":"m1","locationType":"none","answeredAt":721692801,"wasSynced":false},)"
    R"({"value":{"mediaUrl":"file:///now/Documents/v.mp4","thumbnailUrl":"https://a.example/t.jpeg"},)"
    R"("keyValue":{"mediaUrl":"file:///now/Documents/v.mp4","thumbnailUrl":"https://a.example/t.jpeg"},)"
    R"("iterationId":-1,"messageId":"n3","moduleId":"","type":"panorama","locationType":"none","answeredAt":-0.5},)"
    R"({"value":{"address":"5 Elm St","coords":{"lat":52.5,"lng":13.25},"locationType":"relative"},)"
    R"("keyValue":{"address":"5 Elm St","coords":{"lat":52.5,"lng":13.25},"locationType":"relative"},)"
    R"("location":{"coordinates":[],"type":""},"iterationId":9223372036854775807,"messageId":"n4","moduleId":"m",)"
    R"("locationType":"relative","answeredAt":721692800.1234567}])";

TEST(BotAPIAnswerDTO, KeepsTheDeviceFileByteForByte) {
  using Answers = std::vector<BotAPIAnswerDTO>;
  const auto decoded = foundation::decodeJSON<Answers>(kFile, options());
  ASSERT_TRUE(decoded) << decoded.error().path << ": " << decoded.error().description;
  EXPECT_EQ(foundation::encodeJSON(*decoded), kFile);

  // The dates of the file are not taken for those of the wire, nor the reverse.
  const auto wire = options(DecodingOptions::Dates::answers);
  EXPECT_EQ(foundation::decodeJSON<Answers>(kFile, wire).error().path, "[0].answeredAt");
  const std::string sent = foundation::encodeJSON(*decoded, foundation::DateStrategy::iso8601);
  EXPECT_EQ(foundation::decodeJSON<Answers>(sent, options()).error().path, "[0].answeredAt");
}

TEST(BotAPIAnswerDTO, TellsWhereADocumentIsWrong) {
  struct Fault {
    std::string_view part;
    std::string_view instead;
    std::string_view path;
  };
  constexpr Fault kFaults[] = {
      {R"(,"value":"red)", R"(,"text":"red)", "[0].keyValue.value"},
      {R"({"key":"b")", R"({"key":true)", "[1].keyValue"},
      {R"("type":"Point")", R"("type":null)", "[0].location.type"},
      {R"([13.25,52.5])", R"([13.25,"52.5"])", "[0].location.coordinates[1]"},
      {R"([13.25,52.5])", R"(13.25)", "[0].location.coordinates"},
      {R"("iterationId":-1)", R"("iterationId":-1.5)", "[2].iterationId"},
      {"9223372036854775807", "9223372036854775808", "[3].iterationId"},
      {R"("type":"panorama")", R"("type":5)", "[2].type"},
      {R"("wasSynced":false)", R"("wasSynced":0)", "[1].wasSynced"},
      {"721692801", "1e999", "[1].answeredAt"},
      {R"({"mediaUrl":"file:///now/Documents/v.mp4")", R"({"mediaUrl":"file:///a b")", "[2].value"},
      {"721692801", "1e300", "[1].answeredAt"},
  };
  for (const Fault& fault : kFaults) {
    std::string json(kFile);
    json.replace(json.find(fault.part), fault.part.size(), fault.instead);
    const auto decoded = foundation::decodeJSON<std::vector<BotAPIAnswerDTO>>(json, options());
    ASSERT_FALSE(decoded) << json;
    EXPECT_EQ(decoded.error().path, fault.path) << json;
  }
}

}  // namespace
}  // namespace kestrom::models
