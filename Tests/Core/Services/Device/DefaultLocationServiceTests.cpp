#include "Core/Services/Device/DefaultLocationService.hpp"
#include "Tests/Support/FakeLocationManager.hpp"
#include "Tests/Support/RecordingLogSink.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::services {
namespace {

using device::LocationError;
using Status = device::LocationAuthorizationStatus;
using Reading = LocationService::Reading;

/// One request and what became of it.
class Request {
 public:
  explicit Request(LocationService& service)
      : _token(service.location().sink(
            [this](reactive::Completion<LocationError>&& completion) {
              outcome += completion.isFailure() ? debugDescription(completion.failure()) : "end";
            },
            [this](Reading&& reading) {
              outcome += reading.isPrecise ? "precise " : "rough ";
              outcome += std::to_string(static_cast<int>(reading.location.latitude)) + ' ';
            })) {}

  std::string outcome;

 private:
  reactive::AnyCancellable _token;
};

class Locating : public testing::Test {
 protected:
  tests::FakeLocationManager manager;
  std::shared_ptr<DefaultLocationService> service = DefaultLocationService::make(manager);
};

TEST_F(Locating, TellsWhetherItIsAllowed) {
  std::vector<std::optional<bool>> told;
  const auto token =
      service->isAuthorizedPublisher().sink([&](std::optional<bool> isAuthorized) { told.push_back(isAuthorized); });
  manager.status = Status::restricted;
  EXPECT_EQ(service->permissionStatus(), Status::restricted) << "asked of the manager until it tells by itself";
  const auto unknown = static_cast<Status>(9);
  for (const Status status : {Status::notDetermined, Status::restricted, Status::authorizedAlways, Status::denied,
                              Status::authorizedWhenInUse, unknown}) {
    manager.tellStatus(status);
    EXPECT_EQ(service->permissionStatus(), status);
  }
  EXPECT_EQ(told, (std::vector<std::optional<bool>>{{}, {}, false, true, false, true, false}));
}

TEST_F(Locating, GivesTheFirstLocationAndStops) {
  const Request request(*service);
  manager.tellLocations({});
  EXPECT_EQ(request.outcome, "");
  EXPECT_TRUE(manager.isUpdating) << "an empty list is no answer";
  manager.tellLocations({{1, 2}, {3, 4}});
  EXPECT_EQ(request.outcome, "precise 1 end");
  EXPECT_FALSE(manager.isUpdating);

  manager.accuracy = device::LocationAccuracyAuthorization::reduced;
  const Request rough(*service);
  manager.tellLocations({{5, 6}});
  EXPECT_EQ(rough.outcome, "rough 5 end");
  EXPECT_EQ(request.outcome, "precise 1 end");
}

TEST_F(Locating, FailsWithALogLineThatTellsNoPlace) {
  const tests::RecordedLog log;
  const Request request(*service);
  manager.tellFailure(LocationError::Code::denied);
  EXPECT_EQ(request.outcome, "LocationError.denied");
  EXPECT_TRUE(manager.isUpdating);
  const Request next(*service);
  manager.tellLocations({{47, 19}});
  EXPECT_EQ(next.outcome, "precise 47 end");

  ASSERT_EQ(log.lines().size(), 1U);
  const std::string line = log.lines().front();
  EXPECT_TRUE(
      line.starts_with("[KestromSDK] DefaultLocationService.cpp funtion:locationManager(_:didFailWithError:) line:"))
      << line;
  EXPECT_TRUE(line.ends_with(" LocationError.denied")) << line;
}

TEST_F(Locating, SilencesARequestThatALaterOneOvertakes) {
  const Request first(*service);
  const Request second(*service);
  manager.tellLocations({{1, 2}});
  manager.tellLocations({{3, 4}});
  manager.tellFailure();
  EXPECT_EQ(first.outcome, "");
  EXPECT_EQ(second.outcome, "precise 1 end");
}

TEST_F(Locating, TakesARequestFromWithinAnAnswerForOneOfItsOwn) {
  std::optional<Request> again;
  bool hasEnded = false;
  const auto token =
      service->location().sink([&](auto&&) { hasEnded = true; }, [&](Reading&&) { again.emplace(*service); });
  manager.tellLocations({{1, 2}});
  ASSERT_TRUE(again);
  EXPECT_TRUE(hasEnded);
  EXPECT_TRUE(manager.isUpdating);
  EXPECT_EQ(again->outcome, "");
  manager.tellLocations({{3, 4}});
  EXPECT_EQ(again->outcome, "precise 3 end");
}

TEST_F(Locating, MayEndWhileARequestWaits) {
  const Request request(*service);
  service.reset();
  manager.tellStatus(Status::denied);
  manager.tellLocations({{1, 2}});
  EXPECT_EQ(request.outcome, "");
}

}  // namespace
}  // namespace kestrom::services
