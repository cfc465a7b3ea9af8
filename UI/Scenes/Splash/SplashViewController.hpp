#pragma once

#include "Core/SDK/KestromDeepLinkCredentials.hpp"
#include "Kestrom/Platform/ViewController.hpp"

#include <optional>
#include <utility>

namespace kestrom::ui {

/// The first screen of a flow, which waits for the branding.
class SplashViewController final : public screens::ViewController {
 public:
  explicit SplashViewController(std::optional<session::KestromDeepLinkCredentials> deepLinkCredentials)
      : _deepLinkCredentials(std::move(deepLinkCredentials)) {}

  const std::optional<session::KestromDeepLinkCredentials>& deepLinkCredentials() const { return _deepLinkCredentials; }

 private:
  std::optional<session::KestromDeepLinkCredentials> _deepLinkCredentials;
};

}  // namespace kestrom::ui
