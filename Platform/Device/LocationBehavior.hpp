#pragma once

#include "Kestrom/Platform/LocationManager.hpp"

#include <variant>

namespace kestrom::device {

/// What a simulated device does when it is asked where it is.
struct LocationBehavior {
  /// The person refuses.
  struct Denied {
    friend bool operator==(const Denied&, const Denied&) = default;
  };
  struct Place {
    Location location;
    LocationAccuracyAuthorization accuracy = LocationAccuracyAuthorization::full;

    friend bool operator==(const Place&, const Place&) = default;
  };
  struct Fails {
    friend bool operator==(const Fails&, const Fails&) = default;
  };
  /// No answer comes.
  struct Never {
    friend bool operator==(const Never&, const Never&) = default;
  };

  std::variant<Denied, Place, Fails, Never> form;

  friend bool operator==(const LocationBehavior&, const LocationBehavior&) = default;
};

}  // namespace kestrom::device
