#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::sandbox {

struct Header {
  std::string name;
  std::string value;
};

/// All of a request but its body.
struct RequestHead {
  std::string method;
  /// Path and query as they were sent.
  std::string target;
  /// In the order in which they came.
  std::vector<Header> headers;
  /// Absent for a chunked body and for none.
  std::optional<std::uint64_t> contentLength;
  bool expectsContinue = false;
  bool isKeptAlive = true;

  /// The first header of that name, in any case.
  std::optional<std::string_view> header(std::string_view name) const;
};

struct Response {
  unsigned status = 200;
  std::string contentType = "application/json";
  std::string body;
  /// Sent in place of `body` if there is one.
  std::optional<std::filesystem::path> file;
  std::vector<Header> headers;
};

/// An answer with a JSON text as its body.
Response jsonResponse(std::string body, unsigned status = 200);

/// A refusal: {"message", "statusCode", "error"}.
Response errorResponse(unsigned status, std::string_view message);

/// The usual words for a status, for example "Not Found".
std::string_view reasonPhrase(unsigned status);

bool equalsIgnoringCase(std::string_view left, std::string_view right);

/// The text without blanks and tabs at its ends.
std::string_view trimmed(std::string_view text);

}  // namespace kestrom::sandbox
