#include "Core/Services/Bot/DefaultBotEngine.hpp"

#include "Core/Models/AnswerConversion.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Tests/Support/Collected.hpp"
#include "Tests/Support/FakeAnswerService.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/FakeImageCodec.hpp"
#include "Tests/Support/TemplateBuilder.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kestrom::services {
namespace {

using foundation::JSONDocument;
using foundation::URL;
using models::BotAnswer;
using models::BotTextMessage;
using models::Message;
using models::UserPhotoMessage;
using models::UserTextMessage;
using tests::leaf;
using tests::module;
using tests::Nodes;
using tests::NodeType;
using Lines = std::vector<std::string>;
using Result = BotEngine::Result;
using String = BotAnswer::Value::String;

/// An answer of the chat to the question in the module "m".
BotAnswer given(const std::string& question, const std::string& text, std::int64_t iteration = 0) {
  BotAnswer answer;
  answer.value = {String{text, question + ".key"}};
  answer.iterationId = iteration;
  answer.messageId = question;
  answer.moduleId = "m";
  return answer;
}

/// What the chat shows: "bot" and "user" bubbles.
Lines shown(const std::vector<Message>& messages) {
  Lines lines;
  for (const Message& message : messages) {
    if (const auto* bot = std::get_if<BotTextMessage>(&message.form)) lines.push_back("bot: " + bot->text);
    if (const auto* user = std::get_if<UserTextMessage>(&message.form)) lines.push_back("user: " + user->text);
    if (const auto* photo = std::get_if<UserPhotoMessage>(&message.form)) {
      lines.push_back("photo: " + std::get<UserPhotoMessage::State::SuccessURL>(photo->state.form).url.path());
    }
  }
  return lines;
}

/// Walks, and keeps the answers that it was last asked with.
class RecordingChatBot final : public ChatBot {
 public:
  explicit RecordingChatBot(const foundation::Clock& clock) : _walk([&clock] { return clock.now(); }) {}

  models::ConversationDTO conversation(std::span<const models::NativeBotEngineAnswerDTO> answers,
                                       const models::NodeList& sequence) const override {
    history.clear();
    for (const auto& answer : answers) {
      const auto& text = std::get<models::ConversationDTO::AnswerDTO::Value::String>(answer.answers.at(0).value.form);
      history.push_back(answer.messageId + "/" + answer.moduleId + "/" + std::to_string(answer.iterationId) + "=" +
                        text.text);
    }
    return _walk.conversation(answers, sequence);
  }

  mutable Lines history;

 private:
  NativeBotEngine _walk;
};

class BotEngineTest : public testing::Test {
 protected:
  DefaultBotEngine makeEngine(Nodes modules, std::shared_ptr<const ChatBot> bot) {
    const auto json =
        std::make_shared<const JSONDocument>(JSONDocument::parse(R"({"customer":{"firstName":"Ada"}})").value());
    models::KestromObjectDetails details;
    details.id = "c1";
    details.bot = std::make_shared<const models::BotTemplate>(models::BotTemplate{std::move(modules)});
    details.rawJSON = json;
    return DefaultBotEngine({
        .kestromObject = std::move(details),
        .chatbot = std::move(bot),
        .answerService = answers,
        .handlebarParser = HandleBarParser(json),
        .imageCodec = std::make_shared<const tests::FakeImageCodec>(),
        .documentsDirectory = URL::fromFilePath("/present/documents"),
        .clock = clock,
    });
  }

  /// The one result that came inside the subscription.
  static Result resultOf(const reactive::Publisher<Result, AnyError>& publisher) {
    const tests::Collected<Result, AnyError> collected(publisher);
    EXPECT_EQ(collected.ends, 1);
    EXPECT_FALSE(collected.failure);
    EXPECT_EQ(collected.values.size(), 1u);
    return collected.values.at(0);
  }

  tests::FakeClock clock;
  std::shared_ptr<RecordingChatBot> chatBot = std::make_shared<RecordingChatBot>(clock);
  std::shared_ptr<tests::FakeAnswerService> answers = std::make_shared<tests::FakeAnswerService>();
};

TEST_F(BotEngineTest, TakesUpTheConversationFromTheHistory) {
  DefaultBotEngine engine = makeEngine({module("m", {leaf("name"), leaf("roof", NodeType::photo), leaf("end")})},
                                       std::make_shared<NativeBotEngine>([this] { return clock.now(); }));
  const auto start = engine.start();
  EXPECT_EQ(shown(resultOf(start).conversation.messages), (Lines{"bot: name?"}));

  BotAnswer photo = given("roof", "");
  photo.type = BotAnswer::BotAnswerType::url;
  photo.value = {BotAnswer::Value::Url{URL::fromFilePath("/earlier/documents/roof.jpeg"), "roof.key", true}};
  answers->history = {models::apiAnswer(given("name", "Ada"), true), models::apiAnswer(photo, false)};
  const Result resumed = resultOf(start);
  EXPECT_EQ(shown(resumed.conversation.messages),
            (Lines{"bot: name?", "user: Ada", "bot: roof?", "photo: /present/documents/roof.jpeg", "bot: end?"}));
  EXPECT_FALSE(resumed.isCompleted);
  ASSERT_TRUE(resumed.conversation.editableMessages);
  EXPECT_EQ(shown(*resumed.conversation.editableMessages), (Lines{"bot: roof?"}));

  const Result finished = resultOf(engine.submit({.answer = given("end", "Bye")}));
  EXPECT_TRUE(finished.isCompleted);
  EXPECT_EQ(finished.conversation.progress, 1);

  EXPECT_EQ(shown(resultOf(start).conversation.messages), shown(resumed.conversation.messages))
      << "the history takes the place of the answers";
}

TEST_F(BotEngineTest, KeepsAnAnswerWhereItsKindSays) {
  struct Row {
    const char* label;
    std::vector<BotEngine::Submission> submissions;
    Lines history;
    std::size_t submitted;
  };
  const auto answer = [](BotAnswer given) { return BotEngine::Submission{std::move(given), true, false}; };
  const auto localAnswer = [](BotAnswer given) { return BotEngine::Submission{std::move(given), false, false}; };
  const auto edit = [](BotAnswer given) { return BotEngine::Submission{std::move(given), true, true}; };
  const auto localEdit = [](BotAnswer given) { return BotEngine::Submission{std::move(given), false, true}; };
  BotAnswer elsewhere = given("a", "2");
  elsewhere.moduleId = "n";

  const Row rows[] = {
      {"answers in their order", {answer(given("b", "1")), answer(given("a", "2"))}, {"b/m/0=1", "a/m/0=2"}, 2},
      {"the same question again", {answer(given("a", "1")), answer(given("a", "2"))}, {"a/m/0=1", "a/m/0=2"}, 2},
      {"not for the server", {localAnswer(given("a", "1")), localEdit(given("a", "2"))}, {"a/m/0=2"}, 0},
      {"an edit of nothing", {answer(given("a", "1")), edit(given("b", "2"))}, {"a/m/0=1", "b/m/0=2"}, 2},
      {"two edits",
       {answer(given("a", "1")), answer(given("b", "1")), edit(given("a", "2")), edit(given("a", "3"))},
       {"a/m/0=3", "b/m/0=1"},
       4},
      {"an edit of the latest of two",
       {answer(given("a", "1")), answer(given("a", "2")), answer(given("b", "1")), edit(given("a", "3"))},
       {"a/m/0=1", "a/m/0=3", "b/m/0=1"},
       4},
      {"an edit in another pass", {answer(given("a", "1")), edit(given("a", "2", 1))}, {"a/m/0=1", "a/m/1=2"}, 2},
      {"an edit in another module", {answer(given("a", "1")), edit(elsewhere)}, {"a/m/0=1", "a/n/0=2"}, 2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    answers->submitted.clear();
    DefaultBotEngine engine = makeEngine({module("m", {leaf("a"), leaf("b")})}, chatBot);
    // What a chat does not listen to is taken all the same.
    for (const auto& submission : row.submissions) engine.submit(submission);
    EXPECT_EQ(chatBot->history, row.history);
    ASSERT_EQ(answers->submitted.size(), row.submitted);
    for (std::size_t index = 0; index < row.submitted; ++index) {
      EXPECT_EQ(answers->submitted[index].kestromId, "c1");
      EXPECT_EQ(answers->submitted[index].answer, row.submissions[index].answer);
    }
  }
}

TEST_F(BotEngineTest, AppliesLaterAnswersAgainAfterAnEdit) {
  DefaultBotEngine engine = makeEngine(
      {module("m", {tests::branching("pool", {tests::when("pool.key", {leaf("depth")})}), leaf("end")})}, chatBot);
  engine.submit({.answer = given("pool", "Yes")});
  engine.submit({.answer = given("depth", "2")});

  BotAnswer no = given("pool", "No");
  no.value = {String{"No", "no"}};
  EXPECT_EQ(shown(resultOf(engine.submit({.answer = no, .isEdit = true})).conversation.messages),
            (Lines{"bot: pool?", "user: No", "bot: end?"}));
  EXPECT_EQ(shown(resultOf(engine.submit({.answer = given("pool", "Yes"), .isEdit = true})).conversation.messages),
            (Lines{"bot: pool?", "user: Yes", "bot: depth?", "user: 2", "bot: end?"}));
}

TEST_F(BotEngineTest, WaitsForNoDelivery) {
  {
    DefaultBotEngine engine = makeEngine({module("m", {leaf("a"), leaf("b")})}, chatBot);
    const auto first = engine.submit({.answer = given("a", "1")});
    EXPECT_EQ(shown(resultOf(first).conversation.messages), (Lines{"bot: a?", "user: 1", "bot: b?"}));
    answers->outcomes.finish(reactive::Completion<AnyError>::failed(AnyError(DatabaseError::unknown)));
    const auto second = engine.submit({.answer = given("b", "2")});
    EXPECT_TRUE(resultOf(second).isCompleted);
    EXPECT_FALSE(resultOf(first).isCompleted) << "the state at its call";
  }
  EXPECT_EQ(answers->cancelled, 0);

  answers = std::make_shared<tests::FakeAnswerService>();
  {
    DefaultBotEngine engine = makeEngine({module("m", {leaf("a")})}, chatBot);
    engine.submit({.answer = given("a", "1")});
    EXPECT_EQ(answers->cancelled, 0) << "the chat dropped its result, not the submission";
  }
  EXPECT_EQ(answers->cancelled, 1);
}

TEST_F(BotEngineTest, FillsTextsFromTheCaseYearsFromTheClockAndListsInWords) {
  models::BotNode choice = leaf("features", NodeType::selectMultiple);
  choice.text = "What do you have, {{case.customer.firstName}}?";
  DefaultBotEngine engine = makeEngine({module("m", {choice, leaf("built", NodeType::year)})}, chatBot);
  BotAnswer several = given("features", "");
  several.value = {BotAnswer::Value::StringArray{{{"A pool", "p"}, {"a shed", "s"}, {"a barn", "b"}}}};
  const Result result = resultOf(engine.submit({.answer = several}));
  EXPECT_EQ(shown(result.conversation.messages),
            (Lines{"bot: What do you have, Ada?", "user: A pool, a shed, and a barn", "bot: built?"}));
  const auto& question = std::get<BotTextMessage>(result.conversation.messages.back().form);
  EXPECT_EQ(question.trigger, (models::ChatInputTrigger{models::ChatInputTrigger::Year{1800, 2023}}));
}

TEST_F(BotEngineTest, HasFinishedAnEmptyTemplate) {
  const Result result = resultOf(makeEngine({}, chatBot).start());
  EXPECT_TRUE(result.isCompleted);
  EXPECT_TRUE(std::isnan(result.conversation.progress));
}

}  // namespace
}  // namespace kestrom::services
