#pragma once

#include "Core/UseCases/InternalEventTrigger.hpp"

namespace kestrom::usecases {

/// The only way onto the event feed. Main queue.
class PostKestromEventUseCase {
 public:
  virtual ~PostKestromEventUseCase() = default;

  /// Sends one event, inside the call or, where a location belongs to it, at most ten seconds later; events may so
  /// overtake one another. Its active time is that of the call, its time stamp and user are those of the sending. The
  /// use case may go meanwhile.
  virtual void execute(InternalEventTrigger trigger) = 0;
};

}  // namespace kestrom::usecases
