#include "Core/Services/Networking/REST/AddressRESTRequest.hpp"

#include <utility>

namespace kestrom::services {

namespace {

/// Points of the picture's sides.
constexpr double kMapSize = 400;

}  // namespace

std::optional<foundation::Bytes> AddressRESTRequest::body(const foundation::Clock&) const {
  foundation::JSONWriter writer;
  writer.beginObject();
  writer.key("lat");
  writer.number(_place.latitude);
  writer.key("lng");
  writer.number(_place.longitude);
  writer.key("height");
  writer.number(kMapSize);
  writer.key("width");
  writer.number(kMapSize);
  writer.endObject();
  return bytesOf(std::move(writer));
}

}  // namespace kestrom::services
