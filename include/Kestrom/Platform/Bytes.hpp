#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace kestrom::foundation {

/// Bytes of no known encoding.
using Bytes = std::vector<std::uint8_t>;

/// The bytes of a text, and bytes as text; what they view must outlive them.
inline std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}
inline std::string_view textOf(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace kestrom::foundation
