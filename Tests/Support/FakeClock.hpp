#pragma once

#include "Kestrom/Platform/Clock.hpp"

namespace kestrom::tests {

/// A clock that stands still until it is told.
class FakeClock final : public foundation::Clock {
 public:
  explicit FakeClock(double secondsSince1970 = 1'700'000'000) { set(secondsSince1970); }

  foundation::Date now() const override { return _now; }
  void set(double secondsSince1970) { _now = foundation::Date::fromSecondsSince1970(secondsSince1970); }
  void advance(double seconds) { _now.secondsSinceReferenceDate += seconds; }

 private:
  foundation::Date _now;
};

}  // namespace kestrom::tests
