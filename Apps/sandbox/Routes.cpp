#include "Apps/sandbox/Routes.hpp"

#include "Platform/Foundation/PercentEncoding.hpp"

#include <array>
#include <cctype>
#include <cstddef>

namespace kestrom::sandbox {

namespace {

constexpr std::array<std::string_view, kEndpointCount> kNames{
    "mobileLogin",     "kestromObject",      "statusCheck",      "submit",     "getBot",
    "saveUserProfile", "submitUserConstent", "getConfiguration", "getAddress", "submitAnswer",
    "getHistory",      "uploadEvents",       "uploadMedia",      "media"};

struct Line {
  std::string_view method;
  /// "*" stands for one segment, the id.
  std::string_view path;
  Endpoint endpoint;
};

constexpr Line kRoutes[] = {
    {"POST", "/auth/mobile-login", Endpoint::mobileLogin},
    {"POST", "/kestroms/status-check", Endpoint::statusCheck},
    {"GET", "/kestroms/*", Endpoint::kestromObject},
    {"POST", "/kestroms/*/submit", Endpoint::submit},
    {"POST", "/kestroms/*/answers", Endpoint::submitAnswer},
    {"GET", "/kestroms/*/answers", Endpoint::getHistory},
    {"GET", "/bots/*/sequence", Endpoint::getBot},
    {"POST", "/integrations/firebase/user-profile", Endpoint::saveUserProfile},
    {"POST", "/integrations/firebase/upload-media", Endpoint::uploadMedia},
    {"POST", "/integrations/geolocations/geocode", Endpoint::getAddress},
    {"POST", "/integrations/analytics/fullstory/batched-events", Endpoint::uploadEvents},
    {"GET", "/brand-configs/sdk", Endpoint::getConfiguration},
    {"GET", "/media/*", Endpoint::media},
};

bool isWhollyEscaped(std::string_view text) {
  for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 3)) {
    if (at + 2 >= text.size() || !std::isxdigit(static_cast<unsigned char>(text[at + 1])) ||
        !std::isxdigit(static_cast<unsigned char>(text[at + 2])))
      return false;
  }
  return true;
}

/// The segment that stands for the star, or the empty text for a pattern without one; absent when the path is another.
std::optional<std::string_view> matched(std::string_view pattern, std::string_view path) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) return path == pattern ? std::optional(std::string_view()) : std::nullopt;
  const std::string_view before = pattern.substr(0, star);
  const std::string_view behind = pattern.substr(star + 1);
  if (path.size() <= before.size() + behind.size() || !path.starts_with(before) || !path.ends_with(behind))
    return std::nullopt;
  const std::string_view id = path.substr(before.size(), path.size() - before.size() - behind.size());
  if (id.find('/') != std::string_view::npos) return std::nullopt;
  return id;
}

}  // namespace

std::string_view endpointName(Endpoint endpoint) {
  return kNames[static_cast<std::size_t>(endpoint)];
}

std::optional<Endpoint> endpointNamed(std::string_view name) {
  for (std::size_t index = 0; index < kNames.size(); ++index) {
    if (kNames[index] == name) return static_cast<Endpoint>(index);
  }
  return std::nullopt;
}

bool needsToken(Endpoint endpoint) {
  switch (endpoint) {
    case Endpoint::mobileLogin:
    case Endpoint::statusCheck:
    case Endpoint::getConfiguration:
    // Image views and players load media by address alone; the name is the secret.
    case Endpoint::media:
      return false;
    default:
      return true;
  }
}

Route findRoute(std::string_view method, std::string_view target) {
  const std::string_view path = target.substr(0, target.find('?'));
  Route route;
  if (!isWhollyEscaped(path)) return route;
  for (const Line& line : kRoutes) {
    const auto id = matched(line.path, path);
    if (!id) continue;
    if (!route.allowedMethods.empty()) route.allowedMethods += ", ";
    route.allowedMethods += line.method;
    if (route.endpoint || line.method != method) continue;
    route.endpoint = line.endpoint;
    route.id = foundation::percentDecoded(*id);
  }
  return route;
}

}  // namespace kestrom::sandbox
