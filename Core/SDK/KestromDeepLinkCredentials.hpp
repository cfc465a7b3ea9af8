#pragma once

#include "Kestrom/Platform/URL.hpp"

#include <optional>
#include <string>

namespace kestrom::session {

/// What a host or a link signs the user in with.
struct KestromDeepLinkCredentials {
  std::string accessCode;
  std::string zipCode;
  /// Whether the flow signs in by itself, without the login screen.
  bool shouldSkipLogin = false;

  /// The credentials in the query of a link, "…?kestromZipCode=…&kestromAccessCode=…". Of equal names the last one
  /// counts; a name without a value takes an earlier one back. Absent, with a line in the log, when one is missing.
  static std::optional<KestromDeepLinkCredentials> parse(const foundation::URL& link, bool shouldSkipLogin);

  friend bool operator==(const KestromDeepLinkCredentials&, const KestromDeepLinkCredentials&) = default;
};

}  // namespace kestrom::session
