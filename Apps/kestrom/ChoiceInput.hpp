#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrom::app {

/// A choice as it was typed.
struct ChoiceInput {
  /// Index of the option.
  std::size_t option;
  /// What follows the choice and a blank: the path of a capture, an address.
  std::string_view rest;

  friend bool operator==(const ChoiceInput&, const ChoiceInput&) = default;
};

/// Reads an option's number, counted from 1, or its key, and what follows it. Where a text could be both it is the
/// number; a key may hold blanks. Absent when no option is meant. `keys` are those of the options, in order.
std::optional<ChoiceInput> parseChoice(std::string_view text, std::span<const std::string_view> keys);

}  // namespace kestrom::app
