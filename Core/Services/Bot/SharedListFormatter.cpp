#include "Core/Services/Bot/SharedListFormatter.hpp"

namespace kestrom::services {

std::shared_ptr<const foundation::ListFormatter> sharedListFormatter() {
  // Never destroyed: threads may run while the process ends.
  static const auto* const kFormatter = new auto(std::make_shared<const foundation::ListFormatter>("en_US"));
  return *kFormatter;
}

}  // namespace kestrom::services
