#pragma once

#include "Kestrom/Export.hpp"

#include <cstdint>
#include <exception>
#include <string>
#include <utility>
#include <variant>

namespace kestrom {

/// The failures that a host sees. Thrown by what gives a future, and a plain value elsewhere.
class KESTROM_API KestromError final : public std::exception {
 public:
  /// The server refused. Both fields come from its answer: an empty message and the code 0 where it gave none. The code
  /// is the one in the answer's body, which need not be the HTTP status.
  struct APIError {
    std::string message;
    std::int64_t code = 0;

    friend bool operator==(const APIError&, const APIError&) = default;
  };
  /// There is no connection to the internet, or it was lost.
  struct NetworkError {
    friend bool operator==(const NetworkError&, const NetworkError&) = default;
  };
  /// Anything else, a time-out among it.
  struct Unknown {
    friend bool operator==(const Unknown&, const Unknown&) = default;
  };
  using Form = std::variant<APIError, NetworkError, Unknown>;

  explicit KestromError(Form kind) : form(std::move(kind)) {}
  static KestromError apiError(std::string message, std::int64_t code) {
    return KestromError(APIError{std::move(message), code});
  }
  static KestromError networkError() { return KestromError(NetworkError{}); }
  static KestromError unknown() { return KestromError(Unknown{}); }

  /// The name of the kind, in English; nothing that came from the server.
  const char* what() const noexcept override;

  Form form;

  friend bool operator==(const KestromError& a, const KestromError& b) { return a.form == b.form; }
};

}  // namespace kestrom
