#include "Core/Services/Networking/REST/APIHosts.hpp"

namespace kestrom::services {

std::string_view apiHost(KestromEnvironment environment) {
  switch (environment) {
    case KestromEnvironment::staging:
      return KESTROM_STAGING_API_HOST;
    case KestromEnvironment::sandbox:
      return KESTROM_SANDBOX_API_HOST;
    case KestromEnvironment::production:
      break;
  }
  return KESTROM_PRODUCTION_API_HOST;
}

}  // namespace kestrom::services
