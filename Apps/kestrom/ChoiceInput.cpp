#include "Apps/kestrom/ChoiceInput.hpp"

#include "Platform/Foundation/Text.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace kestrom::app {

using foundation::trimmedBlanks;

namespace {

constexpr std::string_view kBlanks = " \t";

std::optional<std::size_t> optionOfNumber(std::string_view text, std::size_t count) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || number < 1 || number > count) return {};
  return number - 1;
}

}  // namespace

std::optional<ChoiceInput> parseChoice(std::string_view text, std::span<const std::string_view> keys) {
  text = trimmedBlanks(text);
  const std::size_t blank = text.find_first_of(kBlanks);
  if (const auto option = optionOfNumber(text.substr(0, blank), keys.size())) {
    return ChoiceInput{*option, trimmedBlanks(text.substr(std::min(blank, text.size())))};
  }
  // The longest key that the text begins with: "living room" before "living".
  std::optional<ChoiceInput> best;
  for (std::size_t option = 0; option < keys.size(); ++option) {
    const std::string_view key = keys[option];
    const bool isWhole = text == key;
    const bool isFollowed =
        !key.empty() && text.size() > key.size() && text.starts_with(key) && kBlanks.contains(text[key.size()]);
    if (!isWhole && !isFollowed) continue;
    if (!best || key.size() > keys[best->option].size())
      best = ChoiceInput{option, trimmedBlanks(text.substr(key.size()))};
  }
  return best;
}

}  // namespace kestrom::app
