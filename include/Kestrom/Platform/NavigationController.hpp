#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/ViewController.hpp"

#include <memory>
#include <utility>
#include <vector>

namespace kestrom::screens {

/// A stack of screens under a bar. Main thread only.
class KESTROM_API NavigationController : public ViewController {
 public:
  const std::vector<std::shared_ptr<ViewController>>& viewControllers() const { return _viewControllers; }
  /// Makes these the whole stack, the last one on top.
  virtual void setViewControllers(std::vector<std::shared_ptr<ViewController>> controllers, bool isAnimated);

  bool isNavigationBarHidden() const { return _isNavigationBarHidden; }
  virtual void setNavigationBarHidden(bool isHidden, bool isAnimated);

 private:
  std::vector<std::shared_ptr<ViewController>> _viewControllers;
  bool _isNavigationBarHidden = false;
};

}  // namespace kestrom::screens
