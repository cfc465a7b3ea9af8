#include "Kestrom/Platform/URLError.hpp"

namespace kestrom::networking {

std::string_view nameOf(URLError::Code code) {
  using enum URLError::Code;
  switch (code) {
    case unknown:
      return "unknown";
    case cancelled:
      return "cancelled";
    case invalidRequest:
      return "invalidRequest";
    case unsupportedURL:
      return "unsupportedURL";
    case timedOut:
      return "timedOut";
    case cannotFindHost:
      return "cannotFindHost";
    case cannotConnectToHost:
      return "cannotConnectToHost";
    case networkConnectionLost:
      return "networkConnectionLost";
    case notConnectedToInternet:
      return "notConnectedToInternet";
    case badServerResponse:
      return "badServerResponse";
    case userAuthenticationRequired:
      return "userAuthenticationRequired";
    case secureConnectionFailed:
      return "secureConnectionFailed";
    case serverCertificateUntrusted:
      return "serverCertificateUntrusted";
    case dataLengthExceedsMaximum:
      return "dataLengthExceedsMaximum";
    case cannotOpenFile:
      return "cannotOpenFile";
    case cannotWriteToFile:
      return "cannotWriteToFile";
  }
  return "unknown";
}

}  // namespace kestrom::networking
