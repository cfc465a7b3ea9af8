#include "Core/Services/Device/DefaultDeviceDataService.hpp"

namespace kestrom::services {

KestromDeviceData DefaultDeviceDataService::deviceData() const {
  return {.phoneModel = _identity.hardwareIdentifier(),
          .appVersion = _mainBundle.infoValue("CFBundleShortVersionString"),
          .appName = _mainBundle.infoValue("CFBundleName")};
}

}  // namespace kestrom::services
