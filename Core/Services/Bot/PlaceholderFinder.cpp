#include "Core/Services/Bot/PlaceholderFinder.hpp"

#include "Platform/Foundation/Text.hpp"

#include <array>

namespace kestrom::services {

namespace {

/// The first bytes of what can end the content of a placeholder: a brace or a line terminator.
constexpr auto kMayEndContent = [] {
  std::array<bool, 256> table{};
  for (const unsigned char c : {'}', '\n', '\v', '\f', '\r', '\xC2', '\xE2'}) table[c] = true;
  return table;
}();

/// Whether `text` starts with a line terminator of Unicode's regular expressions (UTS #18): line feed, vertical tab,
/// form feed, carriage return, next line, line and paragraph separator.
bool startsWithLineTerminator(std::string_view text) {
  if (text.front() >= '\n' && text.front() <= '\r') return true;
  return text.starts_with("\xC2\x85") || text.starts_with("\xE2\x80\xA8") || text.starts_with("\xE2\x80\xA9");
}

/// Where from `at` on the closing braces, the line or the text end.
std::size_t contentEnd(std::string_view text, std::size_t at) {
  for (; at < text.size(); ++at) {
    if (!kMayEndContent[static_cast<unsigned char>(text[at])]) continue;
    const std::string_view rest = text.substr(at);
    if (rest.starts_with("}}") || startsWithLineTerminator(rest)) break;
  }
  return at;
}

}  // namespace

std::optional<Placeholder> PlaceholderFinder::next() {
  while (true) {
    const std::size_t start = _text.find("{{", _at);
    if (start == std::string_view::npos) return std::nullopt;
    const std::size_t content = start + (_text.substr(start + 2).starts_with('{') ? 3 : 2);
    const std::size_t end = contentEnd(_text, content);
    if (end < _text.size() && _text[end] == '}') {
      _at = end + (_text.substr(end + 2).starts_with('}') ? 3 : 2);
      return Placeholder{start, _at, foundation::trimmedBlanks(_text.substr(content, end - content))};
    }
    // Nothing closes on this line, so nothing that opens further on in it closes either.
    _at = end;
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
