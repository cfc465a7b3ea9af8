#include "Core/Services/Device/DefaultDeviceDataService.hpp"
#include "Core/Services/Device/DefaultLocationService.hpp"
#include "Core/Services/Events/DefaultEventFeedService.hpp"
#include "Core/Services/Events/DefaultUserSessionTracker.hpp"
#include "Core/UseCases/DefaultPostKestromEventUseCase.hpp"
#include "Platform/Device/FixedDeviceIdentity.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/FakeLocationManager.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kestrom::usecases {
namespace {

using namespace std::chrono_literals;
using Internal = InternalEventTrigger;
using Trigger = KestromEvent::Trigger;

EventMessageDetails messageOf(std::string_view key) {
  return {"How many?", "number", "roof", std::string(key), "one"};
}

KestromAnalyticUser userOf(std::string_view caseId) {
  KestromAnalyticUser user;
  user.kestromID = caseId;
  return user;
}

class PostingEvents : public testing::Test {
 protected:
  void post(decltype(Internal::form) trigger) {
    // A new use case each time, which is gone when a location comes.
    DefaultPostKestromEventUseCase({.feedService = feed,
                                    .userSessionTracker = tracker,
                                    .deviceDataService = deviceData,
                                    .locationService = location,
                                    .longLivingCancellables = longLiving,
                                    .mainQueue = scheduler,
                                    .clock = clock})
        .execute({std::move(trigger)});
  }
  void TearDown() override {
    EXPECT_EQ(longLiving->cancellables.count(), 0U);
    EXPECT_EQ(scheduler.pendingCount(), 0U);
  }

  tests::FakeClock clock;
  reactive::ManualScheduler scheduler;
  foundation::NotificationCenter notificationCenter;
  tests::FakeLocationManager manager;
  device::FixedDeviceIdentity identity{"Phone15,2"};
  foundation::MapBundle bundle{foundation::MapBundle::Values{{"CFBundleName", "Host"}}};
  std::shared_ptr<services::DefaultEventFeedService> feed = std::make_shared<services::DefaultEventFeedService>();
  std::shared_ptr<services::UserSessionTracker> tracker =
      std::make_shared<services::DefaultUserSessionTracker>(feed, notificationCenter, clock);
  std::shared_ptr<services::DeviceDataService> deviceData =
      std::make_shared<services::DefaultDeviceDataService>(identity, bundle);
  std::shared_ptr<services::LocationService> location = services::DefaultLocationService::make(manager);
  std::shared_ptr<LongLivingCancellables> longLiving = std::make_shared<LongLivingCancellables>();
  std::vector<KestromEvent> events;
  reactive::AnyCancellable listening =
      feed->eventPublisher().sink([this](KestromEvent&& event) { events.push_back(std::move(event)); });
};

TEST_F(PostingEvents, SendsInsideTheCallWhatNeedsNoLocation) {
  tracker->startTracking();
  clock.advance(3);
  post(Internal::QuestionAsked{messageOf("age")});
  post(Internal::SDKClosed{});
  feed->setUser(userOf("7"));
  post(Internal::KestromCompleted{});

  ASSERT_EQ(events.size(), 3U);
  EXPECT_EQ(events[0], (KestromEvent{clock.now(), {Trigger::QuestionAsked{3, messageOf("age")}}, std::nullopt}));
  EXPECT_EQ(events[1].trigger.form, decltype(Trigger::form)(Trigger::SDKClosed{3}));
  EXPECT_EQ(events[2].trigger.form, decltype(Trigger::form)(Trigger::KestromCompleted{3}));
  EXPECT_EQ(events[2].user, userOf("7"));
  EXPECT_FALSE(manager.isUpdating);
}

TEST_F(PostingEvents, TakesTheActiveTimeOfTheCallAndTimeAndUserOfTheSending) {
  tracker->startTracking();
  clock.advance(5);
  feed->setUser(userOf("old"));
  post(Internal::QuestionAnswered{messageOf("age")});
  EXPECT_TRUE(events.empty());

  clock.advance(4);
  tracker->stopTracking();
  feed->setUser(userOf("new"));
  manager.tellLocations({{47.5, 19.25}});
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0], (KestromEvent{clock.now(),
                                     {Trigger::QuestionAnswered{5, KestromCoordinate{47.5, 19.25}, messageOf("age")}},
                                     userOf("new")}));
}

TEST_F(PostingEvents, AddsTheDeviceToALogin) {
  post(Internal::UserLoggedIn{.status = "active", .isDeeplink = true});
  manager.tellLocations({{1, 2}});
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].trigger, (Trigger{Trigger::UserLoggedIn{.status = "active",
                                                              .deviceData = {"Phone15,2", std::nullopt, "Host"},
                                                              .location = KestromCoordinate{1, 2},
                                                              .isDeeplink = true}}));
}

TEST_F(PostingEvents, GoesWithoutALocationAfterAFailure) {
  post(Internal::QuestionAnswered{messageOf("age")});
  manager.tellFailure(device::LocationError::Code::denied);
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].trigger, (Trigger{Trigger::QuestionAnswered{0, std::nullopt, messageOf("age")}}));
}

TEST_F(PostingEvents, WaitsTenSecondsForALocationAndNotLonger) {
  post(Internal::UserLoggedIn{.status = "active"});
  scheduler.advance(10s - 1ns);
  EXPECT_TRUE(events.empty());
  scheduler.advance(1ns);
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(std::get<Trigger::UserLoggedIn>(events[0].trigger.form).location, std::nullopt);
  manager.tellLocations({{1, 2}});
  EXPECT_EQ(events.size(), 1U) << "a location that comes too late";

  post(Internal::UserLoggedIn{.status = "active"});
  scheduler.advance(10s - 1ns);
  manager.tellLocations({{1, 2}});
  scheduler.advance(1ns);
  ASSERT_EQ(events.size(), 2U);
  EXPECT_TRUE(std::get<Trigger::UserLoggedIn>(events[1].trigger.form).location);
}

TEST_F(PostingEvents, LeavesAnOvertakenRequestToItsTimeout) {
  post(Internal::QuestionAnswered{messageOf("first")});
  scheduler.advance(4s);
  post(Internal::QuestionAnswered{messageOf("second")});
  manager.tellLocations({{1, 2}});
  scheduler.advance(6s - 1ns);
  ASSERT_EQ(events.size(), 1U);
  scheduler.advance(1ns);
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0].trigger, (Trigger{Trigger::QuestionAnswered{0, KestromCoordinate{1, 2}, messageOf("second")}}));
  EXPECT_EQ(events[1].trigger, (Trigger{Trigger::QuestionAnswered{0, std::nullopt, messageOf("first")}}));
}

TEST_F(PostingEvents, SendsNothingOnceTheHolderOfItsWaitIsGone) {
  post(Internal::QuestionAnswered{messageOf("age")});
  longLiving = std::make_shared<LongLivingCancellables>();
  manager.tellLocations({{1, 2}});
  scheduler.advance(20s);
  EXPECT_TRUE(events.empty());
}

}  // namespace
}  // namespace kestrom::usecases
