#pragma once

#include "Core/SDK/SessionStore.hpp"

#include <mutex>
#include <optional>

namespace kestrom::session {

/// The store of the process, made once by the composition root.
class SDKStore final : public SessionStore {
 public:
  KestromConfiguration configuration() const override;
  void setConfiguration(KestromConfiguration configuration) override;

  std::shared_ptr<const KestromUIConfiguration> uiConfiguration() const override;
  void setUIConfiguration(std::shared_ptr<const KestromUIConfiguration> configuration) override;

  KestromUser user() const override;
  void setUser(KestromUser user) override;
  void modifyUser(const std::function<void(KestromUser&)>& change) override;

 private:
  // A request may be built on the thread of whoever subscribes.
  mutable std::mutex _mutex;
  std::optional<KestromConfiguration> _configuration;
  std::shared_ptr<const KestromUIConfiguration> _uiConfiguration;
  KestromUser _user;
};

}  // namespace kestrom::session
