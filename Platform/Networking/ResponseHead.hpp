#pragma once

#include "Kestrom/Platform/HTTPHeaders.hpp"

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrom::networking {

/// The head of an answer, read line by line. Interim answers (status 1xx) and what stands behind the content take no
/// part in it.
class ResponseHead {
 public:
  /// Takes a line with its end; false when all lines together are more than any honest server sends.
  [[nodiscard]] bool addLine(std::string_view line);

  /// Whether the empty line behind the headers has come.
  bool isWhole() const { return _isWhole; }
  int statusCode() const { return _statusCode; }
  const HTTPHeaders& headers() const { return _headers; }

 private:
  void addHeader();

  int _statusCode = 0;
  HTTPHeaders _headers;
  /// The line before, to which the next one may belong.
  std::string _line;
  /// Between a status line and the empty line.
  bool _isWithin = false;
  bool _isWhole = false;
  std::size_t _size = 0;
  std::size_t _lineCount = 0;
};

}  // namespace kestrom::networking
