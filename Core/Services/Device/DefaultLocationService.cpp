#include "Core/Services/Device/DefaultLocationService.hpp"

#include "Core/SDK/Logging.hpp"

#include <utility>

namespace kestrom::services {

namespace {

using Status = device::LocationAuthorizationStatus;

/// A status that later systems add counts as a refusal.
std::optional<bool> isAuthorizedBy(Status status) {
  if (status == Status::notDetermined) return std::nullopt;
  return status == Status::authorizedAlways || status == Status::authorizedWhenInUse;
}

}  // namespace

std::shared_ptr<DefaultLocationService> DefaultLocationService::make(device::LocationManager& locationManager) {
  auto made = std::make_shared<DefaultLocationService>(Private(), locationManager);
  locationManager.setDelegate(made);
  return made;
}

reactive::Publisher<std::optional<bool>, reactive::Never> DefaultLocationService::isAuthorizedPublisher() const {
  return _isAuthorized.publisher();
}

void DefaultLocationService::requestAuthorization() {
  _locationManager.requestWhenInUseAuthorization();
}

reactive::Publisher<LocationService::Reading, device::LocationError> DefaultLocationService::location() {
  _locationSubject = std::make_unique<LocationSubject>();
  auto publisher = _locationSubject->publisher();
  _locationManager.startUpdatingLocation();
  return publisher;
}

Status DefaultLocationService::permissionStatus() const {
  return _permissionStatus ? *_permissionStatus : _locationManager.authorizationStatus();
}

void DefaultLocationService::didChangeAuthorization(Status status) {
  _permissionStatus = status;
  _isAuthorized.set(isAuthorizedBy(status));
}

void DefaultLocationService::didUpdateLocations(const std::vector<device::Location>& locations) {
  if (locations.empty()) return;
  _locationManager.stopUpdatingLocation();
  const bool isPrecise = _locationManager.accuracyAuthorization() == device::LocationAccuracyAuthorization::full;
  // Whoever hears it may ask again at once, which is a request of its own.
  const auto subject = std::exchange(_locationSubject, nullptr);
  if (!subject) return;
  subject->send({locations.front(), isPrecise});
  subject->finish();
}

void DefaultLocationService::didFail(device::LocationError error) {
  session::logError(debugDescription(error), "locationManager(_:didFailWithError:)");
  if (const auto subject = std::exchange(_locationSubject, nullptr)) {
    subject->finish(reactive::Completion<device::LocationError>::failed(error));
  }
}

}  // namespace kestrom::services

namespace kestrom::device {

std::string debugDescription(const LocationError& error) {
  return error.code == LocationError::Code::denied ? "LocationError.denied" : "LocationError.locationUnknown";
}

}  // namespace kestrom::device
