#include "Core/Models/Message.hpp"

#include <gtest/gtest.h>

namespace kestrom::models {
namespace {

using foundation::URL;

/// A row of this kind with the fields that its identity and its details are made of.
template <class Row>
Row rowOf(std::string moduleKey, std::string messageType, std::int64_t iterationId = 0) {
  Row row;
  row.id = "id";
  row.iterationId = iterationId;
  row.messageKey = "key";
  row.moduleId = "module";
  row.moduleKey = std::move(moduleKey);
  row.messageType = std::move(messageType);
  return row;
}

BotTextMessage bubble(std::optional<ChatInputTrigger> trigger) {
  auto row = rowOf<BotTextMessage>("intro", "year", 2);
  row.text = "t";
  row.trigger = trigger;
  return row;
}

template <class Row>
Row editable(Row row) {
  row.isEditable = true;
  return row;
}

TEST(Message, SaysWhatItIs) {
  struct Row {
    std::string_view label;
    Message message;
    std::string_view identifier;
    bool isEditable;
    bool isBotQuestion;
    bool isBotMessage;
    bool hasDetails;
  };
  const URL url = *URL::parse("https://a.example/x");
  const auto single = editable(rowOf<SingleSelectionMessage>("intro", "cyoa", -1));
  const auto multiple = rowOf<MultipleSelectionMessage>("intro", "select_multiple");
  const Row rows[] = {
      {"statement", {bubble({})}, "idmodule2", false, false, true, true},
      {"continues by itself",
       {bubble({{ChatInputTrigger::AutomaticallyContinueWithNextMessage{}}})},
       "idmodule2",
       false,
       false,
       true,
       true},
      {"year", {bubble({{ChatInputTrigger::Year{1, 2}}})}, "idmodule2", false, true, true, true},
      {"number", {bubble({{ChatInputTrigger::Number{}}})}, "idmodule2", false, true, true, true},
      {"text", {bubble({{ChatInputTrigger::Text{}}})}, "idmodule2", false, true, true, true},
      {"single", {single}, "idmodule-1", true, true, false, true},
      {"multiple", {multiple}, "idmodule0", false, true, false, true},
      {"user's text", {UserTextMessage{"id", "t", {}, true, false}}, "id", true, false, false, false},
      {"photo",
       {UserPhotoMessage{"id", {UserPhotoMessage::State::SuccessURL{url}}, {}, false, true}},
       "id",
       false,
       false,
       false,
       false},
      {"video",
       {UserVideoMessage{"id", {UserVideoMessage::State::Success{url}}, {}, true}},
       "id",
       true,
       false,
       false,
       false},
      {"info", {InfoMessage{"id", "t", false}}, "id", false, false, false, false},
      {"typing", {TypingMessage{"typing", false, false, true}}, "typing", false, false, true, false},
      {"typing with other fields", {TypingMessage{"typing", true, true, false}}, "typing", true, true, false, false},
  };
  for (const auto& [label, message, identifier, isEditable, isBotQuestion, isBotMessage, hasDetails] : rows) {
    EXPECT_EQ(message.identifier(), identifier) << label;
    EXPECT_EQ(message.isEditable(), isEditable) << label;
    EXPECT_EQ(message.isBotQuestion(), isBotQuestion) << label;
    EXPECT_EQ(message.isBotMessage(), isBotMessage) << label;
    EXPECT_EQ(message.eventDetails(nullptr).has_value(), hasDetails) << label;
  }
}

TEST(Message, TellsAnalyticsTheQuestion) {
  const Message question{bubble({})};
  const Message other{UserTextMessage{"u", "mine", {}, false, false}};
  const EventMessageDetails details{"t", "year", "intro", "key", "beginning"};
  EXPECT_EQ(question.eventDetails(nullptr), details);
  EXPECT_EQ(question.eventDetails(&other), details);

  // A selection has no text of its own: the bubble above it asks.
  const Message selections[] = {
      {rowOf<SingleSelectionMessage>("wrap_up", "select_one")},
      {rowOf<MultipleSelectionMessage>("wrap_up", "select_one")},
  };
  for (const Message& selection : selections) {
    EXPECT_EQ(selection.eventDetails(&question), (EventMessageDetails{"t", "select_one", "wrap_up", "key", "end"}));
    EXPECT_EQ(selection.eventDetails(&other), (EventMessageDetails{"", "select_one", "wrap_up", "key", "end"}));
    EXPECT_EQ(selection.eventDetails(nullptr)->message, "");
  }
  EXPECT_EQ(phaseOfModule(""), "middle");
  EXPECT_EQ(phaseOfModule("Intro"), "middle");
}

/// The chat is rebuilt after each answer and shows what changed: the same picture, decoded anew, is no change.
TEST(Message, ComparesPicturesByTheirContent) {
  const auto photo = [](foundation::Bytes pixels) {
    const imaging::Image image{1, 1, std::make_shared<const foundation::Bytes>(std::move(pixels))};
    return Message{UserPhotoMessage{"id", {UserPhotoMessage::State::SuccessData{image}}, {}, false, false}};
  };
  EXPECT_TRUE(photo({1, 2, 3, 255}) == photo({1, 2, 3, 255}));
  EXPECT_FALSE(photo({1, 2, 3, 255}) == photo({1, 2, 4, 255}));
}

}  // namespace
}  // namespace kestrom::models
