#include "Apps/kestrom/HostOptions.hpp"

#include "Platform/Device/FixedDeviceIdentity.hpp"
#include "Platform/Device/SimulatedLocationManager.hpp"
#include "Platform/Device/SimulatedUserNotificationCenter.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <memory>
#include <system_error>
#include <utility>

namespace kestrom::app {

namespace {

using device::LocationBehavior;
using device::NotificationAuthorizationStatus;
using foundation::URL;

template <class Number>
bool parse(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc{} && end == text.data() + text.size();
}

std::optional<KestromEnvironment> parseEnvironment(std::string_view text) {
  if (text == "staging") return KestromEnvironment::staging;
  if (text == "sandbox") return KestromEnvironment::sandbox;
  if (text == "production") return KestromEnvironment::production;
  return std::nullopt;
}

std::optional<NotificationAuthorizationStatus> parseNotifications(std::string_view text) {
  if (text == "undetermined") return NotificationAuthorizationStatus::notDetermined;
  if (text == "granted") return NotificationAuthorizationStatus::authorized;
  if (text == "denied") return NotificationAuthorizationStatus::denied;
  return std::nullopt;
}

std::string wrong(std::string_view option, std::string_view value, std::string_view wanted) {
  std::string text(option);
  return text.append(": \"").append(value).append("\" is no ").append(wanted);
}

std::optional<URL> fileURL(const std::optional<std::string>& path) {
  return path ? std::optional(URL::fromFilePath(*path)) : std::nullopt;
}

}  // namespace

std::optional<LinuxPlatformOptions::Address> parseAddress(std::string_view text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) return std::nullopt;
  std::string_view host = text.substr(0, colon);
  const std::string_view digits = text.substr(colon + 1);
  std::uint16_t port = 0;
  if (!parse(digits, port) || port == 0) return std::nullopt;
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  } else if (host.empty() || host.find_first_of(":[]") != std::string_view::npos) {
    return std::nullopt;
  }
  return LinuxPlatformOptions::Address{std::string(host), port};
}

std::optional<LocationBehavior> parseLocation(std::string_view text) {
  if (text == "denied") return LocationBehavior{LocationBehavior::Denied{}};
  if (text == "fails") return LocationBehavior{LocationBehavior::Fails{}};
  if (text == "never") return LocationBehavior{LocationBehavior::Never{}};

  LocationBehavior::Place place;
  constexpr std::string_view kReduced = ",reduced";
  if (text.ends_with(kReduced)) {
    place.accuracy = device::LocationAccuracyAuthorization::reduced;
    text.remove_suffix(kReduced.size());
  }
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos || !parse(text.substr(0, comma), place.location.latitude) ||
      !parse(text.substr(comma + 1), place.location.longitude)) {
    return std::nullopt;
  }
  // Written so that what is no number is refused too.
  const bool isOnEarth = std::abs(place.location.latitude) <= 90 && std::abs(place.location.longitude) <= 180;
  return isOnEarth ? std::optional(LocationBehavior{place}) : std::nullopt;
}

std::expected<Platform, std::string> platformFor(const HostOptions& options) {
  LinuxPlatformOptions system;
  if (options.connectTo) {
    system.connectTo = parseAddress(*options.connectTo);
    if (!system.connectTo) return std::unexpected(wrong("--connect-to", *options.connectTo, "HOST:PORT"));
  }
  system.certificateAuthorityFile = fileURL(options.caFile);
  if (options.caFile && std::ifstream(*options.caFile).peek() == std::ifstream::traits_type::eof()) {
    return std::unexpected(wrong("--cacert", *options.caFile, "readable file"));
  }
  system.documentsDirectory = fileURL(options.documentsDirectory);
  system.temporaryDirectory = fileURL(options.temporaryDirectory);
  if (options.appName) system.mainBundleValues["CFBundleName"] = *options.appName;
  if (options.appVersion) system.mainBundleValues["CFBundleShortVersionString"] = *options.appVersion;

  auto location = parseLocation(options.location);
  if (!location) return std::unexpected(wrong("--location", options.location, "place, nor denied, fails or never"));
  const auto notifications = parseNotifications(options.notifications);
  if (!notifications) {
    return std::unexpected(wrong("--notifications", options.notifications, "undetermined, granted or denied"));
  }
  Platform platform = linuxPlatform(system);
  platform.locationManager =
      std::make_shared<device::SimulatedLocationManager>(std::move(*location), platform.mainQueue);
  platform.userNotificationCenter =
      std::make_shared<device::SimulatedUserNotificationCenter>(*notifications, platform.mainQueue);
  if (options.phoneModel) platform.deviceIdentity = std::make_shared<device::FixedDeviceIdentity>(options.phoneModel);
  return platform;
}

std::expected<KestromSDK*, std::string> startSDK(const HostOptions& options) {
  const auto environment = parseEnvironment(options.environment);
  if (!environment) {
    return std::unexpected(wrong("--environment", options.environment, "staging, sandbox or production"));
  }
  auto platform = platformFor(options);
  if (!platform) return std::unexpected(std::move(platform.error()));
  KestromSDK::install(std::move(*platform));
  KestromSDK& sdk = KestromSDK::shared();
  if (options.logs) sdk.enableLogs();
  if (!options.noConfiguration) sdk.set(KestromConfiguration(options.organization, *environment, options.font));
  return &sdk;
}

}  // namespace kestrom::app
