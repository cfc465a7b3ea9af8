#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text as its readers see it. All functions take UTF-8, never fail on broken text (a broken byte counts as one
/// character of its own) and may be called from any thread.
namespace kestrom::foundation {

/// Number of user-perceived characters: extended grapheme clusters of Unicode's text segmentation (UAX #29).
std::size_t characterCount(std::string_view text);

/// The first `count` user-perceived characters, or all if there are fewer.
std::string_view firstCharacters(std::string_view text, std::size_t count);

/// The user-perceived characters in reverse order.
std::string reversedCharacters(std::string_view text);

/// Upper and lower case by Unicode's full mapping, in no particular language.
std::string uppercased(std::string_view text);
std::string lowercased(std::string_view text);

/// Without the blanks at both ends: space separators of Unicode and the tab, but no line breaks.
std::string_view trimmedBlanks(std::string_view text);

}  // namespace kestrom::foundation
