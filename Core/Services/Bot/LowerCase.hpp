#pragma once

#include <algorithm>
#include <string_view>

namespace kestrom::services {

/// Whether `text` in lower case is `word`, a lower-case word of ASCII characters without "i" and "k": those two are the
/// only letters of ASCII that are also the lower case of other characters, so that bytes suffice for all others.
constexpr bool readsInLowerCase(std::string_view text, std::string_view word) {
  return std::ranges::equal(
      text, word, [](char a, char b) { return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b; });
}

}  // namespace kestrom::services
