#pragma once

#include <string>

namespace kestrom::sandbox {

/// Degrees.
struct Position {
  double latitude = 0;
  double longitude = 0;
};

/// The JSON of the address of the known place that is nearest to a position, with a picture of a map.
std::string addressNear(Position position);

}  // namespace kestrom::sandbox
