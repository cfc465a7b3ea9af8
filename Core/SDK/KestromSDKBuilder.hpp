#pragma once

#include "Kestrom/KestromSDK.hpp"
#include "UI/Navigation/DIContainer.hpp"
#include "UI/Navigation/NavigationControllerCoordinator.hpp"

#include <functional>
#include <memory>

namespace kestrom::sdk {

/// Makes objects of the kit beside the shared one: on a platform of the caller's, or on a container of its own.
class KestromSDKBuilder {
 public:
  using MakeCoordinator =
      std::function<std::shared_ptr<ui::NavigationCoordinator>(ui::NavigationControllerCoordinator::Parts)>;

  /// On `platform`, whose empty entries are filled.
  static std::unique_ptr<KestromSDK> make(Platform platform);

  /// On a container; `platform` must be whole.
  static std::unique_ptr<KestromSDK> make(Platform platform, std::shared_ptr<const ui::DIContainer> container,
                                          MakeCoordinator makeCoordinator);

  /// The coordinator of the flow that was presented last; null when none is shown.
  static std::shared_ptr<ui::NavigationCoordinator> currentCoordinator(const KestromSDK& sdk);
};

}  // namespace kestrom::sdk
