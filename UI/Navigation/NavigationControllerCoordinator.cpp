#include "UI/Navigation/NavigationControllerCoordinator.hpp"

#include "UI/Scenes/Splash/SplashViewController.hpp"

namespace kestrom::ui {

void NavigationControllerCoordinator::navigate(const NavigationTransition& transition) {
  std::visit([this](const auto& form) { show(form); }, transition.form);
}

void NavigationControllerCoordinator::show(const NavigationTransition::Splash& splash) {
  _parts.diContainer->userSessionTracker().startTracking();
  _parts.rootController->setNavigationBarHidden(true, false);
  _parts.rootController->setViewControllers({std::make_shared<SplashViewController>(splash.deepLinkCredentials)},
                                            false);
}

}  // namespace kestrom::ui
