#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::foundation::detail {

/// What the careful parser makes of a document: the words and texts of a `JSONTape`.
struct JSONTapeContent {
  std::vector<std::uint64_t> words;
  std::vector<std::uint8_t> strings;
};

/// Where and why a text is no JSON.
struct JSONFault {
  std::size_t offset = 0;
  std::string reason;
};

/// Reads a whole document (RFC 8259) byte by byte, without recursion. It takes over where the fast parser gives up:
/// that one tells no place of a fault, and it refuses legal numbers beyond its range.
std::expected<JSONTapeContent, JSONFault> parseJSONCarefully(std::string_view text, std::size_t maximumDepth);

}  // namespace kestrom::foundation::detail
