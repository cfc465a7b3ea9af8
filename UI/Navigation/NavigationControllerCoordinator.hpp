#pragma once

#include "Kestrom/Platform/NavigationController.hpp"
#include "UI/Navigation/DIContainer.hpp"
#include "UI/Navigation/NavigationCoordinator.hpp"
#include "UI/Navigation/ViewPresentationType.hpp"

#include <functional>
#include <memory>
#include <utility>

namespace kestrom::ui {

/// Moves one flow on the stack of its screens.
class NavigationControllerCoordinator final : public NavigationCoordinator {
 public:
  struct Parts {
    std::shared_ptr<screens::NavigationController> rootController;
    std::shared_ptr<const DIContainer> diContainer;
    /// Runs when the flow has ended.
    std::function<void()> flowCompletion;
    ViewPresentationType presentationType = ViewPresentationType::pushed;
  };

  explicit NavigationControllerCoordinator(Parts parts) : _parts(std::move(parts)) {}

  void navigate(const NavigationTransition& transition) override;

 private:
  void show(const NavigationTransition::Splash& splash);

  Parts _parts;
};

}  // namespace kestrom::ui
