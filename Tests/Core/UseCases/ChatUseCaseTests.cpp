#include "Core/Services/Bot/DefaultBotEngine.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Core/UseCases/DefaultStartBotConversationUseCase.hpp"
#include "Core/UseCases/DefaultSubmitChatAnswerUseCase.hpp"
#include "Tests/Support/Collected.hpp"
#include "Tests/Support/FakeAnswerService.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/TemplateBuilder.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace kestrom::usecases {
namespace {

using services::BotEngine;
using Results = tests::Collected<BotEngine::Result, services::AnyError>;

TEST(ChatUseCases, ShareTheConversationOfOneEngine) {
  const tests::FakeClock clock;
  const auto answers = std::make_shared<tests::FakeAnswerService>();
  models::KestromObjectDetails details;
  details.bot = std::make_shared<const models::BotTemplate>(
      models::BotTemplate{tests::Nodes{tests::module("m", {tests::leaf("a"), tests::leaf("b")})}});
  const auto engine = std::make_shared<services::DefaultBotEngine>(services::DefaultBotEngine::Parts{
      .kestromObject = std::move(details),
      .chatbot = std::make_shared<services::NativeBotEngine>([&clock] { return clock.now(); }),
      .answerService = answers,
      .handlebarParser = services::HandleBarParser(nullptr),
      .imageCodec = std::make_shared<imaging::NoImageCodec>(),
      .documentsDirectory = foundation::URL::fromFilePath("/documents"),
      .clock = clock,
  });
  DefaultStartBotConversationUseCase start(engine);
  DefaultSubmitChatAnswerUseCase submit(engine);
  const auto give = [&](const char* question, bool shouldSubmit) {
    models::BotAnswer answer;
    answer.messageId = question;
    answer.moduleId = "m";
    return Results(submit.execute({.answer = answer, .shouldSubmit = shouldSubmit})).values.at(0);
  };

  EXPECT_FALSE(Results(start.execute()).values.at(0).isCompleted);
  EXPECT_FALSE(give("a", true).isCompleted);
  EXPECT_TRUE(give("b", false).isCompleted);
  EXPECT_EQ(answers->submitted.size(), 1u);
  EXPECT_FALSE(Results(start.execute()).values.at(0).isCompleted) << "the history takes the place of the answers";
}

}  // namespace
}  // namespace kestrom::usecases
