#include "Kestrom/KestromSDK.hpp"

#include "Core/SDK/DefaultDIContainer.hpp"
#include "Core/SDK/KestromSDKBuilder.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Core/SDK/StatusCheckFailure.hpp"
#include "Platform/Foundation/FatalError.hpp"
#include "Tests/Support/TestPlatform.hpp"
#include "UI/Scenes/Splash/SplashViewController.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>
#include <string>
#include <vector>

namespace kestrom {
namespace {

using networking::URLError;
using screens::NavigationController;
using screens::ViewController;
using sdk::KestromSDKBuilder;
using services::RESTError;
using session::KestromDeepLinkCredentials;
using tests::TestPlatform;
using ui::NavigationControllerCoordinator;
using ui::NavigationTransition;

constexpr const char* kGoodStatus = R"({"status":"invited","expiration":"2030-01-01"})";

/// Keeps what the kit hands to the coordinator of a flow.
class RecordingCoordinator final : public ui::NavigationCoordinator {
 public:
  explicit RecordingCoordinator(NavigationControllerCoordinator::Parts given) : parts(std::move(given)) {}

  void navigate(const NavigationTransition& transition) override {
    credentials.push_back(std::get<NavigationTransition::Splash>(transition.form).deepLinkCredentials);
  }

  NavigationControllerCoordinator::Parts parts;
  std::vector<std::optional<KestromDeepLinkCredentials>> credentials;
};

class RecordingHost final : public ViewController {
 public:
  void present(std::shared_ptr<ViewController> controller, bool isAnimated,
               const std::function<void()>& completion) override {
    animations.push_back(isAnimated);
    hasCompletion = hasCompletion || completion;
    ViewController::present(std::move(controller), isAnimated, completion);
  }

  std::vector<bool> animations;
  bool hasCompletion = false;
};

class KestromSDKTest : public testing::Test {
 protected:
  ~KestromSDKTest() override {
    session::setCurrentEnvironment(KestromEnvironment::production);
    session::setCustomFontFamilyName(std::nullopt);
    session::setLoggingEnabled(false);
  }

  std::optional<KestromError> failureOf(std::future<KestromStatus>& future) {
    try {
      future.get();
    } catch (const KestromError& error) {
      return error;
    }
    return std::nullopt;
  }

  TestPlatform system;
  std::unique_ptr<KestromSDK> kit = KestromSDKBuilder::make(system.platform());
};

TEST_F(KestromSDKTest, TakesAConfigurationWholeEachTime) {
  kit->set({"one", KestromEnvironment::staging, "Serif"});
  EXPECT_EQ(session::currentEnvironment(), KestromEnvironment::staging);
  EXPECT_EQ(session::customFontFamilyName(), "Serif");
  kit->set({"", KestromEnvironment::sandbox, std::nullopt});
  EXPECT_EQ(session::currentEnvironment(), KestromEnvironment::sandbox);
  EXPECT_EQ(session::customFontFamilyName(), std::nullopt);
  EXPECT_EQ(kit->configuration().organizationId, "");

  const auto fresh = KestromSDKBuilder::make(system.platform());
  EXPECT_DEATH(static_cast<void>(fresh->configuration()),
               "Kestrom configuration missing. Remember to set it up before you start to interacting with the SDK\n");
}

TEST_F(KestromSDKTest, ChecksAStatusWithoutAConfiguration) {
  auto future = kit->fetchKestromStatus("05401", "A1");
  EXPECT_TRUE(system.session->tasks.empty());
  system.settle();
  ASSERT_EQ(system.session->tasks.size(), 1u);
  const auto& request = system.session->tasks[0]->request;
  EXPECT_EQ(request.url.absoluteString(), "https://api.kestrom.example/kestroms/status-check");
  EXPECT_EQ(request.headers.value("sdk-version"), "1.2.3");
  EXPECT_EQ(request.headers.value("authorization"), std::nullopt);
  EXPECT_EQ(std::string(request.body->begin(), request.body->end()), R"({"zipCode":"05401","accessCode":"A1"})");

  system.session->finish(0, 200, kGoodStatus);
  EXPECT_NE(future.wait_for(std::chrono::seconds(0)), std::future_status::ready);
  system.settle();
  EXPECT_EQ(future.get(), KestromStatus("invited", "2030-01-01"));
}

TEST_F(KestromSDKTest, CallsBackOnceAndOnABackgroundQueue) {
  using Result = std::expected<KestromStatus, KestromError>;
  std::vector<Result> results;
  const auto keep = [&](Result result) { results.push_back(std::move(result)); };
  kit->fetchKestromStatus("05401", "A1", keep);
  kit->fetchKestromStatus("05401", "A2", keep);
  system.settle();
  system.session->finish(1, 401, R"({"statusCode":401,"message":"wrong"})");
  system.session->finish(0, 200, kGoodStatus);
  system.mainQueue->runReady();
  EXPECT_TRUE(results.empty());
  system.serialQueue->runReady();
  EXPECT_EQ(results, (std::vector<Result>{std::unexpected(KestromError::apiError("wrong", 401)),
                                          KestromStatus("invited", "2030-01-01")}));
}

TEST_F(KestromSDKTest, TellsAHostWhatWentWrong) {
  struct Row {
    const char* label;
    int status;
    const char* body;
    KestromError want;
  };
  const Row rows[] = {
      {"refused with a reason", 401, R"({"statusCode":401,"message":"no"})", KestromError::apiError("no", 401)},
      {"refused without a reason", 401, "", KestromError::apiError("", 0)},
      {"the code is the body's", 500, R"({"statusCode":422,"message":"x"})", KestromError::apiError("x", 422)},
      {"no message", 422, R"({"statusCode":7})", KestromError::apiError("", 7)},
      {"a body that is no reason", 500, "<html>", KestromError::apiError("", 0)},
      {"a redirect", 302, "", KestromError::apiError("", 0)},
      {"an answer of another kind", 200, "{}", KestromError::unknown()},
      {"no answer where one is wanted", 204, "", KestromError::unknown()},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    system.session->answerAtOnce(row.status, row.body);
    auto future = kit->fetchKestromStatus("1", "2");
    system.settle();
    EXPECT_EQ(failureOf(future), row.want);
  }
  EXPECT_EQ(sdk::statusCheckFailure(RESTError::noInternetConnection()), KestromError::networkError());
  for (const RESTError& error :
       {RESTError::customError(URLError{URLError::Code::timedOut, ""}), RESTError::customMessage("x"),
        RESTError::unknown(), RESTError::parsingFailed(), RESTError::decoding({})}) {
    EXPECT_EQ(sdk::statusCheckFailure(error), KestromError::unknown());
  }
}

TEST_F(KestromSDKTest, PresentsAFlowWithTheCredentialsOfEachForm) {
  std::vector<std::shared_ptr<RecordingCoordinator>> coordinators;
  const Platform platform = system.platform();
  const auto flows = KestromSDKBuilder::make(
      platform, std::make_shared<sdk::DefaultDIContainer>(platform), [&](NavigationControllerCoordinator::Parts parts) {
        return coordinators.emplace_back(std::make_shared<RecordingCoordinator>(std::move(parts)));
      });
  const auto host = std::make_shared<RecordingHost>();
  flows->presentKestrom(host, true);
  flows->presentKestrom(host, "", "A1", true, false);
  flows->presentKestrom(host, *foundation::URL::parse("x:?kestromZipCode=9&kestromAccessCode=8"), false, true);
  flows->presentKestrom(host, *foundation::URL::parse("x:?kestromZipCode=9"), true, true);

  ASSERT_EQ(coordinators.size(), 4u);
  using Credentials = std::optional<KestromDeepLinkCredentials>;
  const Credentials kWant[] = {std::nullopt, KestromDeepLinkCredentials{"A1", "", true},
                               KestromDeepLinkCredentials{"8", "9", false}, std::nullopt};
  for (std::size_t index = 0; index < coordinators.size(); ++index) {
    EXPECT_EQ(coordinators[index]->credentials, std::vector<Credentials>{kWant[index]});
    EXPECT_EQ(coordinators[index]->parts.presentationType, ui::ViewPresentationType::pushed);
  }
  EXPECT_EQ(host->animations, (std::vector{true, false, true, true}));
  EXPECT_FALSE(host->hasCompletion);
  EXPECT_EQ(host->presentedViewController(), coordinators[3]->parts.rootController);
  EXPECT_EQ(KestromSDKBuilder::currentCoordinator(*flows), coordinators[3]);
}

TEST_F(KestromSDKTest, RunsOnTheQueueOfAHostThatGivesNothingElse) {
  const auto queue = std::make_shared<reactive::ManualScheduler>();
  Platform partial;
  partial.mainQueue = queue;
  const auto whole = KestromSDKBuilder::make(std::move(partial));
  EXPECT_GT(queue->pendingCount(), 0u) << "the location's permission is told";
  queue->runReady();
  EXPECT_EQ(queue->pendingCount(), 0u);
}

TEST_F(KestromSDKTest, ForgetsAFlowThatEndsAndTellsTheObserver) {
  std::vector<std::string> earlier;
  std::vector<KestromEvent> later;
  std::weak_ptr<RecordingCoordinator> coordinator;
  const Platform platform = system.platform();
  const auto container = std::make_shared<sdk::DefaultDIContainer>(platform);
  auto flows = KestromSDKBuilder::make(platform, container, [&](NavigationControllerCoordinator::Parts parts) {
    auto made = std::make_shared<RecordingCoordinator>(std::move(parts));
    coordinator = made;
    return made;
  });
  flows->observeKestromEvents([&](const KestromEvent& event) { earlier.emplace_back(event.name()); });
  flows->observeKestromEvents([&](const KestromEvent& event) { later.push_back(event); });
  container->userSessionTracker().startTracking();
  flows->presentKestrom(std::make_shared<RecordingHost>(), true);
  system.clock->advance(5);
  // The callback ends the object that holds it.
  coordinator.lock()->parts.flowCompletion();
  system.settle();
  EXPECT_TRUE(coordinator.expired());
  EXPECT_EQ(KestromSDKBuilder::currentCoordinator(*flows), nullptr);
  ASSERT_EQ(later.size(), 1u);
  EXPECT_EQ(later[0].trigger.form, decltype(later[0].trigger.form)(KestromEvent::Trigger::SDKClosed{5}));
  EXPECT_EQ(later[0].user, std::nullopt);
  EXPECT_TRUE(earlier.empty()) << "a later observer takes the place of an earlier one";

  flows->presentKestrom(std::make_shared<RecordingHost>(), true);
  const auto outliving = coordinator.lock();
  flows = nullptr;
  const auto listening =
      container->eventFeedService().eventPublisher().sink([&](KestromEvent&& event) { later.push_back(event); });
  outliving->parts.flowCompletion();
  system.settle();
  EXPECT_EQ(later.size(), 1u) << "a flow whose kit is gone tells nobody";
}

TEST_F(KestromSDKTest, StartsAFlowWithTheSplash) {
  const auto host = std::make_shared<ViewController>();
  kit->presentKestrom(host, "05401", "A1", true, false);
  const auto root = std::dynamic_pointer_cast<NavigationController>(host->presentedViewController());
  ASSERT_TRUE(root);
  EXPECT_TRUE(root->isNavigationBarHidden());
  ASSERT_EQ(root->viewControllers().size(), 1u);
  const auto* splash = dynamic_cast<const ui::SplashViewController*>(root->viewControllers()[0].get());
  ASSERT_TRUE(splash);
  EXPECT_EQ(splash->deepLinkCredentials(), (KestromDeepLinkCredentials{"A1", "05401", true}));
}

TEST_F(KestromSDKTest, LogsToThePlatformOnceAHostWantsIt) {
  system.session->answerAtOnce(200, kGoodStatus);
  auto quiet = kit->fetchKestromStatus("1", "2");
  system.settle();
  EXPECT_TRUE(system.log->lines().empty());
  kit->enableLogs();
  auto loud = kit->fetchKestromStatus("1", "2");
  system.settle();
  EXPECT_EQ(system.log->lines().size(), 2u);
}

TEST(KestromSDKDeathTest, TakesAPlatformBeforeItsFirstUseOnly) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        TestPlatform system;
        KestromSDK::install(system.platform());
        static_cast<void>(KestromSDK::shared());
        session::setLogSink(std::make_shared<foundation::StandardErrorLogSink>());
        foundation::StandardErrorLogSink standard;
        foundation::setFatalErrorSink(standard);
        KestromSDK::install(system.platform());
      },
      "KestromSDK::install comes after the first use of KestromSDK::shared");
}

}  // namespace
}  // namespace kestrom
