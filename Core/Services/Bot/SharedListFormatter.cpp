#include "Core/Services/Bot/SharedListFormatter.hpp"

namespace kestrom::services {

std::shared_ptr<const foundation::ListFormatter> sharedListFormatter() {
  static const auto kFormatter = std::make_shared<const foundation::ListFormatter>("en_US");
  return kFormatter;
}

}  // namespace kestrom::services
