#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::sandbox {

/// What can be asked of the server. The consent shares method and path with the user profile; its body tells it apart.
enum class Endpoint : std::uint8_t {
  mobileLogin,
  kestromObject,
  statusCheck,
  submit,
  getBot,
  saveUserProfile,
  submitUserConstent,
  getConfiguration,
  getAddress,
  submitAnswer,
  getHistory,
  uploadEvents,
  uploadMedia,
  media,
};

inline constexpr std::size_t kEndpointCount = static_cast<std::size_t>(Endpoint::media) + 1;

/// The name in fault scripts and in the request log.
std::string_view endpointName(Endpoint endpoint);
std::optional<Endpoint> endpointNamed(std::string_view name);

/// Whether only the holder of a token may call it.
bool needsToken(Endpoint endpoint);

/// Where a request leads.
struct Route {
  /// Absent for a path that is not known and for one that has no such method.
  std::optional<Endpoint> endpoint;
  /// The part of the path that names a case, a bot or a medium.
  std::string id;
  /// The methods that the path has; empty for a path that is not known.
  std::string allowedMethods;
};

/// `target` with its query, as it was sent.
Route findRoute(std::string_view method, std::string_view target);

}  // namespace kestrom::sandbox
