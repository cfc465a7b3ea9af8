#pragma once

#include "Kestrom/Platform/LocationManager.hpp"
#include "Kestrom/Platform/Scheduler.hpp"
#include "Platform/Device/LocationBehavior.hpp"

namespace kestrom::device {

/// The location of a machine that has none of its own: the host says what becomes of a request, and may say otherwise
/// at any time. The person has always been asked before, so the permission is either given or refused. Owned by the
/// host's platform.
class SimulatedLocationManager final : public LocationManager {
 public:
  /// The permission is refused with `Denied` and given with everything else. The delegate is called on `mainQueue`.
  SimulatedLocationManager(LocationBehavior behavior, std::shared_ptr<reactive::Scheduler> mainQueue);

  /// What happens to updates that are started from now on; one that waits without an answer goes on waiting. `Denied`
  /// and a place change the permission too.
  void setBehavior(LocationBehavior behavior);

  void setDelegate(std::weak_ptr<LocationManagerDelegate> delegate) override;
  LocationAuthorizationStatus authorizationStatus() const override { return _status; }
  LocationAccuracyAuthorization accuracyAuthorization() const override;
  void requestWhenInUseAuthorization() override {}
  /// Gives one answer.
  void startUpdatingLocation() override;
  void stopUpdatingLocation() override { _update.cancel(); }

 private:
  template <class Tell>
  reactive::AnyCancellable tellSoon(Tell tell);
  void tellAuthorizationSoon();

  LocationBehavior _behavior;
  std::shared_ptr<reactive::Scheduler> _mainQueue;
  LocationAuthorizationStatus _status;
  std::weak_ptr<LocationManagerDelegate> _delegate;
  reactive::AnyCancellable _authorizationChange;
  reactive::AnyCancellable _update;
};

}  // namespace kestrom::device
