#pragma once

#include "Core/Services/Device/LocationCoordinate.hpp"
#include "Platform/Imaging/Image.hpp"

#include <optional>
#include <string>

namespace kestrom::services {

/// The place of the property as the person has confirmed it.
struct LocationData {
  /// In one line.
  std::string address;
  /// Absent when the device did not tell where it is.
  std::optional<LocationCoordinate> coordinate;
  std::optional<imaging::Image> mapImage;

  friend bool operator==(const LocationData&, const LocationData&) = default;
};

}  // namespace kestrom::services
