#pragma once

#include <cstdint>
#include <optional>
#include <variant>

namespace kestrom::models {

/// What input a bot bubble asks for.
struct ChatInputTrigger {
  struct Year {
    std::int64_t min;
    std::int64_t max;
    friend bool operator==(const Year&, const Year&) = default;
  };
  struct Number {
    std::optional<std::int64_t> min;
    std::optional<std::int64_t> max;
    friend bool operator==(const Number&, const Number&) = default;
  };
  /// Bounds of the length in user-perceived characters.
  struct Text {
    std::optional<std::int64_t> min;
    std::optional<std::int64_t> max;
    friend bool operator==(const Text&, const Text&) = default;
  };
  /// No input: the chat answers by itself and moves on.
  struct AutomaticallyContinueWithNextMessage {
    friend bool operator==(const AutomaticallyContinueWithNextMessage&,
                           const AutomaticallyContinueWithNextMessage&) = default;
  };

  std::variant<Year, Number, Text, AutomaticallyContinueWithNextMessage> form;

  friend bool operator==(const ChatInputTrigger&, const ChatInputTrigger&) = default;
};

}  // namespace kestrom::models
