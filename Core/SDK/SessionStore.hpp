#pragma once

#include "Core/SDK/KestromUser.hpp"
#include "Kestrom/KestromConfiguration.hpp"

#include <functional>
#include <memory>

namespace kestrom::configuration {
struct KestromUIConfiguration;
}

namespace kestrom::session {

using configuration::KestromUIConfiguration;

/// Who uses the kit, and how it looks: the host's configuration, the branding in force, the signed-in user. Nothing in
/// it reaches the disk. Values are read and replaced whole, from any thread.
class SessionStore {
 public:
  virtual ~SessionStore() = default;

  /// Ends the process when none was set: the host forgot it.
  virtual KestromConfiguration configuration() const = 0;
  virtual void setConfiguration(KestromConfiguration configuration) = 0;

  /// Ends the process when none was set: a screen was made before the branding was there.
  virtual std::shared_ptr<const KestromUIConfiguration> uiConfiguration() const = 0;
  virtual void setUIConfiguration(std::shared_ptr<const KestromUIConfiguration> configuration) = 0;

  /// All fields empty before a login.
  virtual KestromUser user() const = 0;
  virtual void setUser(KestromUser user) = 0;
  /// Changes fields in place; nobody sees the record half changed. `change` must not use the store.
  virtual void modifyUser(const std::function<void(KestromUser&)>& change) = 0;
};

}  // namespace kestrom::session
