#pragma once

#include "Core/Services/Events/EventFeedService.hpp"
#include "Core/Services/Events/UserSessionTracker.hpp"
#include "Kestrom/Platform/Clock.hpp"
#include "Kestrom/Platform/NotificationCenter.hpp"

#include <memory>
#include <optional>

namespace kestrom::services {

/// Adds up the stretches in which the application is active while a flow is on. Listens to the application's
/// notifications from its construction on, whose poster is on the main queue.
class DefaultUserSessionTracker final : public UserSessionTracker {
 public:
  DefaultUserSessionTracker(std::shared_ptr<EventFeedService> feedService,
                            foundation::NotificationCenter& notificationCenter, const foundation::Clock& clock);

  void startTracking() override;
  void stopTracking() override;
  double activeTime() const override;

 private:
  void pause();
  void appBecomeActive();
  void closeStretch();

  /// Kept alive, and not asked.
  std::shared_ptr<EventFeedService> _feedService;
  const foundation::Clock& _clock;
  bool _isTracking = false;
  std::optional<foundation::Date> _lastActiveStartDate;
  double _elapsedTime = 0;
  foundation::NotificationCenter::Observation _didEnterBackground;
  foundation::NotificationCenter::Observation _willTerminate;
  foundation::NotificationCenter::Observation _didBecomeActive;
};

}  // namespace kestrom::services
