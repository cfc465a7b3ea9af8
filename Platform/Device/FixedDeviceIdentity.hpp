#pragma once

#include "Kestrom/Platform/DeviceIdentity.hpp"

#include <utility>

namespace kestrom::device {

/// An identifier that a host hands over, or none.
class FixedDeviceIdentity final : public DeviceIdentity {
 public:
  explicit FixedDeviceIdentity(std::optional<std::string> identifier) : _identifier(std::move(identifier)) {}

  std::optional<std::string> hardwareIdentifier() const override { return _identifier; }

 private:
  std::optional<std::string> _identifier;
};

}  // namespace kestrom::device
