#include "Apps/kestrom/RowJSON.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kestrom::app {
namespace {

using models::BotTextMessage;
using models::ChatInputTrigger;
using models::Message;
using models::MultipleSelectionMessage;
using models::SingleSelectionMessage;
using models::UserPhotoMessage;
using models::UserVideoMessage;

foundation::URL url(std::string_view text) {
  return foundation::URL::parse(text).value();
}

std::string rowsText(const std::vector<Message>& rows) {
  foundation::JSONWriter writer;
  writeRows(rows, writer);
  return std::move(writer).text();
}

/// The text of one row that stands alone.
std::string rowText(Message row) {
  const std::string text = rowsText({std::move(row)});
  return text.substr(1, text.size() - 2);
}

TEST(RowJSON, WritesEachKindWithItsFields) {
  using LocalAction = SingleSelectionMessage::Option::LocalAction;
  const foundation::Date moment = foundation::Date::fromSecondsSince1970(12.5);
  const imaging::Image image{2, 3, nullptr};

  EXPECT_EQ(rowText({BotTextMessage{"n", "Hi \"you\"", ChatInputTrigger{ChatInputTrigger::Year{1800, 2024}}, true, 2,
                                    "k", "m", "mk", "year", "cv/roof"}}),
            R"({"type":"BotTextMessage","identifier":"nm2","isEditable":true,"id":"n","text":"Hi \"you\"",)"
            R"("trigger":{"year":{"min":1800,"max":2024}},"iterationId":2,"messageKey":"k","moduleId":"m",)"
            R"("moduleKey":"mk","messageType":"year","cvEndpoint":"cv/roof","grouping":"standalone"})");
  EXPECT_EQ(rowText({SingleSelectionMessage{"n",
                                            {{"a", "A", true, LocalAction::declineCapture}, {"b", "B", false, {}}},
                                            true,
                                            false,
                                            0,
                                            "k",
                                            "m",
                                            "mk",
                                            "cyoa",
                                            {}}}),
            R"({"type":"SingleSelectionMessage","identifier":"nm0","isEditable":false,"id":"n","options":[)"
            R"({"id":"a","text":"A","wasFulfilled":true,"localAction":"declineCapture"},)"
            R"({"id":"b","text":"B","wasFulfilled":false}],"isModuleSelection":true,"iterationId":0,"messageKey":"k",)"
            R"("moduleId":"m","moduleKey":"mk","messageType":"cyoa"})");
  EXPECT_EQ(
      rowText({MultipleSelectionMessage{
          "n", {{"a", "A", true, false}, {"b", "B", false, true}}, false, 0, "k", "m", "mk", "select_multiple", {}}}),
      R"({"type":"MultipleSelectionMessage","identifier":"nm0","isEditable":false,"id":"n","options":[)"
      R"({"id":"a","text":"A","isSelected":true,"deselectOthers":false},)"
      R"({"id":"b","text":"B","isSelected":false,"deselectOthers":true}],"iterationId":0,"messageKey":"k",)"
      R"("moduleId":"m","moduleKey":"mk","messageType":"select_multiple"})");
  EXPECT_EQ(rowText({models::UserTextMessage{"u", "Yes", moment, true, false}}),
            R"({"type":"UserTextMessage","identifier":"u","isEditable":true,"id":"u","text":"Yes","timestamp":12.5,)"
            R"("isTextInputIntroductionPlaceholder":false})");
  EXPECT_EQ(rowText({UserPhotoMessage{
                "u", {UserPhotoMessage::State::SuccessURL{url("https://h/a.gif")}}, moment, false, true}}),
            R"({"type":"UserPhotoMessage","identifier":"u","isEditable":false,"id":"u",)"
            R"("state":{"successURL":"https://h/a.gif"},"timestamp":12.5,"landscape":true})");
  EXPECT_EQ(rowText({UserPhotoMessage{"u", {UserPhotoMessage::State::SuccessData{image}}, {}, false, false}}),
            R"({"type":"UserPhotoMessage","identifier":"u","isEditable":false,"id":"u",)"
            R"("state":{"successData":{"width":2,"height":3}},"landscape":false})");
  EXPECT_EQ(rowText({UserVideoMessage{"u", {UserVideoMessage::State::Success{url("https://h/a.mp4")}}, {}, false}}),
            R"({"type":"UserVideoMessage","identifier":"u","isEditable":false,"id":"u",)"
            R"("state":{"success":"https://h/a.mp4"}})");
  EXPECT_EQ(rowText({models::InfoMessage{"i", "Welcome", false}}),
            R"({"type":"InfoMessage","identifier":"i","isEditable":false,"id":"i","text":"Welcome"})");
  EXPECT_EQ(rowText({models::TypingMessage{"t", true, false, true}}),
            R"({"type":"TypingMessage","identifier":"t","isEditable":true})");
}

TEST(RowJSON, TriggersLeaveOutAbsentBounds) {
  struct Row {
    ChatInputTrigger trigger;
    std::string_view want;
  };
  const Row rows[] = {
      {{ChatInputTrigger::Number{1, 9}}, R"({"number":{"min":1,"max":9}})"},
      {{ChatInputTrigger::Number{{}, 0}}, R"({"number":{"max":0}})"},
      {{ChatInputTrigger::Text{5, {}}}, R"({"text":{"min":5}})"},
      {{ChatInputTrigger::Text{}}, R"({"text":{}})"},
      {{ChatInputTrigger::AutomaticallyContinueWithNextMessage{}}, R"("automaticallyContinueWithNextMessage")"},
  };
  for (const Row& row : rows) {
    BotTextMessage message;
    message.trigger = row.trigger;
    EXPECT_NE(rowText({message}).find(R"("trigger":)" + std::string(row.want) + ","), std::string::npos) << row.want;
  }
}

TEST(RowJSON, GroupsRunsOfTheBotsRows) {
  const Message bot{BotTextMessage{}};
  const Message typing{models::TypingMessage{"t", true, false, true}};
  const Message user{models::UserTextMessage{}};
  const auto groupings = [](const std::vector<Message>& rows) {
    const std::string text = rowsText(rows);
    std::string found;
    constexpr std::string_view kKey = R"("grouping":")";
    for (std::size_t at = text.find(kKey); at != std::string::npos; at = text.find(kKey, at)) {
      at += kKey.size();
      found += (found.empty() ? "" : " ") + text.substr(at, text.find('"', at) - at);
    }
    return found;
  };
  EXPECT_EQ(groupings({bot}), "standalone");
  EXPECT_EQ(groupings({user, bot, user, bot, bot}), "standalone first last");
  EXPECT_EQ(groupings({bot, bot, bot, user}), "first groupPart last");
  EXPECT_EQ(groupings({user, bot, typing}), "first");
  EXPECT_EQ(groupings({bot, Message{SingleSelectionMessage{}}}), "standalone");
}

}  // namespace
}  // namespace kestrom::app
