#pragma once

#include "Kestrom/Platform/Bytes.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrom::foundation {

/// Bytes of a base64 text (RFC 4648, standard alphabet). Absent for a character outside the alphabet, blanks included,
/// and for a length or padding that is no whole encoding. The empty text gives no bytes.
std::optional<Bytes> decodeBase64(std::string_view text);

/// The base64 text of bytes, padded.
std::string encodeBase64(std::span<const std::uint8_t> bytes);

}  // namespace kestrom::foundation
