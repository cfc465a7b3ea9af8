#pragma once

#include <algorithm>
#include <string_view>

namespace kestrom::networking {

// What the grammar of HTTP (RFC 9110) says of its words, whatever the locale.

constexpr bool isTokenCharacter(char character) {
  constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";
  return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
         (character >= 'a' && character <= 'z') || kMarks.contains(character);
}

constexpr bool isToken(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, isTokenCharacter);
}

constexpr char lowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Whether two names are the same, in any case.
constexpr bool isSameName(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, lowerCase, lowerCase);
}

/// `text` without the blanks and tabs around it.
constexpr std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

}  // namespace kestrom::networking
