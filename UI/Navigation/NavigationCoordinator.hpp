#pragma once

#include "UI/Navigation/NavigationTransition.hpp"

namespace kestrom::ui {

/// Moves a flow from screen to screen. Main thread only.
class NavigationCoordinator {
 public:
  virtual ~NavigationCoordinator() = default;

  virtual void navigate(const NavigationTransition& transition) = 0;
};

}  // namespace kestrom::ui
