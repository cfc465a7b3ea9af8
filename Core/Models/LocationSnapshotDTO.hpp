#pragma once

#include <string>
#include <vector>

namespace kestrom::models {

/// The device's position at the moment of an answer, as a GeoJSON point (RFC 7946).
struct LocationSnapshotDTO {
  /// Degrees, longitude before latitude.
  std::vector<double> coordinates;
  /// "Point" when the kit writes it.
  std::string type;

  friend bool operator==(const LocationSnapshotDTO&, const LocationSnapshotDTO&) = default;
};

}  // namespace kestrom::models
