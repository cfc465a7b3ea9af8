#pragma once

#include "Kestrom/Platform/LocationManager.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <optional>
#include <string>

namespace kestrom::services {

/// Where the device is, and whether that may be asked. Main queue.
class LocationService {
 public:
  struct Reading {
    device::Location location;
    /// False when the person lets only the surroundings be known.
    bool isPrecise = false;

    friend bool operator==(const Reading&, const Reading&) = default;
  };

  virtual ~LocationService() = default;

  /// Absent until the person was asked; the present value inside `sink`, then each change. Ends with the service.
  virtual reactive::Publisher<std::optional<bool>, reactive::Never> isAuthorizedPublisher() const = 0;

  /// Lets the system ask the person, if that was never done. The answer comes by `isAuthorizedPublisher`.
  virtual void requestAuthorization() = 0;

  /// Starts to look for the device at this call, and tells one reading or one failure. It may take for ever, and a
  /// later call takes the place of this one, which then stays silent: whoever asks sets a limit of his own.
  virtual reactive::Publisher<Reading, device::LocationError> location() = 0;

  virtual device::LocationAuthorizationStatus permissionStatus() const = 0;
};

}  // namespace kestrom::services

namespace kestrom::device {

std::string debugDescription(const LocationError& error);

}  // namespace kestrom::device
