#include "Core/UseCases/DefaultLoginUseCase.hpp"

#include "Core/Services/DefaultAuthenticationService.hpp"
#include "Core/Services/DefaultKestromObjectService.hpp"
#include "Core/Services/DefaultUserService.hpp"
#include "Core/Services/Events/DefaultEventFeedService.hpp"
#include "Core/UseCases/DefaultSetEventUserUseCase.hpp"
#include "Core/UseCases/DefaultUpdateUserProfileUseCase.hpp"
#include "Core/UseCases/LoginError.hpp"
#include "Tests/Support/CaseSamples.hpp"
#include "Tests/Support/Collected.hpp"
#include "Tests/Support/FakeAnswerService.hpp"
#include "Tests/Support/TestREST.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::usecases {
namespace {

using models::KestromObjectDetails;
using networking::URLError;
using services::RESTError;
using session::KestromUser;
using Login = tests::Collected<KestromObjectDetails, RESTError>;
using Lines = std::vector<std::string>;

const KestromUser kEarlierUser{.token = "old", .currentKestromInfo = {{"o0", "c0"}}, .accessCode = "OLD"};
const KestromUser kNewUser{.token = "t.o.k", .currentKestromInfo = {{"o1", "c1"}}, .accessCode = "K7M 2QX"};

const std::string kLoginSent = R"(POST /auth/mobile-login {"accessCode":"K7M 2QX","zipCode":"05401"})";
const std::string kCaseSent = "GET /kestroms/c1";
const std::string kBotSent = "GET /bots/b1/sequence";
const std::string kProfileSent = R"(POST /integrations/firebase/user-profile {"organizationId":"o1","kestromId":"c1"})";

class RecordingPost final : public PostKestromEventUseCase {
 public:
  void execute(InternalEventTrigger trigger) override { posted.push_back(std::move(trigger)); }

  std::vector<InternalEventTrigger> posted;
};

class LoginTest : public testing::Test {
 protected:
  LoginTest() { rest.store->setUser(kEarlierUser); }

  reactive::Publisher<KestromObjectDetails, RESTError> publisher(bool isDeeplink = false) {
    // The use case is gone when the server answers.
    return DefaultLoginUseCase(
               {
                   .authService = std::make_shared<services::DefaultAuthenticationService>(rest.service()),
                   .kestromService = std::make_shared<services::DefaultKestromObjectService>(
                       rest.service(), std::make_shared<tests::FakeAnswerService>(), services::defaultDecoder()),
                   .store = rest.store,
                   .updateUserProfileUseCase = std::make_shared<DefaultUpdateUserProfileUseCase>(
                       std::make_shared<services::DefaultUserService>(rest.service())),
                   .setEventUserUseCase = std::make_shared<DefaultSetEventUserUseCase>(feed),
                   .postKestromEventUseCase = post,
               })
        .execute({.accessCode = "K7M 2QX", .zipCode = "05401", .isDeeplink = isDeeplink});
  }

  /// A login to which the server has given these answers.
  std::unique_ptr<Login> loginWith(std::initializer_list<std::string_view> bodies, bool isDeeplink = false) {
    auto login = std::make_unique<Login>(publisher(isDeeplink));
    for (const std::string_view body : bodies) rest.answer(200, body);
    return login;
  }

  std::optional<std::string> header(const std::string& name) {
    return rest.session->tasks.back()->request.headers.value(name);
  }
  /// The case of the feed's user; empty without one.
  std::string eventUser() { return feed->user().value_or(KestromAnalyticUser()).kestromID; }

  tests::TestREST rest;
  std::shared_ptr<services::DefaultEventFeedService> feed = std::make_shared<services::DefaultEventFeedService>();
  std::shared_ptr<RecordingPost> post = std::make_shared<RecordingPost>();
};

TEST_F(LoginTest, GoesStepByStep) {
  const auto login = publisher();
  EXPECT_EQ(rest.sent(), Lines());

  std::size_t postedBefore = 0;
  std::vector<KestromObjectDetails> values;
  const auto subscription = login.sink([](reactive::Completion<RESTError>&&) {},
                                       [&](KestromObjectDetails&& details) {
                                         postedBefore = post->posted.size();
                                         values.push_back(std::move(details));
                                       });
  EXPECT_EQ(rest.sent(), (Lines{kLoginSent}));
  EXPECT_EQ(rest.store->user(), kEarlierUser);

  rest.answer(200, tests::kLogin);
  EXPECT_EQ(rest.store->user(), kNewUser);
  EXPECT_EQ(rest.sent(), (Lines{kLoginSent, kCaseSent}));
  EXPECT_EQ(header("authorization"), "Bearer t.o.k");
  EXPECT_EQ(header("organizationId"), "o1");

  rest.answer(200, tests::kCase);
  EXPECT_EQ(rest.sent().back(), kBotSent);
  EXPECT_EQ(eventUser(), "") << "the case is not whole";

  rest.answer(200, tests::kBot);
  EXPECT_EQ(eventUser(), "c1");
  EXPECT_EQ(rest.sent().back(), kProfileSent);
  EXPECT_TRUE(post->posted.empty());
  EXPECT_TRUE(values.empty());

  rest.answer(200, "");
  EXPECT_EQ(rest.sent().size(), 4u);
  EXPECT_EQ(postedBefore, 1u);
  ASSERT_EQ(values.size(), 1u);
  EXPECT_EQ(values[0].id, "c1");
  EXPECT_EQ(values[0].bot->sequence.size(), 1u);
}

TEST_F(LoginTest, PostsTheStatusOfTheCaseAndWhereTheCodesCameFrom) {
  for (const bool isDeeplink : {false, true}) {
    const auto login = loginWith({tests::kLogin, tests::kCase, tests::kBot, ""}, isDeeplink);
    EXPECT_EQ(login->values.size(), 1u);
    EXPECT_EQ(login->ends, 1);
    EXPECT_EQ(post->posted.back(),
              (InternalEventTrigger{InternalEventTrigger::UserLoggedIn{"in_progress", isDeeplink}}));
  }
  EXPECT_EQ(post->posted.size(), 2u);
}

TEST_F(LoginTest, SucceedsWhateverBecomesOfTheProfile) {
  const std::vector<std::function<void()>> failures = {
      [this] { rest.answer(500, ""); },
      [this] { rest.answer(401, R"({"statusCode":401})"); },
      [this] { rest.fail(URLError::Code::networkConnectionLost); },
  };
  for (const auto& fail : failures) {
    post->posted.clear();
    const auto login = loginWith({tests::kLogin, tests::kCase, tests::kBot});
    fail();
    EXPECT_EQ(login->failure, std::nullopt);
    EXPECT_EQ(login->values.size(), 1u);
    EXPECT_EQ(login->ends, 1);
    EXPECT_EQ(post->posted.size(), 1u);
    EXPECT_EQ(rest.store->user(), kNewUser);
  }
}

TEST_F(LoginTest, KeepsAfterAFailureWhatWasWrittenBeforeIt) {
  const RESTError lost = RESTError::noInternetConnection();
  struct Row {
    std::string_view label;
    std::initializer_list<std::string_view> before;
    RESTError want;
    KestromUser user;
    Lines sent;
  };
  const Row rows[] = {
      {"login", {}, lost, kEarlierUser, {kLoginSent}},
      {"case", {tests::kLogin}, RESTError::customError(lost), kNewUser, {kLoginSent, kCaseSent}},
      {"template", {tests::kLogin, tests::kCase}, lost, kNewUser, {kLoginSent, kCaseSent, kBotSent}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    rest.session->tasks.clear();
    rest.store->setUser(kEarlierUser);
    const auto login = loginWith(row.before);
    rest.fail(URLError::Code::notConnectedToInternet);
    EXPECT_EQ(login->failure, row.want);
    EXPECT_EQ(login->ends, 1);
    EXPECT_EQ(rest.store->user(), row.user);
    EXPECT_EQ(rest.sent(), row.sent);
    EXPECT_EQ(eventUser(), "");
    EXPECT_TRUE(post->posted.empty());
  }

  // A response without the case's identifier signs nobody in.
  rest.store->setUser(kEarlierUser);
  const auto login = loginWith({R"({"token":"t.o.k","organizationId":"o1"})"});
  ASSERT_TRUE(login->failure);
  EXPECT_TRUE(std::holds_alternative<RESTError::Decoding>(login->failure->form));
  EXPECT_EQ(rest.store->user(), kEarlierUser);
}

TEST_F(LoginTest, IsOverWhereItIsDropped) {
  auto login = loginWith({tests::kLogin, tests::kCase, tests::kBot});
  login.reset();
  EXPECT_TRUE(rest.session->tasks.back()->isCancelled);
  rest.answer(200, "");
  EXPECT_TRUE(post->posted.empty());
  EXPECT_EQ(rest.store->user(), kNewUser);
  EXPECT_EQ(eventUser(), "c1");
}

TEST_F(LoginTest, ReplacesTheUserOfAnEarlierLoginInFull) {
  loginWith({tests::kLogin, tests::kCase, tests::kBot, ""});
  const auto second = loginWith({R"({"token":"t2","organizationId":"o2","kestromId":"c2"})"});
  EXPECT_EQ(rest.store->user(),
            (KestromUser{.token = "t2", .currentKestromInfo = {{"o2", "c2"}}, .accessCode = "K7M 2QX"}));
  EXPECT_EQ(rest.sent().back(), "GET /kestroms/c2");
  EXPECT_EQ(header("authorization"), "Bearer t2");
}

/// Forgets the case at each change.
class ForgetfulStore final : public session::SessionStore {
 public:
  KestromConfiguration configuration() const override { return _kept.configuration(); }
  void setConfiguration(KestromConfiguration configuration) override {
    _kept.setConfiguration(std::move(configuration));
  }
  std::shared_ptr<const session::KestromUIConfiguration> uiConfiguration() const override {
    return _kept.uiConfiguration();
  }
  void setUIConfiguration(std::shared_ptr<const session::KestromUIConfiguration> configuration) override {
    _kept.setUIConfiguration(std::move(configuration));
  }
  KestromUser user() const override { return _kept.user(); }
  void setUser(KestromUser user) override { _kept.setUser(std::move(user)); }
  void modifyUser(const std::function<void(KestromUser&)>& change) override {
    _kept.modifyUser([&](KestromUser& user) {
      change(user);
      user.currentKestromInfo.reset();
    });
  }

 private:
  session::SDKStore _kept;
};

TEST_F(LoginTest, AsksForNoCaseThatTheStoreDoesNotHold) {
  rest.store = std::make_shared<ForgetfulStore>();
  const auto login = loginWith({tests::kLogin});
  EXPECT_EQ(login->failure, RESTError::customError(LoginError::missingKestromId));
  EXPECT_EQ(rest.store->user().accessCode, std::nullopt);
  EXPECT_EQ(rest.sent(), (Lines{kLoginSent}));
}

}  // namespace
}  // namespace kestrom::usecases
