#pragma once

#include "Core/Services/Events/EventFeedService.hpp"
#include "Platform/Reactive/Subjects.hpp"

#include <utility>

namespace kestrom::services {

/// Made once by the composition root and shared by all who post or listen.
class DefaultEventFeedService final : public EventFeedService {
 public:
  std::optional<KestromAnalyticUser> user() const override { return _user; }
  void setUser(std::optional<KestromAnalyticUser> user) override { _user = std::move(user); }
  void send(KestromEvent event) override { _eventSubject.send(std::move(event)); }
  reactive::Publisher<KestromEvent, reactive::Never> eventPublisher() const override {
    return _eventSubject.publisher();
  }

 private:
  std::optional<KestromAnalyticUser> _user;
  reactive::PassthroughSubject<KestromEvent> _eventSubject;
};

}  // namespace kestrom::services
