#pragma once

#include "Kestrom/KestromEvent.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <optional>

namespace kestrom::services {

/// The one stream of what happens in the flows of this process, for the host and for the analytics. Main queue.
class EventFeedService {
 public:
  virtual ~EventFeedService() = default;

  /// Whom the events of now belong to; absent before a case is open.
  virtual std::optional<KestromAnalyticUser> user() const = 0;
  virtual void setUser(std::optional<KestromAnalyticUser> user) = 0;

  /// Passes the event on inside the call, as it is. Nothing is kept for those who subscribe later.
  virtual void send(KestromEvent event) = 0;
  /// The events that are sent from the subscription on.
  virtual reactive::Publisher<KestromEvent, reactive::Never> eventPublisher() const = 0;
};

}  // namespace kestrom::services
