#include "Core/SDK/DefaultDIContainer.hpp"

#include "Tests/Support/CaseSamples.hpp"
#include "Tests/Support/Collected.hpp"
#include "Tests/Support/TestPlatform.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kestrom::sdk {
namespace {

using models::BotAnswer;
using models::BotTextMessage;
using models::KestromObjectDetails;
using models::UserTextMessage;
using services::BotEngine;
using services::RESTError;

constexpr std::string_view kBot =
    R"({"sequence":[{"type":"module","key":"m.key","id":"m","sequence":[)"
    R"({"type":"text","key":"name.key","id":"name","text":"Who are you?"},)"
    R"({"type":"year","key":"built.key","id":"built","text":"When was {{case.property.streetAddress1}} built?"}]}]})";

class DIContainerTest : public testing::Test {
 protected:
  void answer(int status, std::string_view body) {
    system.session->finish(system.session->tasks.size() - 1, status, body);
    system.settle();
  }
  const networking::URLRequest& newest() { return system.session->tasks.back()->request; }

  /// Signs in with objects that are gone when the server answers.
  std::optional<KestromObjectDetails> signIn() {
    const tests::Collected<KestromObjectDetails, RESTError> login(
        container.makeLoginUseCase()->execute({.accessCode = "K7M 2QX", .zipCode = "05401", .isDeeplink = true}));
    answer(200, tests::kLogin);
    answer(200, tests::kCase);
    answer(200, kBot);
    answer(500, "");
    if (login.values.size() != 1) return std::nullopt;
    return login.values[0];
  }

  tests::TestPlatform system;
  Platform platform = system.platform();
  DefaultDIContainer container{platform};
};

TEST_F(DIContainerTest, SharesStoreFeedAndSessionAmongAllThatItMakes) {
  std::vector<KestromEvent> events;
  const auto listening = container.eventFeedService().eventPublisher().sink(
      [&](KestromEvent&& event) { events.push_back(std::move(event)); });
  const auto details = signIn();
  ASSERT_TRUE(details);
  EXPECT_EQ(container.store().user(),
            (session::KestromUser{.token = "t.o.k", .currentKestromInfo = {{"o1", "c1"}}, .accessCode = "K7M 2QX"}));

  ASSERT_EQ(events.size(), 1u);
  EXPECT_EQ(events[0].user, details->analyticUser);
  const auto* login = std::get_if<KestromEvent::Trigger::UserLoggedIn>(&events[0].trigger.form);
  ASSERT_TRUE(login);
  EXPECT_EQ(login->status, "in_progress");
  EXPECT_EQ(login->deviceData.phoneModel, "TestPhone1,1");
  EXPECT_TRUE(login->isDeeplink);

  // What is made later is signed in too.
  const auto service = container.makeKestromObjectService();
  const tests::Collected<reactive::Nothing, RESTError> submission(service->submit("c1"));
  EXPECT_EQ(newest().url.path(), "/kestroms/c1/submit");
  EXPECT_EQ(newest().headers.value("authorization"), "Bearer t.o.k");
  EXPECT_EQ(newest().headers.value("organizationId"), "o1");
  EXPECT_EQ(newest().headers.value("sdk-version"), "1.2.3");

  KestromObjectDetails other = *details;
  other.analyticUser.kestromID = "c2";
  container.makeSetEventUserUseCase()->execute(other);
  container.makePostKestromEventUseCase()->execute({usecases::InternalEventTrigger::SDKClosed{}});
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[1].user, other.analyticUser);
}

TEST_F(DIContainerTest, MakesAConversationOfTheCaseForEachChat) {
  const auto details = signIn();
  ASSERT_TRUE(details);
  const auto messagesAfter = [&](BotEngine& engine, std::string text) {
    BotAnswer answer;
    answer.value = {BotAnswer::Value::String{std::move(text), "name.key"}};
    answer.messageId = "name";
    answer.moduleId = "m";
    const tests::Collected<BotEngine::Result, services::AnyError> result(
        engine.submit({.answer = answer, .shouldSubmit = false}));
    return result.values.at(0).conversation.messages;
  };
  for (const char* text : {"Ada", "Ben"}) {
    const auto engine = container.makeBotEngine(*details);
    const auto messages = messagesAfter(*engine, text);
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(std::get<UserTextMessage>(messages[1].form).text, text);
    const auto& question = std::get<BotTextMessage>(messages[2].form);
    EXPECT_EQ(question.text, "When was 12 Maple Street built?");
    EXPECT_EQ(question.trigger, (models::ChatInputTrigger{models::ChatInputTrigger::Year{1800, 2023}}));
  }
}

}  // namespace
}  // namespace kestrom::sdk
