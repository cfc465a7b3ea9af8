#include "Core/Services/Bot/ConversationConversion.hpp"

#include "Tests/Support/FakeImageCodec.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace kestrom::services {
namespace {

using foundation::Date;
using foundation::JSONDocument;
using foundation::URL;
using models::BotTextMessage;
using models::ChatInputTrigger;
using models::ConversationDTO;
using models::Message;
using models::MultipleSelectionMessage;
using models::SingleSelectionMessage;
using models::UserPhotoMessage;
using models::UserTextMessage;
using models::UserVideoMessage;
using AnswerDTO = ConversationDTO::AnswerDTO;
using Lines = std::vector<std::string>;
using LocalAction = SingleSelectionMessage::Option::LocalAction;
using MessageDTO = ConversationDTO::MessageDTO;
using OptionsDTO = MessageDTO::OptionsDTO;
using Type = MessageDTO::MessageTypeDTO;
using Value = AnswerDTO::Value;

/// Identifiers are "new1", "new2", …; the year is 2024.
ConversationConversion conversion() {
  auto document = JSONDocument::parse(R"({"name":"Ann"})");
  return ConversationConversion({
      .handlebarParser = HandleBarParser(std::make_shared<const JSONDocument>(std::move(*document))),
      .listFormatter = std::make_shared<const foundation::ListFormatter>("en_US"),
      .imageCodec = std::make_shared<const tests::FakeImageCodec>(),
      .makeIdentifier = [made = 0]() mutable { return "new" + std::to_string(++made); },
      .presentYear = [] { return std::int64_t{2024}; },
  });
}

std::string numbered(std::string_view name, std::optional<std::int64_t> min, std::optional<std::int64_t> max) {
  const auto text = [](std::optional<std::int64_t> bound) { return bound ? std::to_string(*bound) : "-"; };
  return " " + std::string(name) + "(" + text(min) + ", " + text(max) + ")";
}

std::string triggerText(const std::optional<ChatInputTrigger>& trigger) {
  if (!trigger) return "";
  if (const auto* year = std::get_if<ChatInputTrigger::Year>(&trigger->form)) {
    return numbered("year", year->min, year->max);
  }
  if (const auto* number = std::get_if<ChatInputTrigger::Number>(&trigger->form)) {
    return numbered("number", number->min, number->max);
  }
  if (const auto* text = std::get_if<ChatInputTrigger::Text>(&trigger->form)) {
    return numbered("text", text->min, text->max);
  }
  return " continues";
}

/// What tells the rows of the table apart: the kind, the identifier, and what is asked.
std::string line(const Message& message) {
  if (const auto* bubble = std::get_if<BotTextMessage>(&message.form)) {
    return "bubble " + bubble->id + triggerText(bubble->trigger);
  }
  if (const auto* single = std::get_if<SingleSelectionMessage>(&message.form)) {
    return (single->isModuleSelection ? "modules " : "single ") + single->id;
  }
  if (const auto* multiple = std::get_if<MultipleSelectionMessage>(&message.form)) return "multiple " + multiple->id;
  if (const auto* text = std::get_if<UserTextMessage>(&message.form)) return "user " + text->id + ": " + text->text;
  if (const auto* photo = std::get_if<UserPhotoMessage>(&message.form)) {
    const auto* url = std::get_if<UserPhotoMessage::State::SuccessURL>(&photo->state.form);
    return (photo->landscape ? "wide photo " : "photo ") + photo->id + (url ? " " + url->url.absoluteString() : "");
  }
  const auto& video = std::get<UserVideoMessage>(message.form);
  return "video " + video.id + " " + std::get<UserVideoMessage::State::Success>(video.state.form).url.absoluteString();
}

Lines lines(const MessageDTO& message) {
  Lines result;
  for (const Message& row : conversion().messages(message)) result.push_back(line(row));
  return result;
}

MessageDTO question(Type type, std::optional<OptionsDTO> options = {}) {
  MessageDTO message;
  message.messageId = "abc";
  message.type = type;
  message.options = std::move(options);
  return message;
}

TEST(ConversationConversion, GivesEachTypeItsRows) {
  struct Row {
    std::string_view type;
    Lines bare;
    Lines withOptions;
  };
  const Lines plain = {"bubble abc"};
  const Lines single = {"bubble cba", "single abc"};
  const Lines modules = {"bubble cba", "modules abc"};
  const Row rows[] = {
      {"module", {}, {}},
      {"bot", {"bubble abc continues"}, single},
      {"select_one", plain, single},
      {"select_single_module", plain, modules},
      {"cyoa", plain, modules},
      {"select_multiple", {"bubble cba"}, {"bubble cba", "multiple abc"}},
      {"year", {"bubble abc year(1800, 2024)"}, {"bubble abc year(1, 2)"}},
      {"text", {"bubble abc text(-, -)"}, {"bubble abc text(3, 4)"}},
      {"number", {"bubble abc number(-, -)"}, {"bubble abc number(1, 2)"}},
      {"photo", plain, single},
      {"video", plain, single},
      {"panorama", plain, single},
      {"fnol", plain, single},
      {"meshscan", plain, single},
      {"location", plain, single},
      {"boolean", plain, single},
  };
  const OptionsDTO options{
      .values = {}, .maxValue = 2, .minValue = 1, .maxLength = 4, .minLength = 3, .cvEndpoint = {}};
  for (const auto& [type, bare, withOptions] : rows) {
    const Type known = models::messageTypeOfWireString(type).value();
    EXPECT_EQ(lines(question(known)), bare) << type;
    EXPECT_EQ(lines(question(known, options)), withOptions) << type;
    EXPECT_EQ(lines(question(known, OptionsDTO{})).size(), withOptions.size()) << type;
  }

  // One bound of two, and rows without an identifier of their own.
  EXPECT_EQ(
      lines(question(
          Type::year,
          OptionsDTO{
              .values = {}, .maxValue = 1999, .minValue = {}, .maxLength = {}, .minLength = {}, .cvEndpoint = {}})),
      (Lines{"bubble abc year(1800, 1999)"}));
  MessageDTO nameless = question(Type::boolean, options);
  nameless.messageId = {};
  EXPECT_EQ(lines(nameless), (Lines{"bubble 1wen", "single new1"}));
  nameless.messageId = "ae\u0301👨‍👩‍👧";
  EXPECT_EQ(lines(nameless).front(), "bubble 👨‍👩‍👧e\u0301a");
}

TEST(ConversationConversion, GivesChoicesTheirLocalActions) {
  struct Row {
    Type type;
    std::optional<LocalAction> action;
    std::optional<LocalAction> declined;
  };
  const Row rows[] = {
      {Type::photo, LocalAction::photo, LocalAction::declineCapture},
      {Type::video, LocalAction::video, LocalAction::declineCapture},
      {Type::panorama, LocalAction::panorama, LocalAction::declineCapture},
      {Type::fnol, LocalAction::fnol, LocalAction::declineCapture},
      {Type::meshscan, LocalAction::meshscan, LocalAction::declineCapture},
      {Type::location, LocalAction::location, LocalAction::location},
      {Type::selectOne, {}, {}},
      {Type::bot, {}, {}},
      {Type::cyoa, {}, {}},
  };
  for (const Row& row : rows) {
    MessageDTO message = question(row.type, OptionsDTO{});
    message.options->values = {{"A", "a", {}, {}, {}}, {"B", "b", true, true, {}}, {"C", "c", false, false, true}};
    const auto messages = conversion().messages(message);
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(std::get<SingleSelectionMessage>(messages[1].form).options,
              (std::vector<SingleSelectionMessage::Option>{
                  {"a", "A", false, row.action}, {"b", "B", true, row.action}, {"c", "C", false, row.declined}}))
        << models::wireString(row.type);
  }
}

TEST(ConversationConversion, CarriesTheFieldsOfAQuestion) {
  MessageDTO message = question(Type::selectMultiple, OptionsDTO{});
  message.text = "Hello {{user.name}}";
  message.editable = true;
  message.iterationId = 7;
  message.messageKey = "key";
  message.moduleId = "module";
  message.moduleKey = "module key";
  message.options->cvEndpoint = "check";
  message.options->values = {{"A", "a", {}, true, true}, {"B", "b", {}, {}, {}}};
  const BotTextMessage bubble{"cba",        "Hello Ann",       {},     true, 7, "key", "module",
                              "module key", "select_multiple", "check"};
  const MultipleSelectionMessage multiple{"abc",        {{"a", "A", false, true}, {"b", "B", false, false}},
                                          true,         7,
                                          "key",        "module",
                                          "module key", "select_multiple",
                                          "check"};
  EXPECT_TRUE(conversion().messages(message) == (std::vector<Message>{{bubble}, {multiple}}));

  message.type = Type::cyoa;
  message.options->values.reset();
  const SingleSelectionMessage single{"abc", {}, true, true, 7, "key", "module", "module key", "cyoa", "check"};
  EXPECT_TRUE(conversion().messages(message).back() == Message{single});

  // An answered message has a new identifier and no type; what is absent is empty.
  message.type = {};
  message.answers = {{"k", Value::string("yes")}};
  message.timestamp = 1'700'000'000'500;
  BotTextMessage answered = bubble;
  answered.id = "new1";
  answered.messageType = "";
  const UserTextMessage user{"new2", "yes", Date::fromSecondsSince1970(1'700'000'000.5), true, false};
  EXPECT_TRUE(conversion().messages(message) == (std::vector<Message>{{answered}, {user}}));
  EXPECT_TRUE(conversion().messages(MessageDTO{}) ==
              (std::vector<Message>{{BotTextMessage{"new1", "", {}, false, 0, "", "", "", "", {}}}}));
}

AnswerDTO urlEntry(std::string key, std::string_view text) {
  return {std::move(key), Value::url(*URL::parse(text))};
}

TEST(ConversationConversion, ShowsWhatTheUserAnswered) {
  struct Row {
    std::string_view label;
    std::optional<std::vector<AnswerDTO>> answers;
    Lines want;
  };
  const Row rows[] = {
      {"no answers", {}, {}},
      {"empty list", {{}}, {}},
      {"only empty texts", {{{"a", Value::string("")}, {"b", Value::string("")}}}, {}},
      {"one text of two", {{{"a", Value::string("")}, {"b", Value::string("B")}}}, {"user new2: B"}},
      {"two texts", {{{"a", Value::string("A")}, {"b", Value::string("B")}}}, {"user new2: A and B"}},
      {"three texts",
       {{{"a", Value::string("A")}, {"b", Value::string("B")}, {"c", Value::string("C")}}},
       {"user new2: A, B, and C"}},
      {"text beside media: the media are not shown",
       {{urlEntry("a", "https://a.example/x.jpeg"), {"b", Value::string("B")}}},
       {"user new2: B"}},
      {"empty text beside media", {{urlEntry("a", "https://a.example/x.jpeg"), {"b", Value::string("")}}}, {}},
      {"media in order",
       {{urlEntry("a", "https://a.example/x.mp4?y"),
         {"b", Value::data(tests::bytesOf("picture:x"))},
         {"c", Value::data(tests::bytesOf("no picture"))},
         urlEntry("d", "https://a.example/x.jpeg")}},
       {"video a https://a.example/x.mp4?y", "photo b", "photo d https://a.example/x.jpeg"}},
      {"mp4 anywhere in it",
       {{urlEntry("thumbnailUrl", "https://mp4.example/x.gif")}},
       {"video thumbnailUrl https://mp4.example/x.gif"}},
      {"wide by its key",
       {{urlEntry("thumbnailUrl", "https://a.example/x")}},
       {"wide photo thumbnailUrl https://a.example/x"}},
      {"wide by its extension",
       {{urlEntry("k", "https://a.example/x.GiF?y=z.png")}},
       {"wide photo k https://a.example/x.GiF?y=z.png"}},
      {"gif that is no extension", {{urlEntry("k", "https://a.example/gif")}}, {"photo k https://a.example/gif"}},
  };
  for (const Row& row : rows) {
    MessageDTO message;
    message.answers = row.answers;
    Lines want = {"bubble new1"};
    want.insert(want.end(), row.want.begin(), row.want.end());
    EXPECT_EQ(lines(message), want) << row.label;
  }

  MessageDTO message;
  message.answers = {{urlEntry("a", "https://a.example/x.mp4"), {"b", Value::data(tests::bytesOf("picture:x"))}}};
  message.timestamp = 1'700'000'000'500;
  message.editable = true;
  const auto moment = Date::fromSecondsSince1970(1'700'000'000.5);
  const auto rowsOfMedia = conversion().messages(message);
  ASSERT_EQ(rowsOfMedia.size(), 3U);
  EXPECT_TRUE(rowsOfMedia[1] ==
              (Message{UserVideoMessage{
                  "a", {UserVideoMessage::State::Success{*URL::parse("https://a.example/x.mp4")}}, moment, true}}));
  EXPECT_TRUE(rowsOfMedia[2] ==
              (Message{UserPhotoMessage{
                  "b", {UserPhotoMessage::State::SuccessData{tests::imageOf("x")}}, moment, true, false}}));
}

TEST(ConversationConversion, TellsTheStateOfAConversation) {
  ConversationDTO walked;
  EXPECT_TRUE(std::isnan(conversion().convert(walked).progress));

  walked.progress = {3, 1, false};
  walked.updatedMessages = {MessageDTO{}, question(Type::module), question(Type::boolean, OptionsDTO{})};
  Conversation shown = conversion().convert(walked);
  EXPECT_EQ(shown.progress, 1.0F / 3.0F);
  EXPECT_FALSE(shown.editableMessages);
  Lines messages;
  for (const Message& row : shown.messages) messages.push_back(line(row));
  EXPECT_EQ(messages, (Lines{"bubble new1", "bubble cba", "single abc"}));

  walked.lastEditableAnswer = question(Type::text);
  shown = conversion().convert(walked);
  ASSERT_TRUE(shown.editableMessages && shown.editableMessages->size() == 1);
  EXPECT_EQ(line(shown.editableMessages->front()), "bubble abc text(-, -)");
}

}  // namespace
}  // namespace kestrom::services
