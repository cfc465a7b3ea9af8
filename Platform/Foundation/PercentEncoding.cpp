#include "Platform/Foundation/PercentEncoding.hpp"

#include <cstddef>

namespace kestrom::foundation {

namespace {

bool isUnreserved(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '.' ||
         c == '_' || c == '~';
}

}  // namespace

std::string percentEncoded(std::string_view text, std::string_view allowed) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(text.size());
  for (const char c : text) {
    if (isUnreserved(c) || allowed.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded += '%';
      encoded += kHex[byte >> 4];
      encoded += kHex[byte & 15];
    }
  }
  return encoded;
}

std::string percentDecoded(std::string_view text) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%') {
      decoded += static_cast<char>(digit(text[at + 1]) << 4 | digit(text[at + 2]));
      at += 2;
    } else {
      decoded += text[at];
    }
  }
  return decoded;
}

}  // namespace kestrom::foundation
