#pragma once

#include <optional>
#include <string>

namespace kestrom::session {

/// The case that a login opened.
struct KestromInfo {
  std::string organizationId;
  std::string kestromId;

  friend bool operator==(const KestromInfo&, const KestromInfo&) = default;
};

/// Who is signed in. Lives in memory only.
struct KestromUser {
  /// The bearer token. Opaque to the kit: that it has run out shows only when the server answers 401.
  std::optional<std::string> token;
  std::optional<KestromInfo> currentKestromInfo;
  /// The access code that the user signed in with.
  std::optional<std::string> accessCode;

  friend bool operator==(const KestromUser&, const KestromUser&) = default;
};

}  // namespace kestrom::session
