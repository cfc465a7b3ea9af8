#pragma once

#include "Kestrom/Platform/Bundle.hpp"
#include "Kestrom/Platform/Clock.hpp"
#include "Kestrom/Platform/DeviceIdentity.hpp"
#include "Kestrom/Platform/FileManager.hpp"
#include "Kestrom/Platform/LocationManager.hpp"
#include "Kestrom/Platform/LogSink.hpp"
#include "Kestrom/Platform/NotificationCenter.hpp"
#include "Kestrom/Platform/Scheduler.hpp"
#include "Kestrom/Platform/URLSession.hpp"
#include "Kestrom/Platform/UserNotificationCenter.hpp"

#include <functional>
#include <memory>
#include <string>

namespace kestrom {

/// All that the kit wants of the system that it runs on, each an interface. A port to a device replaces entries of this
/// record and nothing else. An empty entry stands for the one of `linuxPlatform()`.
struct Platform {
  /// Owns the kit's state: results are delivered on it. Its thread is what the kit calls the main thread. Other entries
  /// call back on it: whoever puts another in the place of `linuxPlatform`'s gives it to that by its options.
  std::shared_ptr<reactive::Scheduler> mainQueue;
  /// Makes a queue that runs one work after the other beside the main queue; the label names it for a debugger.
  std::function<std::shared_ptr<reactive::Scheduler>(const std::string& label)> makeSerialQueue;
  std::shared_ptr<const foundation::Clock> clock;
  std::shared_ptr<networking::URLSessionFactory> urlSessionFactory;
  std::shared_ptr<foundation::FileManager> fileManager;
  /// Tells what happens to the whole application; posted to on the main queue.
  std::shared_ptr<foundation::NotificationCenter> notificationCenter;
  /// What the host's bundle says of itself: "CFBundleName", "CFBundleShortVersionString".
  std::shared_ptr<const foundation::Bundle> mainBundle;
  /// What the kit's bundle says of itself: "CFBundleShortVersionString".
  std::shared_ptr<const foundation::Bundle> sdkBundle;
  std::shared_ptr<const device::DeviceIdentity> deviceIdentity;
  std::shared_ptr<device::LocationManager> locationManager;
  std::shared_ptr<device::UserNotificationCenter> userNotificationCenter;
  std::shared_ptr<foundation::LogSink> logSink;
};

}  // namespace kestrom
