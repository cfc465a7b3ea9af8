#include "Core/Models/AnswerConversion.hpp"

#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Models/ConversationCoding.hpp"
#include "Tests/Support/FakeImageCodec.hpp"

#include <gtest/gtest.h>

namespace kestrom::models {
namespace {

using foundation::Date;
using foundation::URL;
using tests::FakeImageCodec;
using tests::imageOf;
using Location = BotAnswer::Location;
using Type = BotAnswer::BotAnswerType;
using Value = BotAnswer::Value;

const URL kDocuments = URL::fromFilePath("/now/Documents");
const URL kWeb = *URL::parse("https://a.example/x.jpeg");
const URL kFile = *URL::parse("file:///now/Documents/a.mp4");
const Location kPrecise{Location::Precise{"Main Street", 39.5, -89.25}};
const Location kRelative{Location::Relative{"", 1, 2}};

BotAnswer answerOf(Value value, Type type, Location location = {}) {
  return {.value = std::move(value),
          .location = std::move(location),
          .type = type,
          .iterationId = 4,
          .messageId = "message",
          .messageKey = "message key",
          .moduleId = "module",
          .moduleKey = "module key",
          .messageType = "photo",
          .timestamp = Date::fromSecondsSince1970(1'700'000'000),
          .context = {}};
}

/// A kept answer; its shown value is derived from the keyed one where the test does not care.
BotAPIAnswerDTO kept(BotAnswerKeyValueDTO keyValue, std::optional<std::string> type = {},
                     BotAnswerValueDTO value = {""}) {
  return {.value = std::move(value),
          .keyValue = std::move(keyValue),
          .location = {},
          .iterationId = 4,
          .messageId = "message",
          .moduleId = "module",
          .type = std::move(type),
          .locationType = "none",
          .context = "cv",
          .answeredAt = Date::fromSecondsSince1970(1.2345),
          .wasSynced = true};
}

TEST(AnswerConversion, GivesTheServerTheFormOfTheType) {
  struct Row {
    std::string_view label;
    BotAnswer answer;
    std::string_view value;
    std::string_view keyValue;
  };
  constexpr std::string_view kPlace =
      R"({"address":"Main Street","coords":{"lat":39.5,"lng":-89.25},"locationType":"precise"})";
  constexpr std::string_view kNowhere = R"({"address":"Address not provided","locationType":"none"})";
  const Row rows[] = {
      {"text", answerOf({Value::String{"yes", "y"}}, Type::regular), R"("yes")", R"({"key":"y","value":"yes"})"},
      {"texts", answerOf({Value::StringArray{{{"a", "1"}, {"b", "2"}}}}, Type::regular), R"(["a","b"])",
       R"([{"key":"1","value":"a"},{"key":"2","value":"b"}])"},
      {"no texts", answerOf({Value::StringArray{}}, Type::regular), "[]", "[]"},
      {"URL", answerOf({Value::Url{kWeb, "k", false}}, Type::url), R"("https://a.example/x.jpeg")",
       R"({"key":"k","value":"https://a.example/x.jpeg"})"},
      {"bundle", answerOf({Value::MediaBundle{kFile, kWeb, true}}, Type::mediaBundle),
       R"({"mediaUrl":"file:///now/Documents/a.mp4","thumbnailUrl":"https://a.example/x.jpeg"})",
       R"({"mediaUrl":"file:///now/Documents/a.mp4","thumbnailUrl":"https://a.example/x.jpeg"})"},
      {"bundle without thumbnail", answerOf({Value::MediaBundle{kWeb, {}, false}}, Type::mediaBundle),
       R"({"mediaUrl":"https://a.example/x.jpeg"})", R"({"mediaUrl":"https://a.example/x.jpeg"})"},
      {"location", answerOf({}, Type::location, kPrecise), kPlace, kPlace},
      {"no location", answerOf({Value::String{"x", "y"}}, Type::location), kNowhere, kNowhere},
      {"continues by itself", answerOf({Value::String{"x", "y"}}, Type::automaticallyContinueWithNextMessage), R"("")",
       R"({"key":"","value":""})"},
  };
  for (const auto& [label, answer, value, keyValue] : rows) {
    const BotAPIAnswerDTO dto = apiAnswer(answer, false);
    EXPECT_EQ(foundation::encodeJSON(dto.value), value) << label;
    EXPECT_EQ(foundation::encodeJSON(dto.keyValue), keyValue) << label;
    EXPECT_EQ(dto.wasSynced, false) << label;
  }
}

TEST(AnswerConversion, CarriesWhatBelongsToEveryAnswer) {
  struct Row {
    Location location;
    std::string_view type;
    std::optional<LocationSnapshotDTO> snapshot;
  };
  const Row rows[] = {
      {kPrecise, "precise", LocationSnapshotDTO{{-89.25, 39.5}, "Point"}},
      {kRelative, "relative", LocationSnapshotDTO{{2, 1}, "Point"}},
      {{}, "none", {}},
  };
  for (const auto& [location, type, snapshot] : rows) {
    BotAnswer answer = answerOf({Value::String{"v", "k"}}, Type::regular, location);
    EXPECT_EQ(apiAnswer(answer, {}), (BotAPIAnswerDTO{.value = {"v"},
                                                      .keyValue = {KeyValue{"k", "v"}},
                                                      .location = snapshot,
                                                      .iterationId = 4,
                                                      .messageId = "message",
                                                      .moduleId = "module",
                                                      .type = "photo",
                                                      .locationType = std::string(type),
                                                      .context = "cv_utilities.na.skip_cv",
                                                      .answeredAt = answer.timestamp,
                                                      .wasSynced = {}}))
        << type;
    answer.context = "checked";
    EXPECT_EQ(apiAnswer(answer, true).context, "checked");
    EXPECT_EQ(engineAnswer(answer, FakeImageCodec()),
              (NativeBotEngineAnswerDTO{.answers = {{"k", ConversationDTO::AnswerDTO::Value::string("v")}},
                                        .location = snapshot,
                                        .locationType = std::string(type),
                                        .iterationId = 4,
                                        .messageId = "message",
                                        .moduleId = "module",
                                        .timestamp = 1'700'000'000'000}))
        << type;
  }
}

TEST(AnswerConversionDeathTest, EndsTheProcessForAMismatchedValue) {
  EXPECT_DEATH(apiAnswer(answerOf({}, Type::url), {}), "Mismatched value for BotAnswerType.url");
  EXPECT_DEATH(apiAnswer(answerOf({Value::Url{kWeb, "", false}}, Type::mediaBundle), {}),
               "Mismatched value for BotAnswerType.panorama");
  EXPECT_DEATH(apiAnswer(answerOf({Value::Image{imageOf("x"), ""}}, Type::regular), {}),
               "Mismatched value for BotAnswerType.regular");
}

TEST(AnswerConversion, GivesTheWalkTheEntriesOfANewAnswer) {
  struct Row {
    std::string_view label;
    Value value;
    std::string_view entries;
  };
  const Row rows[] = {
      {"picture",
       {Value::Image{imageOf("pixels"), "roof"}},
       R"([{"key":"roof","value":{"data":{"_0":"SlBFRyAxLjAwMDAwMDpwaXhlbHM="}}}])"},
      {"picture that does not encode",
       {Value::Image{imageOf(""), "roof"}},
       R"([{"key":"roof","value":{"data":{"_0":""}}}])"},
      {"text that looks like a URL",
       {Value::String{"https://a.example", "k"}},
       R"([{"key":"k","value":{"string":{"_0":"https://a.example"}}}])"},
      {"texts",
       {Value::StringArray{{{"a", "1"}, {"b", "2"}}}},
       R"([{"key":"1","value":{"string":{"_0":"a"}}},{"key":"2","value":{"string":{"_0":"b"}}}])"},
      {"URL", {Value::Url{kWeb, "k", false}}, R"([{"key":"k","value":{"url":{"_0":"https://a.example/x.jpeg"}}}])"},
      {"bundle",
       {Value::MediaBundle{kFile, kWeb, true}},
       R"([{"key":"mediaUrl","value":{"url":{"_0":"file:///now/Documents/a.mp4"}}},)"
       R"({"key":"thumbnailUrl","value":{"url":{"_0":"https://a.example/x.jpeg"}}}])"},
      {"bundle without thumbnail",
       {Value::MediaBundle{kWeb, {}, false}},
       R"([{"key":"mediaUrl","value":{"url":{"_0":"https://a.example/x.jpeg"}}}])"},
      {"nothing", {Value::Empty{}}, R"([{"key":"","value":{"string":{"_0":""}}}])"},
  };
  for (const Row& row : rows) {
    const auto answer = engineAnswer(answerOf(row.value, Type::regular), FakeImageCodec());
    EXPECT_EQ(foundation::encodeJSON(answer.answers), row.entries) << row.label;
  }
}

TEST(AnswerConversion, GivesTheWalkTheEntriesOfAKeptAnswer) {
  struct Row {
    std::string_view label;
    BotAnswerKeyValueDTO keyValue;
    std::string_view entries;
  };
  const URL old = *URL::parse("file:///old/Documents/b.tar");
  const Row rows[] = {
      {"text", {KeyValue{"k", "plain"}}, R"([{"key":"k","value":{"string":{"_0":"plain"}}}])"},
      {"web", {KeyValue{"k", "https://a.example/x"}}, R"([{"key":"k","value":{"url":{"_0":"https://a.example/x"}}}])"},
      {"file",
       {KeyValue{"k", old.absoluteString()}},
       R"([{"key":"k","value":{"url":{"_0":"file:///now/Documents/b.tar"}}}])"},
      {"list is text in each case",
       {std::vector<KeyValue>{{"k", "https://a.example/x"}}},
       R"([{"key":"k","value":{"string":{"_0":"https://a.example/x"}}}])"},
      {"empty list", {std::vector<KeyValue>{}}, "[]"},
      {"location",
       {LocationDTO{"here", Coordinate{1, 2}, "precise"}},
       R"([{"key":"","value":{"string":{"_0":"here"}}}])"},
      {"bundle",
       {MediaBundleDTO{old, kWeb}},
       R"([{"key":"mediaUrl","value":{"url":{"_0":"file:///now/Documents/b.tar"}}},)"
       R"({"key":"thumbnailUrl","value":{"url":{"_0":"https://a.example/x.jpeg"}}}])"},
      {"bundle without thumbnail",
       {MediaBundleDTO{kWeb, {}}},
       R"([{"key":"mediaUrl","value":{"url":{"_0":"https://a.example/x.jpeg"}}}])"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(foundation::encodeJSON(engineAnswer(kept(row.keyValue), kDocuments).answers), row.entries) << row.label;
  }

  BotAPIAnswerDTO dto = kept({KeyValue{}});
  dto.location = {{5}, "Area"};
  dto.locationType = "anything";
  const NativeBotEngineAnswerDTO answer = engineAnswer(dto, kDocuments);
  EXPECT_EQ(answer.location, dto.location);
  EXPECT_EQ(answer.locationType, "anything");
  EXPECT_EQ(answer.timestamp, 1235) << "halves go away from zero";
}

TEST(AnswerConversion, GivesTheChatItsFormBack) {
  struct Row {
    std::string_view label;
    std::string_view type;
    BotAnswerKeyValueDTO keyValue;
    Value value;
    Type answerType;
  };
  const std::string web = kWeb.absoluteString();
  const std::string old = "file:///old/Documents/a.mp4";
  const Row rows[] = {
      {"text", "select_one", {KeyValue{"k", "v"}}, {Value::String{"v", "k"}}, Type::regular},
      {"web", "photo", {KeyValue{"k", web}}, {Value::Url{kWeb, "k", false}}, Type::url},
      {"file", "photo", {KeyValue{"k", old}}, {Value::Url{kFile, "k", true}}, Type::url},
      {"typed text", "text", {KeyValue{"k", web}}, {Value::String{web, "k"}}, Type::regular},
      {"typed number", "number", {KeyValue{"k", old}}, {Value::String{old, "k"}}, Type::regular},
      {"typed year", "year", {KeyValue{"k", old}}, {Value::String{old, "k"}}, Type::regular},
      {"nothing", "bot", {KeyValue{}}, {Value::Empty{}}, Type::automaticallyContinueWithNextMessage},
      {"empty text of a key", "text", {KeyValue{"k", ""}}, {Value::String{"", "k"}}, Type::regular},
      {"list",
       "select_multiple",
       {std::vector<KeyValue>{{"k", "v"}}},
       {Value::StringArray{{{"v", "k"}}}},
       Type::regular},
      {"bundle",
       "video",
       {MediaBundleDTO{kWeb, *URL::parse(old)}},
       {Value::MediaBundle{kWeb, kFile, true}},
       Type::mediaBundle},
      {"bundle of the web",
       "video",
       {MediaBundleDTO{kWeb, {}}},
       {Value::MediaBundle{kWeb, {}, false}},
       Type::mediaBundle},
      {"location", "location", {LocationDTO{"here", {}, "none"}}, {Value::String{"here", ""}}, Type::location},
  };
  for (const auto& [label, type, keyValue, value, answerType] : rows) {
    const BotAPIAnswerDTO dto = kept(keyValue, std::string(type));
    const auto answer = botAnswer(dto, kDocuments);
    ASSERT_TRUE(answer) << label;
    EXPECT_TRUE(answer->value == value) << label;
    EXPECT_EQ(answer->type, answerType) << label;
    // What goes out again is what was kept.
    const BotAPIAnswerDTO delivered = apiAnswer(*answer, true);
    EXPECT_EQ(delivered.context, "cv") << label;
    EXPECT_EQ(delivered.type, dto.type) << label;
    EXPECT_EQ(delivered.answeredAt, dto.answeredAt) << label;
    if (answerType == Type::regular) {
      EXPECT_EQ(delivered.keyValue, dto.keyValue) << label;
    }
  }
}

/// What the sync delivers is what the first attempt would have sent.
TEST(AnswerConversion, DeliversAKeptAnswerAsItWasGiven) {
  const BotAnswer given[] = {
      answerOf({Value::String{"red", "k"}}, Type::regular),
      answerOf({Value::StringArray{{{"B", "b"}, {"A", "a"}}}}, Type::regular),
      answerOf({Value::Url{kFile, "k", true}}, Type::url),
      answerOf({Value::MediaBundle{kFile, kWeb, true}}, Type::mediaBundle),
      answerOf({}, Type::automaticallyContinueWithNextMessage),
      answerOf({}, Type::location, kPrecise),
      answerOf({}, Type::location, kRelative),
      answerOf({}, Type::location),
  };
  for (const BotAnswer& answer : given) {
    const BotAPIAnswerDTO first = apiAnswer(answer, false);
    const auto back = botAnswer(first, kDocuments);
    ASSERT_TRUE(back) << foundation::encodeJSON(first);
    EXPECT_EQ(apiAnswer(*back, false), first) << foundation::encodeJSON(first);
  }
}

TEST(AnswerConversion, FindsTheLocationOfAKeptAnswer) {
  struct Row {
    std::string_view label;
    BotAnswerValueDTO value;
    std::optional<LocationSnapshotDTO> snapshot;
    Location want;
  };
  const LocationSnapshotDTO snapshot{{-89.25, 39.5}, "Point"};
  const Row rows[] = {
      {"precise", {LocationDTO{"a", Coordinate{1, 2}, "precise"}}, snapshot, {Location::Precise{"a", 1, 2}}},
      {"relative", {LocationDTO{"a", Coordinate{1, 2}, "relative"}}, {}, {Location::Relative{"a", 1, 2}}},
      {"no coordinates", {LocationDTO{"a", {}, "precise"}}, {}, {Location::Precise{"a", 0, 0}}},
      {"none, whatever the snapshot says", {LocationDTO{"a", Coordinate{1, 2}, "none"}}, snapshot, {}},
      {"snapshot", {"text"}, snapshot, {Location::Precise{"", 39.5, -89.25}}},
      {"snapshot with a height", {"text"}, {{{1, 2, 3}, "Point"}}, {Location::Precise{"", 3, 1}}},
      {"snapshot of one number", {"text"}, {{{7}, "Point"}}, {Location::Precise{"", 7, 7}}},
      {"empty snapshot", {"text"}, {{{}, "Point"}}, {Location::Precise{"", 0, 0}}},
      {"nothing", {"text"}, {}, {}},
  };
  for (const Row& row : rows) {
    BotAPIAnswerDTO dto = kept({KeyValue{"k", "v"}}, {}, row.value);
    dto.location = row.snapshot;
    const auto answer = botAnswer(dto, kDocuments);
    ASSERT_TRUE(answer) << row.label;
    EXPECT_TRUE(answer->location == row.want) << row.label;
  }
  EXPECT_FALSE(botAnswer(kept({KeyValue{}}, {}, {LocationDTO{"a", {}, "elsewhere"}}), kDocuments));
}

}  // namespace
}  // namespace kestrom::models
