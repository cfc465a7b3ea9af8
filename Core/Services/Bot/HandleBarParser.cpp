#include "Core/Services/Bot/HandleBarParser.hpp"

#include "Platform/Foundation/JSONWriter.hpp"
#include "Platform/Foundation/Text.hpp"

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

/// Finds placeholders from left to right: what the expression "\{\{\{?(.*?)\}\}\}?" matches, in one pass over the text.
class PlaceholderFinder {
 public:
  explicit PlaceholderFinder(std::string_view text) : _text(text) {}

  std::optional<Placeholder> next() {
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
        return Placeholder{start, _at, _text.substr(content, at - content)};
      }
      // Nothing closes on this line, so nothing that opens further on in it closes either.
      _at = at;
    }
  }

 private:
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
