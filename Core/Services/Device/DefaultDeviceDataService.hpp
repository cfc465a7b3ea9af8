#pragma once

#include "Core/Services/Device/DeviceDataService.hpp"
#include "Kestrom/Platform/Bundle.hpp"
#include "Kestrom/Platform/DeviceIdentity.hpp"

namespace kestrom::services {

/// Asks anew each time.
class DefaultDeviceDataService final : public DeviceDataService {
 public:
  /// `mainBundle` is the host application's.
  DefaultDeviceDataService(const device::DeviceIdentity& identity, const foundation::Bundle& mainBundle)
      : _identity(identity), _mainBundle(mainBundle) {}

  KestromDeviceData deviceData() const override;

 private:
  const device::DeviceIdentity& _identity;
  const foundation::Bundle& _mainBundle;
};

}  // namespace kestrom::services
