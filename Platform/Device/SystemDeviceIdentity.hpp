#pragma once

#include "Kestrom/Platform/DeviceIdentity.hpp"

namespace kestrom::device {

/// What the operating system says of the machine.
class SystemDeviceIdentity final : public DeviceIdentity {
 public:
  std::optional<std::string> hardwareIdentifier() const override;
};

}  // namespace kestrom::device
