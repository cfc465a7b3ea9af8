#include "Core/Services/Bot/HandleBarParser.hpp"

#include "Platform/Foundation/JSONWriter.hpp"
#include "Platform/Foundation/Text.hpp"

#include <array>
#include <optional>
#include <utility>

namespace kestrom::services {

using foundation::JSONType;
using foundation::JSONValue;

namespace {

struct Placeholder {
  std::size_t start;
  std::size_t end;
  std::string_view content;
};

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

/// Finds placeholders from left to right: what the expression "\{\{\{?(.*?)\}\}\}?" matches, in one pass over the text.
class PlaceholderFinder {
 public:
  explicit PlaceholderFinder(std::string_view text) : _text(text) {}

  std::optional<Placeholder> next() {
    while (true) {
      const std::size_t start = _text.find("{{", _at);
      if (start == std::string_view::npos) return std::nullopt;
      const std::size_t content = start + (_text.substr(start + 2).starts_with('{') ? 3 : 2);
      const std::size_t end = contentEnd(content);
      if (end < _text.size() && _text[end] == '}') {
        _at = end + (_text.substr(end + 2).starts_with('}') ? 3 : 2);
        return Placeholder{start, _at, _text.substr(content, end - content)};
      }
      // Nothing closes on this line, so nothing that opens further on in it closes either.
      _at = end;
    }
  }

 private:
  /// Where the closing braces, the line or the text end.
  std::size_t contentEnd(std::size_t at) const {
    for (; at < _text.size(); ++at) {
      if (!kMayEndContent[static_cast<unsigned char>(_text[at])]) continue;
      const std::string_view rest = _text.substr(at);
      if (rest.starts_with("}}") || startsWithLineTerminator(rest)) break;
    }
    return at;
  }

  std::string_view _text;
  std::size_t _at = 0;
};

void appendText(JSONValue value, std::string& out) {
  switch (value.type()) {
    case JSONType::string:
      out += value.string();
      return;
    case JSONType::number:
      out += value.numberText();
      return;
    default: {
      foundation::JSONWriter writer;
      writer.value(value);
      out += writer.text();
    }
  }
}

/// The next piece of a path and what follows it; empty pieces are dropped.
std::optional<std::string_view> takePiece(std::string_view& path) {
  while (path.starts_with('.')) path.remove_prefix(1);
  if (path.empty()) return std::nullopt;
  const std::string_view piece = path.substr(0, path.find('.'));
  path.remove_prefix(piece.size());
  return piece;
}

}  // namespace

HandleBarParser::HandleBarParser(std::shared_ptr<const foundation::JSONDocument> json) : _json(std::move(json)) {}

std::string HandleBarParser::parse(std::string_view text) const {
  std::string result;
  std::size_t copied = 0;
  PlaceholderFinder finder(text);
  while (const auto placeholder = finder.next()) {
    if (copied == 0) result.reserve(text.size() + text.size() / 4);
    result.append(text, copied, placeholder->start - copied);
    if (!appendResolved(foundation::trimmedBlanks(placeholder->content), result)) {
      result.append(text, placeholder->start, placeholder->end - placeholder->start);
    }
    copied = placeholder->end;
  }
  result.append(text, copied);
  return result;
}

bool HandleBarParser::appendResolved(std::string_view path, std::string& out) const {
  takePiece(path);
  if (!_json || _json->root().type() != JSONType::object) {
    if (takePiece(path)) return false;
    out += "{}";
    return true;
  }
  JSONValue value = _json->root();
  while (const auto piece = takePiece(path)) {
    const auto member = value.member(*piece);
    if (!member) return false;
    value = *member;
  }
  appendText(value, out);
  return true;
}

}  // namespace kestrom::services
