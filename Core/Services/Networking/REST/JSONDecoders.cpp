#include "Core/Services/Networking/REST/JSONDecoders.hpp"

#include <utility>

namespace kestrom::services {

const JSONDecoder& defaultDecoder() {
  static const JSONDecoder kDecoder{.dates = JSONDecoder::Dates::dateAndTime};
  return kDecoder;
}

JSONDecoder answersDecoder(foundation::URL documentsDirectory) {
  return {.dates = JSONDecoder::Dates::answers, .documentsDirectory = std::move(documentsDirectory)};
}

}  // namespace kestrom::services
