#include "Core/Services/Bot/PlaceholderFinder.hpp"

#include "Platform/Foundation/Text.hpp"

namespace kestrom::services {

namespace {

/// Length of the line terminator at `at`; 0 when there is none. Those of Unicode's regular expressions (UTS #18): line
/// feed, vertical tab, form feed, carriage return, next line, line and paragraph separator.
std::size_t lineTerminatorLength(std::string_view text, std::size_t at) {
  const char c = text[at];
  if (c >= '\n' && c <= '\r') return 1;
  if (c == '\xC2') return text.substr(at).starts_with("\xC2\x85") ? 2 : 0;
  if (c == '\xE2') {
    const std::string_view rest = text.substr(at);
    return rest.starts_with("\xE2\x80\xA8") || rest.starts_with("\xE2\x80\xA9") ? 3 : 0;
  }
  return 0;
}

}  // namespace

std::optional<Placeholder> PlaceholderFinder::next() {
  while (true) {
    const std::size_t start = _text.find("{{", _at);
    if (start == std::string_view::npos) return std::nullopt;
    const std::size_t content = start + (_text.substr(start + 2).starts_with('{') ? 3 : 2);
    std::size_t at = content;
    while (at < _text.size() && !_text.substr(at).starts_with("}}")) {
      if (lineTerminatorLength(_text, at) > 0) break;
      ++at;
    }
    if (at < _text.size() && _text[at] == '}') {
      _at = at + (_text.substr(at + 2).starts_with('}') ? 3 : 2);
      return Placeholder{start, _at, foundation::trimmedBlanks(_text.substr(content, at - content))};
    }
    // Nothing closes on this line, so nothing that opens further on in it closes either.
    _at = at;
  }
}

std::optional<std::string_view> takePathPiece(std::string_view& path) {
  while (path.starts_with('.')) path.remove_prefix(1);
  if (path.empty()) return std::nullopt;
  const std::string_view piece = path.substr(0, path.find('.'));
  path.remove_prefix(piece.size());
  return piece;
}

}  // namespace kestrom::services
