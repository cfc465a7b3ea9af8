#pragma once

#include "Core/Models/KestromObjectDetails.hpp"

namespace kestrom::usecases {

/// Tells the event feed whom its events belong to from now on. Main queue.
class SetEventUserUseCase {
 public:
  virtual ~SetEventUserUseCase() = default;

  virtual void execute(const models::KestromObjectDetails& details) = 0;
};

}  // namespace kestrom::usecases
