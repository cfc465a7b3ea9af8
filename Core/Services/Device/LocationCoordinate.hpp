#pragma once

namespace kestrom::services {

/// A place in degrees (WGS 84).
struct LocationCoordinate {
  double lat = 0;
  double lng = 0;
  /// False when the person lets only the surroundings be known.
  bool isPrecise = false;

  friend bool operator==(const LocationCoordinate&, const LocationCoordinate&) = default;
};

}  // namespace kestrom::services
