#include "Kestrom/Platform/ViewController.hpp"

#include <utility>

namespace kestrom::screens {

void ViewController::present(std::shared_ptr<ViewController> controller, bool,
                             const std::function<void()>& completion) {
  _presented = std::move(controller);
  if (completion) completion();
}

}  // namespace kestrom::screens
