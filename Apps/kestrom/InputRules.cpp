#include "Apps/kestrom/InputRules.hpp"

#include "Platform/Foundation/Text.hpp"

#include <charconv>
#include <system_error>

namespace kestrom::app {

namespace {

constexpr std::int64_t kDefaultTextLimit = 100;
constexpr std::int64_t kYearLimit = 4;

std::int64_t length(std::string_view text) {
  return static_cast<std::int64_t>(foundation::characterCount(text));
}

/// Decimal digits behind an optional sign.
std::optional<std::int64_t> wholeNumber(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return {};
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return {};
  return value;
}

bool isInside(std::optional<std::int64_t> value, const InputBounds& bounds) {
  return value && (!bounds.min || *value >= *bounds.min) && (!bounds.max || *value <= *bounds.max);
}

std::string between(std::string_view wanted, std::int64_t min, std::int64_t max) {
  return std::string(wanted) + " between " + std::to_string(min) + " and " + std::to_string(max);
}

}  // namespace

std::optional<std::string> textRefusal(std::string_view text, const InputBounds& bounds) {
  const InputBounds held{bounds.min, bounds.max ? bounds.max : std::optional(kDefaultTextLimit)};
  if (isInside(length(text), held)) return {};
  if (bounds.min && bounds.max) return between("Please enter text", *bounds.min, *bounds.max) + " characters";
  if (bounds.min && length(text) < *bounds.min) {
    return "Please enter text of at least " + std::to_string(*bounds.min) + " characters";
  }
  return "Please enter text of at most " + std::to_string(*held.max) + " characters";
}

std::optional<std::string> numberRefusal(std::string_view text, const InputBounds& bounds) {
  if (!bounds.min && !bounds.max) return {};
  if (isInside(wholeNumber(text), bounds)) return {};
  if (bounds.min && bounds.max) return between("Enter a number", *bounds.min, *bounds.max);
  if (bounds.min) return "Enter a number of at least " + std::to_string(*bounds.min);
  return "Enter a number of at most " + std::to_string(*bounds.max);
}

std::optional<std::string> yearRefusal(std::string_view text, const InputBounds& bounds) {
  if (length(text) <= kYearLimit && isInside(wholeNumber(text), bounds)) return {};
  return between("Enter a year", bounds.min.value(), bounds.max.value());
}

}  // namespace kestrom::app
