#include "Kestrom/Platform/LinuxPlatform.hpp"

#include "Platform/Device/SimulatedLocationManager.hpp"
#include "Platform/Device/SimulatedUserNotificationCenter.hpp"
#include "Platform/Device/SystemDeviceIdentity.hpp"
#include "Platform/Foundation/PosixFileManager.hpp"
#include "Platform/Networking/CurlURLSessionFactory.hpp"
#include "Platform/Reactive/SerialQueue.hpp"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrom {

namespace {

using foundation::URL;

/// Where a user's programs keep their data (XDG base directories).
std::filesystem::path userDataDirectory() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data && *data == '/') return data;
  const char* home = std::getenv("HOME");
  if (home && *home == '/') return std::filesystem::path(home) / ".local/share";
  const passwd* entry = getpwuid(getuid());
  return std::filesystem::path(entry ? entry->pw_dir : "/") / ".local/share";
}

/// Makes the directory if it is missing. True when it is a real one of this user's, and nobody else's to write to.
bool makePrivateDirectory(const std::string& path) {
  if (::mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST) return false;
  struct stat status{};
  return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid() &&
         (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

/// All users share the system's directory, so the kit's own in it has its user's number in its name, and is another one
/// where somebody else was there first.
std::filesystem::path userTemporaryDirectory() {
  std::error_code error;
  auto shared = std::filesystem::temp_directory_path(error);
  if (error) shared = "/tmp";
  const std::string own = (shared / ("kestrom-" + std::to_string(::getuid()))).string();
  if (makePrivateDirectory(own)) return own;
  std::string fresh = own + "-XXXXXX";
  return ::mkdtemp(fresh.data()) ? fresh : own;
}

foundation::PosixFileManager::Directories directoriesOf(const LinuxPlatformOptions& options) {
  return {
      .documents = options.documentsDirectory.value_or(URL::fromFilePath((userDataDirectory() / "kestrom").string())),
      .temporary = options.temporaryDirectory ? *options.temporaryDirectory
                                              : URL::fromFilePath(userTemporaryDirectory().string()),
  };
}

networking::CurlSessionConfiguration sessionConfiguration(const LinuxPlatformOptions& options, URL temporaryDirectory) {
  networking::CurlSessionConfiguration configuration{.temporaryDirectory = std::move(temporaryDirectory)};
  if (options.connectTo) {
    const bool isIPv6 = options.connectTo->host.find(':') != std::string::npos;
    configuration.connectTo = {isIPv6 ? "[" + options.connectTo->host + "]" : options.connectTo->host,
                               options.connectTo->port};
  }
  if (options.certificateAuthorityFile)
    configuration.certificateAuthorityFile = options.certificateAuthorityFile->path();
  return configuration;
}

}  // namespace

Platform linuxPlatform(const LinuxPlatformOptions& options) {
  const auto directories = directoriesOf(options);
  Platform platform;
  const auto ownQueue = options.mainQueue ? nullptr : std::make_shared<reactive::SerialQueue>("kestrom-main");
  platform.mainQueue = ownQueue ? ownQueue : options.mainQueue;
  platform.makeSerialQueue = [](const std::string& label) { return std::make_shared<reactive::SerialQueue>(label); };
  platform.clock = std::make_shared<foundation::SystemClock>();
  platform.urlSessionFactory = std::make_shared<networking::CurlURLSessionFactory>(
      sessionConfiguration(options, directories.temporary), ownQueue);
  platform.fileManager = std::make_shared<foundation::PosixFileManager>(directories);
  platform.notificationCenter = std::make_shared<foundation::NotificationCenter>();
  platform.mainBundle = std::make_shared<foundation::MapBundle>(options.mainBundleValues);
  platform.sdkBundle = std::make_shared<foundation::MapBundle>(
      foundation::MapBundle::Values{{"CFBundleShortVersionString", KESTROM_VERSION}});
  platform.deviceIdentity = std::make_shared<device::SystemDeviceIdentity>();
  // The machine knows no location and shows no notifications.
  platform.locationManager = std::make_shared<device::SimulatedLocationManager>(
      device::LocationBehavior{device::LocationBehavior::Denied{}}, platform.mainQueue);
  platform.userNotificationCenter = std::make_shared<device::SimulatedUserNotificationCenter>(
      device::NotificationAuthorizationStatus::notDetermined, platform.mainQueue);
  platform.logSink = std::make_shared<foundation::StandardErrorLogSink>();
  return platform;
}

}  // namespace kestrom
