#include "Apps/kestrom/PrintableText.hpp"

#include <array>
#include <cstddef>

namespace kestrom::app {

namespace {

/// Number of bytes of the well-formed UTF-8 sequence (RFC 3629) at the beginning of `text`; 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
  struct Row {
    std::uint8_t leadFrom, leadTo, secondFrom, secondTo;
    std::size_t length;
  };
  // The second byte's range keeps out overlong forms, surrogates and what lies beyond U+10FFFF.
  static constexpr std::array<Row, 8> kRows{{
      {0xC2, 0xDF, 0x80, 0xBF, 2},
      {0xE0, 0xE0, 0xA0, 0xBF, 3},
      {0xE1, 0xEC, 0x80, 0xBF, 3},
      {0xED, 0xED, 0x80, 0x9F, 3},
      {0xEE, 0xEF, 0x80, 0xBF, 3},
      {0xF0, 0xF0, 0x90, 0xBF, 4},
      {0xF1, 0xF3, 0x80, 0xBF, 4},
      {0xF4, 0xF4, 0x80, 0x8F, 4},
  }};
  const auto byte = [text](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
  if (byte(0) < 0x80) return 1;
  for (const Row& row : kRows) {
    if (byte(0) < row.leadFrom || byte(0) > row.leadTo) continue;
    if (text.size() < row.length || byte(1) < row.secondFrom || byte(1) > row.secondTo) return 0;
    for (std::size_t index = 2; index < row.length; ++index) {
      if ((byte(index) & 0xC0) != 0x80) return 0;
    }
    return row.length;
  }
  return 0;
}

void appendEscaped(std::string& out, std::uint8_t code) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  switch (code) {
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      out += "\\x";
      out += kDigits[code >> 4];
      out += kDigits[code & 0xF];
  }
}

}  // namespace

std::string printableText(std::string_view text, LineBreaks lineBreaks) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    const auto first = static_cast<std::uint8_t>(text.front());
    const bool isC1 = length == 2 && first == 0xC2 && static_cast<std::uint8_t>(text[1]) < 0xA0;
    if (length == 0) {
      out += "\xEF\xBF\xBD";
    } else if (isC1) {
      appendEscaped(out, static_cast<std::uint8_t>(text[1]));
    } else if (first == '\n' && lineBreaks == LineBreaks::keep) {
      out += '\n';
    } else if (first < 0x20 || first == 0x7F) {
      appendEscaped(out, first);
    } else {
      out += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

bool isUTF8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace kestrom::app
