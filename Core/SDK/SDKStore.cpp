#include "Core/SDK/SDKStore.hpp"

#include "Platform/Foundation/FatalError.hpp"

#include <utility>

namespace kestrom::session {

KestromConfiguration SDKStore::configuration() const {
  const std::lock_guard lock(_mutex);
  if (!_configuration) {
    foundation::fatalError(
        "Kestrom configuration missing. Remember to set it up before you start to interacting with the SDK");
  }
  return *_configuration;
}

void SDKStore::setConfiguration(KestromConfiguration configuration) {
  const std::lock_guard lock(_mutex);
  _configuration = std::move(configuration);
}

std::shared_ptr<const KestromUIConfiguration> SDKStore::uiConfiguration() const {
  const std::lock_guard lock(_mutex);
  if (!_uiConfiguration) foundation::fatalError("Kestrom UI configuration missing.");
  return _uiConfiguration;
}

void SDKStore::setUIConfiguration(std::shared_ptr<const KestromUIConfiguration> configuration) {
  const std::lock_guard lock(_mutex);
  _uiConfiguration = std::move(configuration);
}

KestromUser SDKStore::user() const {
  const std::lock_guard lock(_mutex);
  return _user;
}

void SDKStore::setUser(KestromUser user) {
  const std::lock_guard lock(_mutex);
  _user = std::move(user);
}

void SDKStore::modifyUser(const std::function<void(KestromUser&)>& change) {
  const std::lock_guard lock(_mutex);
  change(_user);
}

}  // namespace kestrom::session
