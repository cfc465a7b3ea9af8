#pragma once

#include "Kestrom/Platform/URL.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace kestrom::networking {

/// How a session reaches servers and how much it takes from them.
struct CurlSessionConfiguration {
  /// An address to connect to.
  struct Endpoint {
    /// As it stands in a URL: a name, an IPv4 address, or an IPv6 address in brackets.
    std::string host;
    std::uint16_t port = 0;
  };

  /// Where downloads are written. It must exist.
  foundation::URL temporaryDirectory;
  /// Where every connection goes, in place of the host of the URL. The Host header, the name that TLS asks for and the
  /// check of the certificate stay those of the URL.
  std::optional<Endpoint> connectTo = std::nullopt;
  /// The path of a PEM file with the authorities to trust in place of the system's.
  std::optional<std::string> certificateAuthorityFile = std::nullopt;
  /// Bytes of an answer in memory, decoded: as many as the largest JSON that the kit reads.
  std::uint64_t maximumDataSize = 64ull << 20;
  /// Bytes of an answer in a file: far above any video that the kit shows, and still a file that a phone may hold.
  std::uint64_t maximumDownloadSize = 2ull << 30;
};

}  // namespace kestrom::networking
