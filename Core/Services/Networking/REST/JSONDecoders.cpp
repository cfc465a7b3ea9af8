#include "Core/Services/Networking/REST/JSONDecoders.hpp"

#include <utility>

namespace kestrom::services {

const JSONDecoder& defaultDecoder() {
  // Never destroyed: threads may run while the process ends.
  static const auto* const kDecoder = new JSONDecoder{.dates = JSONDecoder::Dates::dateAndTime};
  return *kDecoder;
}

JSONDecoder answersDecoder(foundation::URL documentsDirectory) {
  return {.dates = JSONDecoder::Dates::answers, .documentsDirectory = std::move(documentsDirectory)};
}

}  // namespace kestrom::services
