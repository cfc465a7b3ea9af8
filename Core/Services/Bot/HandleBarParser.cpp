#include "Core/Services/Bot/HandleBarParser.hpp"

#include "Core/Services/Bot/PlaceholderFinder.hpp"
#include "Platform/Foundation/JSONWriter.hpp"

#include <utility>

namespace kestrom::services {

using foundation::JSONType;
using foundation::JSONValue;

namespace {

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

}  // namespace

HandleBarParser::HandleBarParser(std::shared_ptr<const foundation::JSONDocument> json) : _json(std::move(json)) {}

std::string HandleBarParser::parse(std::string_view text) const {
  std::string result;
  std::size_t copied = 0;
  PlaceholderFinder finder(text);
  while (const auto placeholder = finder.next()) {
    if (copied == 0) result.reserve(text.size() + text.size() / 4);
    result.append(text, copied, placeholder->start - copied);
    if (!appendResolved(placeholder->path, result)) {
      result.append(text, placeholder->start, placeholder->end - placeholder->start);
    }
    copied = placeholder->end;
  }
  result.append(text, copied);
  return result;
}

bool HandleBarParser::appendResolved(std::string_view path, std::string& out) const {
  takePathPiece(path);
  if (!_json || _json->root().type() != JSONType::object) {
    if (takePathPiece(path)) return false;
    out += "{}";
    return true;
  }
  JSONValue value = _json->root();
  while (const auto piece = takePathPiece(path)) {
    const auto member = value.member(*piece);
    if (!member) return false;
    value = *member;
  }
  appendText(value, out);
  return true;
}

}  // namespace kestrom::services
