#include "Core/Services/Events/DefaultUserSessionTracker.hpp"

#include <utility>

namespace kestrom::services {

DefaultUserSessionTracker::DefaultUserSessionTracker(std::shared_ptr<EventFeedService> feedService,
                                                     foundation::NotificationCenter& notificationCenter,
                                                     const foundation::Clock& clock)
    : _feedService(std::move(feedService)),
      _clock(clock),
      _didEnterBackground(
          notificationCenter.addObserver(foundation::kApplicationDidEnterBackground, [this] { pause(); })),
      _willTerminate(notificationCenter.addObserver(foundation::kApplicationWillTerminate, [this] { pause(); })),
      _didBecomeActive(
          notificationCenter.addObserver(foundation::kApplicationDidBecomeActive, [this] { appBecomeActive(); })) {}

void DefaultUserSessionTracker::startTracking() {
  _elapsedTime = 0;
  _isTracking = true;
  _lastActiveStartDate = _clock.now();
}

void DefaultUserSessionTracker::stopTracking() {
  _isTracking = false;
  closeStretch();
}

double DefaultUserSessionTracker::activeTime() const {
  if (!_lastActiveStartDate) return _elapsedTime;
  // The difference first: beside the seconds since 2001 a fraction of the sum would be lost.
  return _elapsedTime + (_clock.now().secondsSinceReferenceDate - _lastActiveStartDate->secondsSinceReferenceDate);
}

void DefaultUserSessionTracker::pause() {
  if (_isTracking) closeStretch();
}

/// A second activation without a pause begins the stretch anew; the time before it is not counted.
void DefaultUserSessionTracker::appBecomeActive() {
  if (_isTracking) _lastActiveStartDate = _clock.now();
}

void DefaultUserSessionTracker::closeStretch() {
  _elapsedTime = activeTime();
  _lastActiveStartDate.reset();
}

}  // namespace kestrom::services
