#pragma once

#include "Kestrom/Platform/Platform.hpp"
#include "Platform/Device/FixedDeviceIdentity.hpp"
#include "Platform/Device/SimulatedLocationManager.hpp"
#include "Platform/Device/SimulatedUserNotificationCenter.hpp"
#include "Platform/Foundation/PosixFileManager.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/FakeURLSession.hpp"
#include "Tests/Support/RecordingLogSink.hpp"

#include <memory>
#include <string>

namespace kestrom::tests {

/// Gives out one session again and again.
class FakeURLSessionFactory final : public networking::URLSessionFactory {
 public:
  explicit FakeURLSessionFactory(std::shared_ptr<networking::URLSession> session) : _session(std::move(session)) {}

  std::shared_ptr<networking::URLSession> makeSession(reactive::Scheduler*) override { return _session; }

 private:
  std::shared_ptr<networking::URLSession> _session;
};

/// A system in which nothing happens by itself.
struct TestPlatform {
  std::shared_ptr<reactive::ManualScheduler> mainQueue = std::make_shared<reactive::ManualScheduler>();
  /// Every queue beside the main one.
  std::shared_ptr<reactive::ManualScheduler> serialQueue = std::make_shared<reactive::ManualScheduler>();
  std::shared_ptr<FakeClock> clock = std::make_shared<FakeClock>();
  std::shared_ptr<FakeURLSession> session = std::make_shared<FakeURLSession>();
  std::shared_ptr<RecordingLogSink> log = std::make_shared<RecordingLogSink>();
  std::shared_ptr<foundation::NotificationCenter> notificationCenter =
      std::make_shared<foundation::NotificationCenter>();
  std::shared_ptr<device::SimulatedLocationManager> locationManager =
      std::make_shared<device::SimulatedLocationManager>(device::LocationBehavior{device::LocationBehavior::Denied{}},
                                                         mainQueue);

  Platform platform() const {
    using foundation::URL;
    Platform platform;
    platform.mainQueue = mainQueue;
    platform.makeSerialQueue = [queue = serialQueue](const std::string&) { return queue; };
    platform.clock = clock;
    platform.urlSessionFactory = std::make_shared<FakeURLSessionFactory>(session);
    platform.fileManager = std::make_shared<foundation::PosixFileManager>(foundation::PosixFileManager::Directories{
        URL::fromFilePath("/nowhere/documents"), URL::fromFilePath("/nowhere/temporary")});
    platform.notificationCenter = notificationCenter;
    platform.mainBundle = std::make_shared<foundation::MapBundle>(foundation::MapBundle::Values{});
    platform.sdkBundle =
        std::make_shared<foundation::MapBundle>(foundation::MapBundle::Values{{"CFBundleShortVersionString", "1.2.3"}});
    platform.deviceIdentity = std::make_shared<device::FixedDeviceIdentity>("TestPhone1,1");
    platform.locationManager = locationManager;
    platform.userNotificationCenter = std::make_shared<device::SimulatedUserNotificationCenter>(
        device::NotificationAuthorizationStatus::notDetermined, mainQueue);
    platform.logSink = log;
    return platform;
  }

  /// Lets everything run that is due.
  void settle() {
    serialQueue->runReady();
    mainQueue->runReady();
    serialQueue->runReady();
  }
};

}  // namespace kestrom::tests
