#include "Core/Services/Device/DefaultLocationService.hpp"
#include "Core/Services/Device/DefaultNotificationsService.hpp"
#include "Core/UseCases/DefaultAuthorizePushNotificationsUseCase.hpp"
#include "Core/UseCases/DefaultRequestLocationPermissionUseCase.hpp"
#include "Core/UseCases/DefaultRequestPermissionAndGetCoordinatesUseCase.hpp"
#include "Platform/Device/SimulatedUserNotificationCenter.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Tests/Support/FakeLocationManager.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrom::usecases {
namespace {

using services::LocationCoordinate;
using Status = device::LocationAuthorizationStatus;

class LocationPermission : public testing::Test {
 protected:
  tests::FakeLocationManager manager;
  std::shared_ptr<services::LocationService> service = services::DefaultLocationService::make(manager);
  std::shared_ptr<RequestLocationPermissionUseCase> requestPermission =
      std::make_shared<DefaultRequestLocationPermissionUseCase>(service);
  DefaultRequestPermissionAndGetCoordinatesUseCase getCoordinates{requestPermission, service};
};

TEST_F(LocationPermission, AsksAtTheSubscriptionAndGivesTheFirstAnswer) {
  const auto publisher = requestPermission->execute();
  EXPECT_EQ(manager.authorizationRequests, 0);
  std::vector<bool> answers;
  bool hasEnded = false;
  const auto token = publisher.sink([&](auto&&) { hasEnded = true; }, [&](bool answer) { answers.push_back(answer); });
  EXPECT_EQ(manager.authorizationRequests, 1);
  manager.tellStatus(Status::notDetermined);
  EXPECT_TRUE(answers.empty());
  EXPECT_FALSE(hasEnded);
  manager.tellStatus(Status::denied);
  manager.tellStatus(Status::authorizedAlways);
  EXPECT_EQ(answers, std::vector{false});
  EXPECT_TRUE(hasEnded);

  answers.clear();
  const auto again = publisher.sink([&](bool answer) { answers.push_back(answer); });
  EXPECT_EQ(answers, std::vector{true}) << "inside sink once it is known";
}

TEST_F(LocationPermission, GivesACoordinateOrNoneButNeverFails) {
  using Coordinate = std::optional<LocationCoordinate>;
  struct Row {
    std::string_view label;
    Status status;
    void (*answer)(tests::FakeLocationManager&);
    bool isStarted;
    Coordinate wanted;
  };
  static const Row kRows[] = {
      {"refused", Status::denied, [](auto&) {}, false, std::nullopt},
      {"precise", Status::authorizedWhenInUse, [](auto& phone) { phone.tellLocations({{1, 2}}); }, true,
       LocationCoordinate{.lat = 1, .lng = 2, .isPrecise = true}},
      {"reduced", Status::authorizedAlways,
       [](auto& phone) {
         phone.accuracy = device::LocationAccuracyAuthorization::reduced;
         phone.tellLocations({{1, 2}});
       },
       true, LocationCoordinate{.lat = 1, .lng = 2, .isPrecise = false}},
      {"failure", Status::authorizedAlways, [](auto& phone) { phone.tellFailure(); }, true, std::nullopt},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.label);
    std::vector<Coordinate> given;
    bool hasEnded = false;
    manager.isUpdating = false;
    manager.tellStatus(Status::notDetermined);
    const auto token = getCoordinates.execute().sink([&](auto&&) { hasEnded = true; },
                                                     [&](Coordinate coordinate) { given.push_back(coordinate); });
    EXPECT_FALSE(manager.isUpdating) << "not before the permission is there";
    manager.tellStatus(row.status);
    EXPECT_EQ(manager.isUpdating, row.isStarted);
    row.answer(manager);
    EXPECT_EQ(given, std::vector{row.wanted});
    EXPECT_TRUE(hasEnded);
  }
}

TEST(AuthorizePushNotifications, GivesWhatThePersonAnswers) {
  using PushStatus = device::NotificationAuthorizationStatus;
  const auto scheduler = std::make_shared<reactive::ManualScheduler>();
  device::SimulatedUserNotificationCenter center(PushStatus::notDetermined, scheduler);
  DefaultAuthorizePushNotificationsUseCase authorize(std::make_shared<services::DefaultNotificationsService>(center));
  const auto publisher = authorize.execute();
  for (const auto& [status, wanted] :
       {std::pair(PushStatus::denied, false), std::pair(PushStatus::notDetermined, true)}) {
    center.setStatus(status);
    std::vector<bool> answers;
    bool hasEnded = false;
    const auto token =
        publisher.sink([&](auto&&) { hasEnded = true; }, [&](bool answer) { answers.push_back(answer); });
    scheduler->runReady();
    EXPECT_EQ(answers, std::vector{wanted});
    EXPECT_TRUE(hasEnded);
  }
}

}  // namespace
}  // namespace kestrom::usecases
