#include "Platform/Networking/ResponseHead.hpp"

#include "Platform/Networking/HTTPText.hpp"

#include <charconv>
#include <utility>

namespace kestrom::networking {

namespace {

/// Servers themselves take 8 to 64 KiB from a client; this leaves room for the worst of cookies and policies.
constexpr std::size_t kMaximumSize = 256 << 10;
/// Finding a name walks the list, so that many short ones would cost the square of their number.
constexpr std::size_t kMaximumLineCount = 1024;

int statusCodeOf(std::string_view line) {
  int code = 0;
  const std::size_t blank = line.find(' ');
  // More than one blank is wrong and yet understood.
  const std::size_t digits = line.find_first_not_of(' ', blank);
  if (digits != std::string_view::npos) std::from_chars(line.data() + digits, line.data() + line.size(), code);
  return code;
}

}  // namespace

bool ResponseHead::addLine(std::string_view line) {
  _size += line.size();
  if (_size > kMaximumSize || ++_lineCount > kMaximumLineCount) return false;
  if (_isWhole) return true;

  line = line.substr(0, line.find_last_not_of("\r\n") + 1);
  if (!line.empty() && (line.front() == ' ' || line.front() == '\t')) {
    _line.append(" ").append(trimmed(line));
    return true;
  }
  addHeader();
  if (!_isWithin) {
    _isWithin = true;
    _statusCode = statusCodeOf(line);
    _headers = {};
  } else if (line.empty()) {
    _isWithin = false;
    _isWhole = _statusCode >= 200;
  } else {
    _line = line;
  }
  return true;
}

void ResponseHead::addHeader() {
  const std::string line = std::exchange(_line, {});
  const std::size_t colon = line.find(':');
  if (colon == std::string::npos || colon == 0) return;
  const std::string_view text = line;
  _headers.add(trimmed(text.substr(0, colon)), trimmed(text.substr(colon + 1)));
}

}  // namespace kestrom::networking
