#include "Core/Services/Device/DefaultDeviceDataService.hpp"
#include "Core/Services/Device/DefaultNotificationsService.hpp"
#include "Platform/Device/FixedDeviceIdentity.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace kestrom::services {
namespace {

using Status = device::NotificationAuthorizationStatus;

TEST(DefaultDeviceDataService, LeavesOutWhatIsNotKnownAndKeepsTheRest) {
  const device::FixedDeviceIdentity phone("Phone15,2");
  const device::FixedDeviceIdentity nameless(std::nullopt);
  using Values = foundation::MapBundle::Values;
  const foundation::MapBundle whole(Values{{"CFBundleShortVersionString", "2.1"}, {"CFBundleName", "Host"}});
  const foundation::MapBundle withoutName(Values{{"CFBundleShortVersionString", "2.1"}});

  EXPECT_EQ(DefaultDeviceDataService(phone, whole).deviceData(), (KestromDeviceData{"Phone15,2", "2.1", "Host"}));
  EXPECT_EQ(DefaultDeviceDataService(phone, withoutName).deviceData(),
            (KestromDeviceData{"Phone15,2", "2.1", std::nullopt}));
  EXPECT_EQ(DefaultDeviceDataService(nameless, whole).deviceData(), (KestromDeviceData{std::nullopt, "2.1", "Host"}));
}

/// Answers when it is told.
class FakeUserNotificationCenter final : public device::UserNotificationCenter {
 public:
  void getNotificationSettings(SettingsCompletion completion) override {
    _waiting.push_back([this, completion = std::move(completion)]() mutable { completion({status}); });
  }
  void requestAuthorization(device::NotificationOptions options, AuthorizationCompletion completion) override {
    asked = options;
    _waiting.push_back(
        [this, completion = std::move(completion)]() mutable { completion(status == Status::authorized); });
  }
  void answer() {
    for (auto& waiting : std::exchange(_waiting, {})) waiting();
  }

  Status status = Status::notDetermined;
  std::optional<device::NotificationOptions> asked;

 private:
  std::vector<std::move_only_function<void()>> _waiting;
};

TEST(DefaultNotificationsService, IsDeterminedByAnyAnswerEvenARefusal) {
  FakeUserNotificationCenter center;
  for (const auto& [status, wanted] : {std::pair(Status::notDetermined, false), std::pair(Status::denied, true),
                                       std::pair(Status::authorized, true)}) {
    center.status = status;
    std::optional<bool> isDetermined;
    // The service need not wait for the answer.
    DefaultNotificationsService(center).isDetermined([&](bool answer) { isDetermined = answer; });
    EXPECT_EQ(isDetermined, std::nullopt);
    center.answer();
    EXPECT_EQ(isDetermined, wanted);
  }
  EXPECT_FALSE(center.asked) << "looking asks nobody";
}

TEST(DefaultNotificationsService, AsksForAllWaysToNotify) {
  FakeUserNotificationCenter center;
  for (const auto& [status, wanted] : {std::pair(Status::authorized, true), std::pair(Status::denied, false)}) {
    center.status = status;
    std::optional<bool> isGranted;
    DefaultNotificationsService(center).requestAuthorization([&](bool answer) { isGranted = answer; });
    EXPECT_EQ(isGranted, std::nullopt);
    center.answer();
    EXPECT_EQ(isGranted, wanted);
  }
  EXPECT_EQ(center.asked, (device::NotificationOptions{.badge = true, .sound = true, .alert = true}));
}

}  // namespace
}  // namespace kestrom::services
