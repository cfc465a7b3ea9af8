#pragma once

#include "Kestrom/KestromEvent.hpp"

namespace kestrom::services {

/// What the device and the host application are.
class DeviceDataService {
 public:
  virtual ~DeviceDataService() = default;

  virtual KestromDeviceData deviceData() const = 0;
};

}  // namespace kestrom::services
