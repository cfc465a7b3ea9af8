// A login, from the composition root to a server of its own and back.

#include "Core/SDK/DefaultDIContainer.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Kestrom/Platform/LinuxPlatform.hpp"
#include "Platform/Device/SimulatedLocationManager.hpp"
#include "Platform/Foundation/JSONDocument.hpp"
#include "Tests/Support/SandboxProcess.hpp"

#include <gtest/gtest.h>

#include <expected>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kestrom {
namespace {

using foundation::JSONDocument;
using foundation::URL;
using models::KestromObjectDetails;
using services::RESTError;
using Lines = std::vector<std::string>;
using Result = std::expected<KestromObjectDetails, RESTError>;

class LoginIntegration : public testing::Test {
 protected:
  LoginIntegration() { session::setCurrentEnvironment(KestromEnvironment::sandbox); }
  ~LoginIntegration() override {
    onMainQueue([this] { _container.reset(); });
    session::setCurrentEnvironment(KestromEnvironment::production);
  }

  void start(const std::string& faults = "[]") {
    server.emplace(faults);
    LinuxPlatformOptions options;
    options.connectTo = LinuxPlatformOptions::Address{"127.0.0.1", server->port()};
    options.certificateAuthorityFile = URL::fromFilePath(server->certificateAuthority());
    options.documentsDirectory = URL::fromFilePath("/nowhere/documents");
    _platform = linuxPlatform(options);
    _platform.locationManager = std::make_shared<device::SimulatedLocationManager>(
        device::LocationBehavior{device::LocationBehavior::Denied{}}, _platform.mainQueue);
    onMainQueue([this] {
      _container.emplace(_platform);
      _listening = _container->eventFeedService().eventPublisher().sink(
          [this](KestromEvent&& event) { _posted.set_value(std::move(event)); });
    });
  }

  Result login(const std::string& accessCode = "K7M 2QX") {
    std::promise<Result> promise;
    reactive::AnyCancellable subscription;
    onMainQueue([&] {
      subscription = _container->makeLoginUseCase()
                         ->execute({.accessCode = accessCode, .zipCode = "05401"})
                         .sink(
                             [&](reactive::Completion<RESTError>&& completion) {
                               if (completion.isFailure()) {
                                 promise.set_value(std::unexpected(std::move(completion).failure()));
                               }
                             },
                             [&](KestromObjectDetails&& details) { promise.set_value(std::move(details)); });
    });
    Result result = promise.get_future().get();
    onMainQueue([&] { subscription.cancel(); });
    return result;
  }

  KestromEvent posted() { return _posted.get_future().get(); }
  session::KestromUser user() { return _container->store().user(); }

  /// What the server was asked for, each with its answer's status.
  Lines asked() {
    Lines lines;
    for (const std::string& line : server->requestLog()) {
      const auto document = JSONDocument::parse(line).value();
      lines.push_back(std::string(document.root().member("endpoint")->string()) + " " +
                      std::to_string(document.root().member("status")->integer().value_or(0)));
    }
    return lines;
  }

  std::optional<tests::SandboxProcess> server;

 private:
  void onMainQueue(const std::function<void()>& work) {
    std::promise<void> done;
    const auto isDone = done.get_future();
    _platform.mainQueue->schedule([&work, done = std::move(done)]() mutable {
      work();
      done.set_value();
    });
    isDone.wait();
  }

  Platform _platform;
  std::optional<sdk::DefaultDIContainer> _container;
  std::promise<KestromEvent> _posted;
  reactive::AnyCancellable _listening;
};

TEST_F(LoginIntegration, OpensTheCaseWithItsTemplate) {
  start();
  const Result details = login();
  ASSERT_TRUE(details) << debugDescription(details.error());
  EXPECT_EQ(details->id, "64f0c1a2b3d4e5f60718293a");
  EXPECT_EQ(details->property.streetAddress2, "Unit B");
  EXPECT_FALSE(details->bot->sequence.empty());
  EXPECT_EQ(details->rawJSON->root().member("policy")->member("itemLimit")->integer(), 2500);
  EXPECT_EQ(asked(), (Lines{"mobileLogin 200", "kestromObject 200", "getBot 200", "saveUserProfile 204"}));
  EXPECT_EQ(user().accessCode, "K7M 2QX");
  EXPECT_EQ(user().currentKestromInfo->kestromId, details->id);

  const KestromEvent event = posted();
  EXPECT_EQ(event.name(), "user_logged_in");
  EXPECT_EQ(event.user, details->analyticUser);
  EXPECT_EQ(event.user->name, "Ada Brook");
}

TEST_F(LoginIntegration, RefusesWrongCodes) {
  start();
  const Result refused = login("K7M 2QY");
  ASSERT_FALSE(refused);
  EXPECT_TRUE(std::holds_alternative<RESTError::Unauthenticated>(refused.error().form))
      << debugDescription(refused.error());
  EXPECT_EQ(user(), session::KestromUser());
  EXPECT_EQ(asked(), (Lines{"mobileLogin 401"}));
}

TEST_F(LoginIntegration, LeavesTheTokenWhereTheCaseDoesNotComeAndGoesOnWithoutTheProfile) {
  start(R"([{"endpoint": "kestromObject", "call": 1, "drop": "duringResponse"},)"
        R"({"endpoint": "getBot", "call": 1, "status": 503},)"
        R"({"endpoint": "saveUserProfile", "call": 1, "drop": "afterBody"}])");
  const Result lost = login();
  ASSERT_FALSE(lost);
  EXPECT_EQ(lost.error(), RESTError::customError(RESTError::noInternetConnection()));
  const auto token = user().token;
  EXPECT_TRUE(token);

  const Result unavailable = login();
  ASSERT_FALSE(unavailable);
  EXPECT_EQ(unavailable.error(), RESTError::wrongStatusResponse(503, std::nullopt));
  EXPECT_NE(user().token, token);

  EXPECT_TRUE(login());
  EXPECT_EQ(asked().back(), "saveUserProfile 0");
}

}  // namespace
}  // namespace kestrom
