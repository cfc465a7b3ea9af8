#include "Kestrom/Platform/NavigationController.hpp"

namespace kestrom::screens {

void NavigationController::setViewControllers(std::vector<std::shared_ptr<ViewController>> controllers, bool) {
  _viewControllers = std::move(controllers);
}

void NavigationController::setNavigationBarHidden(bool isHidden, bool) {
  _isNavigationBarHidden = isHidden;
}

}  // namespace kestrom::screens
