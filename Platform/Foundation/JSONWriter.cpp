#include "Platform/Foundation/JSONWriter.hpp"

#include "Platform/Foundation/DateText.hpp"

#include <unicode/utf8.h>

#include <charconv>
#include <cmath>
#include <vector>

namespace kestrom::foundation {

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;

template <class Number>
void appendNumber(std::string& out, Number value) {
  char buffer[32];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, written.ptr);
}

void appendEscaped(std::string& out, unsigned char c) {
  switch (c) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\b':
      out += "\\b";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default: {
      constexpr std::string_view kHex = "0123456789abcdef";
      out += "\\u00";
      out += kHex[c >> 4];
      out += kHex[c & 15];
    }
  }
}

void appendQuoted(std::string& out, std::string_view text) {
  out += '"';
  std::size_t plain = 0;
  const auto length = static_cast<std::int64_t>(text.size());
  for (std::int64_t at = 0; at < length;) {
    const auto c = static_cast<unsigned char>(text[static_cast<std::size_t>(at)]);
    if (c >= 0x20 && c < 0x80 && c != '"' && c != '\\') {
      ++at;
      continue;
    }
    const std::int64_t start = at;
    UChar32 point = 0;
    U8_NEXT(text.data(), at, length, point);
    if (point >= 0x80) continue;
    out.append(text, plain, static_cast<std::size_t>(start) - plain);
    if (point < 0) {
      out += "\xEF\xBF\xBD";
    } else {
      appendEscaped(out, c);
    }
    plain = static_cast<std::size_t>(at);
  }
  out.append(text, plain);
  out += '"';
}

}  // namespace

void JSONWriter::separate() {
  if (_needsComma) _text += ',';
  _needsComma = true;
}

void JSONWriter::open(char bracket) {
  separate();
  _text += bracket;
  _needsComma = false;
}

void JSONWriter::close(char bracket) {
  _text += bracket;
  _needsComma = true;
}

void JSONWriter::key(std::string_view name) {
  separate();
  appendQuoted(_text, name);
  _text += ':';
  _needsComma = false;
}

void JSONWriter::string(std::string_view text) {
  separate();
  appendQuoted(_text, text);
}

void JSONWriter::integer(std::int64_t value) {
  separate();
  appendNumber(_text, value);
}

void JSONWriter::number(double value) {
  if (!std::isfinite(value)) {
    _isFaithful = false;
    return null();
  }
  if (std::trunc(value) == value && std::abs(value) < kTwoTo63) return integer(static_cast<std::int64_t>(value));
  separate();
  appendNumber(_text, value);
}

void JSONWriter::boolean(bool value) {
  separate();
  _text += value ? "true" : "false";
}

void JSONWriter::null() {
  separate();
  _text += "null";
}

void JSONWriter::date(Date value) {
  if (_dates == DateStrategy::iso8601) return string(iso8601String(value));
  number(value.secondsSinceReferenceDate);
}

void JSONWriter::value(JSONValue root) {
  // A document may nest deeper than a small thread's stack allows, so what is open is kept on the heap.
  struct Open {
    JSONValue::Iterator at;
    JSONValue::Iterator end;
    bool isObject;
  };
  std::vector<Open> open;
  const auto write = [&](JSONValue value) {
    switch (value.type()) {
      case JSONType::null:
        return null();
      case JSONType::boolean:
        return boolean(value.boolean());
      case JSONType::string:
        return string(value.string());
      case JSONType::number:
        separate();
        _text += value.numberText();
        return;
      case JSONType::array:
      case JSONType::object: {
        const bool isObject = value.type() == JSONType::object;
        isObject ? beginObject() : beginArray();
        open.push_back({value.begin(), value.end(), isObject});
      }
    }
  };
  write(root);
  while (!open.empty()) {
    Open& top = open.back();
    if (top.at == top.end) {
      top.isObject ? endObject() : endArray();
      open.pop_back();
      continue;
    }
    if (top.isObject) {
      key((*top.at).string());
      ++top.at;
    }
    const JSONValue next = *top.at;
    ++top.at;
    write(next);
  }
}

}  // namespace kestrom::foundation
