#pragma once

#include "Kestrom/Platform/LocationManager.hpp"

#include <utility>

namespace kestrom::tests {

/// A device whose answers the test gives by hand.
class FakeLocationManager final : public device::LocationManager {
 public:
  void setDelegate(std::weak_ptr<device::LocationManagerDelegate> delegate) override {
    _delegate = std::move(delegate);
  }
  device::LocationAuthorizationStatus authorizationStatus() const override { return status; }
  device::LocationAccuracyAuthorization accuracyAuthorization() const override { return accuracy; }
  void requestWhenInUseAuthorization() override { ++authorizationRequests; }
  void startUpdatingLocation() override { isUpdating = true; }
  void stopUpdatingLocation() override { isUpdating = false; }

  void tellStatus(device::LocationAuthorizationStatus newStatus) {
    status = newStatus;
    if (const auto delegate = _delegate.lock()) delegate->didChangeAuthorization(newStatus);
  }
  void tellLocations(const std::vector<device::Location>& locations) {
    if (const auto delegate = _delegate.lock()) delegate->didUpdateLocations(locations);
  }
  void tellFailure(device::LocationError::Code code = device::LocationError::Code::locationUnknown) {
    if (const auto delegate = _delegate.lock()) delegate->didFail({code});
  }

  device::LocationAuthorizationStatus status = device::LocationAuthorizationStatus::notDetermined;
  device::LocationAccuracyAuthorization accuracy = device::LocationAccuracyAuthorization::full;
  int authorizationRequests = 0;
  bool isUpdating = false;

 private:
  std::weak_ptr<device::LocationManagerDelegate> _delegate;
};

}  // namespace kestrom::tests
