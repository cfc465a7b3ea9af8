#pragma once

#include <compare>

namespace kestrom::foundation {

/// A point in time, kept as seconds since 2001-01-01T00:00:00Z, the reference date of the device's cache files.
/// Value type; any thread. Fractions of a second are kept as far as a double carries them.
struct Date {
  /// Seconds between 1970-01-01T00:00:00Z and the reference date.
  static constexpr double kSecondsFrom1970ToReference = 978307200.0;

  double secondsSinceReferenceDate = 0;

  static constexpr Date fromSecondsSince1970(double seconds) { return {seconds - kSecondsFrom1970ToReference}; }
  constexpr double secondsSince1970() const { return secondsSinceReferenceDate + kSecondsFrom1970ToReference; }

  friend constexpr bool operator==(const Date&, const Date&) = default;
  friend constexpr auto operator<=>(const Date&, const Date&) = default;
};

}  // namespace kestrom::foundation
