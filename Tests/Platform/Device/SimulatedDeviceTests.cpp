#include "Platform/Device/SimulatedLocationManager.hpp"
#include "Platform/Device/SimulatedUserNotificationCenter.hpp"
#include "Platform/Device/SystemDeviceIdentity.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrom::device {
namespace {

using Accuracy = LocationAccuracyAuthorization;

constexpr LocationBehavior kDenied{LocationBehavior::Denied{}};
constexpr LocationBehavior kPlace{LocationBehavior::Place{{47.5, 19}}};
constexpr LocationBehavior kReducedPlace{LocationBehavior::Place{{-3, 4}, Accuracy::reduced}};
constexpr LocationBehavior kFails{LocationBehavior::Fails{}};
constexpr LocationBehavior kNever{LocationBehavior::Never{}};

/// Writes down what it is told.
class RecordingDelegate final : public LocationManagerDelegate {
 public:
  explicit RecordingDelegate(LocationManager& manager) : _manager(manager) {}

  void didChangeAuthorization(LocationAuthorizationStatus status) override {
    _news += status == LocationAuthorizationStatus::denied ? " refused" : " allowed";
  }
  void didUpdateLocations(const std::vector<Location>& locations) override {
    for (const Location& location : locations) _news += " at " + std::to_string(static_cast<int>(location.latitude));
    if (_manager.accuracyAuthorization() == Accuracy::reduced) _news += " or so";
    _manager.stopUpdatingLocation();
  }
  void didFail(LocationError error) override {
    _news += error.code == LocationError::Code::denied ? " failed:denied" : " failed:unknown";
  }

  std::string news() { return std::exchange(_news, {}); }

 private:
  LocationManager& _manager;
  std::string _news;
};

TEST(SimulatedLocationManager, AnswersEachUpdateOnceAsTheHostSays) {
  struct Row {
    std::string_view label;
    LocationBehavior behavior;
    std::string_view permission;
    std::string_view answer;
  };
  static constexpr Row kRows[] = {
      {"denied", kDenied, " refused", " failed:denied"},
      {"place", kPlace, " allowed", " at 47"},
      {"reduced place", kReducedPlace, " allowed", " at -3 or so"},
      {"fails", kFails, " allowed", " failed:unknown"},
      {"never", kNever, " allowed", ""},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.label);
    const auto scheduler = std::make_shared<reactive::ManualScheduler>();
    SimulatedLocationManager manager(row.behavior, scheduler);
    const auto delegate = std::make_shared<RecordingDelegate>(manager);
    manager.setDelegate(delegate);
    EXPECT_EQ(delegate->news(), "") << "inside the call";
    scheduler->runReady();
    EXPECT_EQ(delegate->news(), row.permission);

    for (int time = 0; time < 2; ++time) {
      manager.startUpdatingLocation();
      EXPECT_EQ(delegate->news(), "") << "inside the call";
      scheduler->runReady();
      EXPECT_EQ(delegate->news(), row.answer);
    }
  }
}

TEST(SimulatedLocationManager, TellsAChangeOfPermissionThatDeniedOrAPlaceBrings) {
  const auto scheduler = std::make_shared<reactive::ManualScheduler>();
  SimulatedLocationManager manager(kDenied, scheduler);
  const auto delegate = std::make_shared<RecordingDelegate>(manager);
  manager.setDelegate(delegate);
  struct Row {
    std::string_view label;
    LocationBehavior behavior;
    std::string_view news;
  };
  scheduler->runReady();
  EXPECT_EQ(delegate->news(), " refused");
  for (const Row& row : {
           Row{"stays refused", kFails, ""},
           Row{"stays refused too", kNever, ""},
           Row{"now allowed", kReducedPlace, " allowed"},
           Row{"allowed already", kPlace, ""},
           Row{"stays allowed", kNever, ""},
           Row{"now refused", kDenied, " refused"},
       }) {
    SCOPED_TRACE(row.label);
    manager.setBehavior(row.behavior);
    scheduler->runReady();
    EXPECT_EQ(delegate->news(), row.news);
  }
}

TEST(SimulatedLocationManager, LeavesAnUpdateThatGetsNoAnswerToItsFate) {
  const auto scheduler = std::make_shared<reactive::ManualScheduler>();
  SimulatedLocationManager manager(kNever, scheduler);
  const auto delegate = std::make_shared<RecordingDelegate>(manager);
  manager.setDelegate(delegate);
  manager.startUpdatingLocation();
  manager.setBehavior(kPlace);
  scheduler->runReady();
  EXPECT_EQ(delegate->news(), " allowed");

  manager.startUpdatingLocation();
  manager.setBehavior(kNever);
  manager.startUpdatingLocation();
  scheduler->runReady();
  EXPECT_EQ(delegate->news(), "") << "an answer for the update before";
}

TEST(SimulatedLocationManager, TellsNothingAfterAStopOrItsEnd) {
  const auto scheduler = std::make_shared<reactive::ManualScheduler>();
  std::optional<SimulatedLocationManager> manager(std::in_place, kPlace, scheduler);
  auto delegate = std::make_shared<RecordingDelegate>(*manager);
  manager->setDelegate(delegate);
  scheduler->runReady();
  delegate->news();

  manager->startUpdatingLocation();
  manager->stopUpdatingLocation();
  scheduler->runReady();
  EXPECT_EQ(delegate->news(), "");

  manager->startUpdatingLocation();
  manager->setBehavior(kDenied);
  manager.reset();
  EXPECT_EQ(scheduler->pendingCount(), 0U);
  EXPECT_EQ(delegate->news(), "");
}

TEST(SimulatedUserNotificationCenter, GrantsToWhoWasNotAskedAndElseRepeatsTheAnswer) {
  using Status = NotificationAuthorizationStatus;
  struct Row {
    Status before;
    bool isGranted;
    Status after;
  };
  for (const Row& row :
       {Row{Status::notDetermined, true, Status::authorized}, Row{Status::authorized, true, Status::authorized},
        Row{Status::denied, false, Status::denied}}) {
    SCOPED_TRACE(static_cast<int>(row.before));
    const auto scheduler = std::make_shared<reactive::ManualScheduler>();
    SimulatedUserNotificationCenter center(Status::notDetermined, scheduler);
    center.setStatus(row.before);
    std::optional<Status> before;
    std::optional<bool> isGranted;
    std::optional<Status> after;
    center.getNotificationSettings([&](NotificationSettings settings) { before = settings.authorizationStatus; });
    center.requestAuthorization({}, [&](bool answer) { isGranted = answer; });
    center.getNotificationSettings([&](NotificationSettings settings) { after = settings.authorizationStatus; });
    EXPECT_FALSE(before || isGranted || after) << "inside a call";
    scheduler->runReady();
    EXPECT_EQ(before, row.before);
    EXPECT_EQ(isGranted, row.isGranted);
    EXPECT_EQ(after, row.after);
  }
}

TEST(SimulatedUserNotificationCenter, DropsWhatWaitsWithItsEnd) {
  const auto scheduler = std::make_shared<reactive::ManualScheduler>();
  {
    SimulatedUserNotificationCenter center(NotificationAuthorizationStatus::denied, scheduler);
    center.requestAuthorization({}, [](bool) { FAIL(); });
  }
  scheduler->runReady();
}

TEST(SystemDeviceIdentity, NamesTheMachine) {
  const auto identifier = SystemDeviceIdentity().hardwareIdentifier();
  ASSERT_TRUE(identifier);
  EXPECT_FALSE(identifier->empty());
}

}  // namespace
}  // namespace kestrom::device
