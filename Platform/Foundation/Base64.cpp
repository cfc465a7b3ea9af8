#include "Platform/Foundation/Base64.hpp"

#include <algorithm>
#include <array>

namespace kestrom::foundation {

namespace {

// A codec of our own: the strict one that this needs is part of no library's documented interface among those in use.
constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kInvalid = 64;

constexpr std::array<std::uint8_t, 256> kValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kInvalid);
  for (std::uint8_t value = 0; value < kAlphabet.size(); ++value) {
    values[static_cast<std::uint8_t>(kAlphabet[value])] = value;
  }
  return values;
}();

}  // namespace

std::optional<Bytes> decodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  Bytes bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : text.substr(0, text.size() - padding)) {
    const std::uint8_t value = kValues[static_cast<std::uint8_t>(c)];
    if (value == kInvalid) return std::nullopt;
    bits = bits << 6 | value;
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes.push_back(static_cast<std::uint8_t>(bits >> count));
    }
  }
  return bytes;
}

std::string encodeBase64(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t present = std::min<std::size_t>(3, bytes.size() - at);
    std::uint32_t bits = 0;
    for (std::size_t index = 0; index < 3; ++index) bits = bits << 8 | (index < present ? bytes[at + index] : 0);
    for (std::size_t index = 0; index < 4; ++index) {
      text += index <= present ? kAlphabet[bits >> (18 - 6 * index) & 63] : '=';
    }
  }
  return text;
}

}  // namespace kestrom::foundation
