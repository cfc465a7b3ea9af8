#pragma once

#include "Kestrom/Platform/AnyCancellable.hpp"

namespace kestrom::usecases {

/// Subscriptions that outlive the screen that started them. The composition root has one. Main queue.
struct LongLivingCancellables {
  reactive::Cancellables cancellables;
};

}  // namespace kestrom::usecases
