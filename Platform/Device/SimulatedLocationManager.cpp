#include "Platform/Device/SimulatedLocationManager.hpp"

#include <utility>

namespace kestrom::device {

using Status = LocationAuthorizationStatus;

SimulatedLocationManager::SimulatedLocationManager(LocationBehavior behavior,
                                                   std::shared_ptr<reactive::Scheduler> mainQueue)
    : _behavior(behavior),
      _mainQueue(std::move(mainQueue)),
      _status(std::holds_alternative<LocationBehavior::Denied>(_behavior.form) ? Status::denied
                                                                               : Status::authorizedWhenInUse) {}

void SimulatedLocationManager::setBehavior(LocationBehavior behavior) {
  _behavior = behavior;
  Status status = _status;
  if (std::holds_alternative<LocationBehavior::Denied>(_behavior.form)) status = Status::denied;
  if (std::holds_alternative<LocationBehavior::Place>(_behavior.form)) status = Status::authorizedWhenInUse;
  if (std::exchange(_status, status) != status) tellAuthorizationSoon();
}

void SimulatedLocationManager::setDelegate(std::weak_ptr<LocationManagerDelegate> delegate) {
  _delegate = std::move(delegate);
  tellAuthorizationSoon();
}

LocationAccuracyAuthorization SimulatedLocationManager::accuracyAuthorization() const {
  const auto* place = std::get_if<LocationBehavior::Place>(&_behavior.form);
  return place ? place->accuracy : LocationAccuracyAuthorization::full;
}

void SimulatedLocationManager::startUpdatingLocation() {
  stopUpdatingLocation();
  if (std::holds_alternative<LocationBehavior::Never>(_behavior.form)) return;
  if (const auto* place = std::get_if<LocationBehavior::Place>(&_behavior.form)) {
    _update = tellSoon([location = place->location](auto& delegate) { delegate.didUpdateLocations({location}); });
    return;
  }
  const auto code = _status == Status::denied ? LocationError::Code::denied : LocationError::Code::locationUnknown;
  _update = tellSoon([code](auto& delegate) { delegate.didFail({code}); });
}

/// What the delegate does with the call may replace the token, even end this object, so nothing of it is used after.
template <class Tell>
reactive::AnyCancellable SimulatedLocationManager::tellSoon(Tell tell) {
  return _mainQueue->scheduleAfter(reactive::Duration(0), [this, tell = std::move(tell)] {
    if (const auto delegate = _delegate.lock()) tell(*delegate);
  });
}

void SimulatedLocationManager::tellAuthorizationSoon() {
  _authorizationChange = tellSoon([this](auto& delegate) { delegate.didChangeAuthorization(_status); });
}

}  // namespace kestrom::device
