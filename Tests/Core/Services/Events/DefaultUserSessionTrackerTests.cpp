#include "Core/Services/Events/DefaultEventFeedService.hpp"
#include "Core/Services/Events/DefaultUserSessionTracker.hpp"
#include "Tests/Support/FakeClock.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace kestrom::services {
namespace {

class UserSessionTracking : public testing::Test {
 protected:
  void enterBackground() { notificationCenter.post("UIApplicationDidEnterBackgroundNotification"); }
  void becomeActive() { notificationCenter.post("UIApplicationDidBecomeActiveNotification"); }
  void terminate() { notificationCenter.post("UIApplicationWillTerminateNotification"); }

  tests::FakeClock clock;
  foundation::NotificationCenter notificationCenter;
  DefaultUserSessionTracker tracker{std::make_shared<DefaultEventFeedService>(), notificationCenter, clock};
};

TEST_F(UserSessionTracking, CountsNothingOutsideOfAFlow) {
  EXPECT_EQ(tracker.activeTime(), 0);
  becomeActive();
  clock.advance(5);
  EXPECT_EQ(tracker.activeTime(), 0) << "the application alone starts nothing";
  tracker.stopTracking();
  EXPECT_EQ(tracker.activeTime(), 0);
}

TEST_F(UserSessionTracking, LeavesTheBackgroundOut) {
  tracker.startTracking();
  clock.advance(10);
  EXPECT_EQ(tracker.activeTime(), 10);
  EXPECT_EQ(tracker.activeTime(), 10) << "reading changes nothing";
  enterBackground();
  clock.advance(60);
  EXPECT_EQ(tracker.activeTime(), 10);
  enterBackground();
  terminate();
  EXPECT_EQ(tracker.activeTime(), 10) << "the stretch is closed once";
  becomeActive();
  clock.advance(0.5);
  EXPECT_EQ(tracker.activeTime(), 10.5);
  terminate();
  clock.advance(7);
  EXPECT_EQ(tracker.activeTime(), 10.5);
}

TEST_F(UserSessionTracking, AddsStretchesWithoutLosingTheirFractions) {
  clock.set(1'700'000'000.1);
  const double end = clock.now().secondsSinceReferenceDate;
  clock.set(1'700'000'000);
  const double tenth = end - clock.now().secondsSinceReferenceDate;
  tracker.startTracking();
  for (int stretch = 1; stretch <= 3; ++stretch) {
    clock.set(1'700'000'000);
    becomeActive();
    clock.set(1'700'000'000.1);
    enterBackground();
    EXPECT_DOUBLE_EQ(tracker.activeTime(), tenth * stretch);
  }
}

TEST_F(UserSessionTracking, LosesTheStretchBeforeASecondActivation) {
  tracker.startTracking();
  clock.advance(3);
  becomeActive();
  EXPECT_EQ(tracker.activeTime(), 0);
  clock.advance(4);
  EXPECT_EQ(tracker.activeTime(), 4);
}

TEST_F(UserSessionTracking, KeepsItsTotalAfterTheStopUntilTheNextStart) {
  tracker.startTracking();
  clock.advance(20);
  tracker.stopTracking();
  clock.advance(5);
  becomeActive();
  clock.advance(5);
  enterBackground();
  tracker.stopTracking();
  EXPECT_EQ(tracker.activeTime(), 20);

  tracker.startTracking();
  EXPECT_EQ(tracker.activeTime(), 0);
  clock.advance(2);
  enterBackground();
  tracker.stopTracking();
  EXPECT_EQ(tracker.activeTime(), 2) << "stopped in the background";
}

}  // namespace
}  // namespace kestrom::services
