#pragma once

#include "Kestrom/Kestrom.hpp"
#include "Platform/Device/LocationBehavior.hpp"

#include <expected>
#include <optional>
#include <string>
#include <string_view>

/// What the commands that run the kit against a server have in common.
namespace kestrom::app {

/// The options as they were given.
struct HostOptions {
  std::string organization;
  /// "staging", "sandbox" or "production".
  std::string environment = "sandbox";
  std::optional<std::string> font;
  /// Leave out the call that configures the kit.
  bool noConfiguration = false;
  std::optional<std::string> connectTo;
  std::optional<std::string> caFile;
  std::optional<std::string> documentsDirectory;
  std::optional<std::string> temporaryDirectory;
  bool logs = false;
  /// "LAT,LNG", "LAT,LNG,reduced", "denied", "fails" or "never".
  std::string location = "denied";
  /// "undetermined", "granted" or "denied".
  std::string notifications = "undetermined";
  std::optional<std::string> appName;
  std::optional<std::string> appVersion;
  /// Absent: what the system says of the machine.
  std::optional<std::string> phoneModel;
};

/// "HOST:PORT", an IPv6 address in brackets; absent for anything else.
std::optional<LinuxPlatformOptions::Address> parseAddress(std::string_view text);

/// What the device does when it is asked where it is; absent for a text that is none of the above or no place on earth.
std::optional<device::LocationBehavior> parseLocation(std::string_view text);

/// The platform that the options describe.
std::expected<Platform, std::string> platformFor(const HostOptions& options);

/// The shared object on that platform, configured as the options say, or one line that says which of them is wrong.
/// Once in a process.
std::expected<KestromSDK*, std::string> startSDK(const HostOptions& options);

}  // namespace kestrom::app
