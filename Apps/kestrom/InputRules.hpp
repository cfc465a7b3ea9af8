#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::app {

/// Bounds of an input, both included; an absent one does not bound.
struct InputBounds {
  std::optional<std::int64_t> min;
  std::optional<std::int64_t> max;

  /// True when no input fits. Nothing but a faulty template has such bounds.
  bool areInverted() const { return min && max && *min > *max; }
};

/// Why the chat would not take a typed input, in its words; absent when it takes it. The bounds must not be inverted.

/// Bounds count user-perceived characters. Without an upper bound the chat's field holds 100 of them.
std::optional<std::string> textRefusal(std::string_view text, const InputBounds& bounds);

/// With a bound only whole numbers of 64 bits in decimal digits are taken; without any, every text is.
std::optional<std::string> numberRefusal(std::string_view text, const InputBounds& bounds);

/// As a number; a year always has both bounds, and the chat's field holds four characters.
std::optional<std::string> yearRefusal(std::string_view text, const InputBounds& bounds);

}  // namespace kestrom::app
