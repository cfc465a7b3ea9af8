#pragma once

#include "Core/Services/Device/LocationService.hpp"
#include "Platform/Reactive/Subjects.hpp"

#include <memory>
#include <vector>

namespace kestrom::services {

/// The delegate of its location manager, for as long as it lives. Made once by the composition root: there is one
/// request at a time, whoever asks.
class DefaultLocationService final : public LocationService, public device::LocationManagerDelegate {
  struct Private {
    explicit Private() = default;
  };

 public:
  static std::shared_ptr<DefaultLocationService> make(device::LocationManager& locationManager);
  DefaultLocationService(Private, device::LocationManager& locationManager) : _locationManager(locationManager) {}

  reactive::Publisher<std::optional<bool>, reactive::Never> isAuthorizedPublisher() const override;
  void requestAuthorization() override;
  reactive::Publisher<Reading, device::LocationError> location() override;
  device::LocationAuthorizationStatus permissionStatus() const override;

  void didChangeAuthorization(device::LocationAuthorizationStatus status) override;
  void didUpdateLocations(const std::vector<device::Location>& locations) override;
  void didFail(device::LocationError error) override;

 private:
  using LocationSubject = reactive::PassthroughSubject<Reading, device::LocationError>;

  device::LocationManager& _locationManager;
  reactive::Published<std::optional<bool>> _isAuthorized{std::nullopt};
  /// Absent until the manager has told it.
  std::optional<device::LocationAuthorizationStatus> _permissionStatus;
  /// The request under way; null when there is none.
  std::unique_ptr<LocationSubject> _locationSubject;
};

}  // namespace kestrom::services
