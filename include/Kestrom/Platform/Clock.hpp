#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/Date.hpp"

#include <chrono>

namespace kestrom::foundation {

/// Where the present comes from, so that a test can tell it. Any thread.
class KESTROM_API Clock {
 public:
  virtual ~Clock() = default;

  virtual Date now() const = 0;
};

/// The device's clock. It follows the user's settings, so that it can jump, also backwards.
class KESTROM_API SystemClock final : public Clock {
 public:
  Date now() const override {
    const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromSecondsSince1970(since1970.count());
  }
};

}  // namespace kestrom::foundation
