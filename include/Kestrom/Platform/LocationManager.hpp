#pragma once

#include "Kestrom/Export.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace kestrom::device {

/// A place in degrees (WGS 84).
struct Location {
  double latitude = 0;
  double longitude = 0;

  friend bool operator==(const Location&, const Location&) = default;
};

/// What the person lets the application know of where the device is.
enum class LocationAuthorizationStatus : std::uint8_t {
  notDetermined,
  /// Refused by whoever rules the device, so that the person cannot allow it.
  restricted,
  denied,
  authorizedAlways,
  authorizedWhenInUse,
};

/// With `reduced` the person has allowed a place some kilometres wide.
enum class LocationAccuracyAuthorization : std::uint8_t { full, reduced };

/// Why there is no location.
struct LocationError {
  enum class Code : std::uint8_t {
    /// The device cannot tell where it is, perhaps only for now.
    locationUnknown,
    denied,
  };

  Code code = Code::locationUnknown;

  friend bool operator==(const LocationError&, const LocationError&) = default;
};

/// Hears what a location manager has to tell: on the main queue, never inside a call of the manager.
class KESTROM_API LocationManagerDelegate {
 public:
  virtual ~LocationManagerDelegate() = default;

  virtual void didChangeAuthorization(LocationAuthorizationStatus status) = 0;
  virtual void didUpdateLocations(const std::vector<Location>& locations) = 0;
  virtual void didFail(LocationError error) = 0;
};

/// Where the device is. Used on the main queue alone.
class KESTROM_API LocationManager {
 public:
  virtual ~LocationManager() = default;

  /// There is one delegate; a later one takes its place. It is told the present authorization soon after this call, and
  /// then each change, on the main queue. The kit calls this once, on the thread that first uses it, before anything
  /// else.
  virtual void setDelegate(std::weak_ptr<LocationManagerDelegate> delegate) = 0;

  virtual LocationAuthorizationStatus authorizationStatus() const = 0;
  /// `full` on systems that make no difference.
  virtual LocationAccuracyAuthorization accuracyAuthorization() const = 0;

  /// Asks the person, if that was never done, for the permission to locate while the application is in use. The answer
  /// is a change of authorization; no answer comes when the person was asked before.
  virtual void requestWhenInUseAuthorization() = 0;

  /// From now on the delegate is told locations or failures as they come. A failure does not end it.
  virtual void startUpdatingLocation() = 0;
  /// From now on the delegate is told none.
  virtual void stopUpdatingLocation() = 0;
};

}  // namespace kestrom::device
