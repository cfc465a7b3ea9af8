#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/Bundle.hpp"
#include "Kestrom/Platform/Platform.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace kestrom {

/// What can be chosen of the Linux platform.
struct LinuxPlatformOptions {
  /// A host name or an address, an IPv6 one without brackets.
  struct Address {
    std::string host;
    std::uint16_t port = 0;
  };

  /// Where the kit's state lives, pumped by the host; absent: a queue with a thread of its own.
  std::shared_ptr<reactive::Scheduler> mainQueue;
  /// Where the user's data lie; absent: "kestrom" in $XDG_DATA_HOME or in ~/.local/share.
  std::optional<foundation::URL> documentsDirectory;
  /// Absent: one of this user alone in the system's directory for temporary files, made if it is missing.
  std::optional<foundation::URL> temporaryDirectory;
  /// Every connection goes there; URL, Host header, TLS server name and certificate check stay those of the request.
  std::optional<Address> connectTo;
  /// File of certificates (PEM) to trust instead of the system's.
  std::optional<foundation::URL> certificateAuthorityFile;
  /// What the host says of itself, for example {"CFBundleName", "Inspector"}.
  foundation::MapBundle::Values mainBundleValues;
};

/// The platform of a Linux system, every entry set. Its main queue has a thread of its own, so that a host without a
/// loop need not pump one; a host that has a loop gives its queue with the options, as other entries call back on it.
KESTROM_API Platform linuxPlatform(const LinuxPlatformOptions& options = {});

}  // namespace kestrom
