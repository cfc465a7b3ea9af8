#pragma once

#include "Core/Services/Device/LocationCoordinate.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <optional>

namespace kestrom::usecases {

/// Finds out where the device is, as far as its owner lets it.
class RequestPermissionAndGetCoordinatesUseCase {
 public:
  virtual ~RequestPermissionAndGetCoordinatesUseCase() = default;

  /// Asks the person at the subscription and, if that is allowed, the device, and gives one coordinate or none. Stays
  /// open as long as one of them does not answer. Main queue; may outlive the use case.
  virtual reactive::Publisher<std::optional<services::LocationCoordinate>, reactive::Never> execute() = 0;
};

}  // namespace kestrom::usecases
