#pragma once

#include "Kestrom/Export.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrom::networking {

/// Why a request has no answer. A status code of a server is none: that is an answer.
struct URLError {
  enum class Code : std::uint8_t {
    unknown,
    cancelled,
    /// The request cannot be sent as it is: a header with a line break, a method that is no word.
    invalidRequest,
    unsupportedURL,
    timedOut,
    cannotFindHost,
    cannotConnectToHost,
    /// The connection broke, or ended before the answer was whole.
    networkConnectionLost,
    /// The device has no network at all.
    notConnectedToInternet,
    /// What came is no HTTP.
    badServerResponse,
    /// A proxy or the protocol asks for a sign-in. A status 401 is an answer, and not this.
    userAuthenticationRequired,
    secureConnectionFailed,
    /// The certificate is of another host, has run out, or nobody vouches for it.
    serverCertificateUntrusted,
    /// The answer is larger than the session takes.
    dataLengthExceedsMaximum,
    cannotOpenFile,
    cannotWriteToFile,
  };

  Code code = Code::unknown;
  /// One sentence for the log, in English. Holds no header, no body and no URL.
  std::string description;

  friend bool operator==(const URLError&, const URLError&) = default;
};

/// The name of the code as it stands above, for the log.
KESTROM_API std::string_view nameOf(URLError::Code code);

}  // namespace kestrom::networking
