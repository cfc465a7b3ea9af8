#pragma once

#include "Platform/Reactive/Publisher.hpp"

namespace kestrom::usecases {

/// Asks whether the kit may look where the device is.
class RequestLocationPermissionUseCase {
 public:
  virtual ~RequestLocationPermissionUseCase() = default;

  /// Asks the person at the subscription and gives the one answer, inside `sink` when it is known already. Stays open
  /// as long as the person does not answer. Main queue; may outlive the use case.
  virtual reactive::Publisher<bool, reactive::Never> execute() = 0;
};

}  // namespace kestrom::usecases
