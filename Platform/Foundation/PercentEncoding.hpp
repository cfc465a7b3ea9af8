#pragma once

#include <string>
#include <string_view>

/// Percent-encoding of URLs (RFC 3986) over the bytes of UTF-8 text. Any thread.
namespace kestrom::foundation {

/// `text` with everything escaped but letters, digits, "-._~" and the characters of `allowed`.
std::string percentEncoded(std::string_view text, std::string_view allowed);

/// The reverse. Every "%" in `text` must begin a whole escape, as is the case in the parts of a `URL`.
std::string percentDecoded(std::string_view text);

/// What a path holds unescaped, its slashes left aside.
inline constexpr std::string_view kPathSegmentCharacters = "!$&'()*+,;=:@";
inline constexpr std::string_view kPathCharacters = "!$&'()*+,;=:@/";

}  // namespace kestrom::foundation
