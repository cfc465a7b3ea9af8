#pragma once

#include "Kestrom/Export.hpp"

#include <optional>
#include <string>

namespace kestrom::device {

/// What kind of device this is. Any thread.
class KESTROM_API DeviceIdentity {
 public:
  virtual ~DeviceIdentity() = default;

  /// The maker's identifier of the hardware, in UTF-8, not the name under which it is sold. Absent when the system
  /// tells none.
  virtual std::optional<std::string> hardwareIdentifier() const = 0;
};

}  // namespace kestrom::device
