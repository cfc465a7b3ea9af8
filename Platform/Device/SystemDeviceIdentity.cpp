#include "Platform/Device/SystemDeviceIdentity.hpp"

#include <sys/utsname.h>

namespace kestrom::device {

std::optional<std::string> SystemDeviceIdentity::hardwareIdentifier() const {
  utsname system{};
  if (uname(&system) != 0) return std::nullopt;
  return system.machine;
}

}  // namespace kestrom::device
