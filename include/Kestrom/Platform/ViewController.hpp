#pragma once

#include "Kestrom/Export.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace kestrom::screens {

/// How much of what lies below a presented screen covers.
enum class ModalPresentationStyle : std::uint8_t { fullScreen };

/// How a presented screen comes and goes.
enum class ModalTransitionStyle : std::uint8_t { coverVertical };

/// A screen: what of it is no picture. A host shows the kit's flow over one of its own. Main thread only.
class KESTROM_API ViewController {
 public:
  ViewController() = default;
  virtual ~ViewController() = default;
  ViewController(const ViewController&) = delete;
  ViewController& operator=(const ViewController&) = delete;

  /// Shows `controller` over this screen and keeps it until another takes its place. `completion`, which may be empty,
  /// runs when the screen is there. A port for a device overrides this; here the screen is there at once.
  virtual void present(std::shared_ptr<ViewController> controller, bool isAnimated,
                       const std::function<void()>& completion);

  /// The screen over this one; null when there is none.
  const std::shared_ptr<ViewController>& presentedViewController() const { return _presented; }

  ModalPresentationStyle modalPresentationStyle = ModalPresentationStyle::fullScreen;
  ModalTransitionStyle modalTransitionStyle = ModalTransitionStyle::coverVertical;

 private:
  std::shared_ptr<ViewController> _presented;
};

}  // namespace kestrom::screens
