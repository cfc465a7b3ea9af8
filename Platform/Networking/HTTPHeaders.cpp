#include "Kestrom/Platform/HTTPHeaders.hpp"

#include "Platform/Networking/HTTPText.hpp"

#include <algorithm>

namespace kestrom::networking {

void HTTPHeaders::set(std::string_view name, std::string_view value) {
  if (HTTPHeader* header = find(name)) {
    header->value = value;
  } else {
    _headers.emplace_back(std::string(name), std::string(value));
  }
}

void HTTPHeaders::add(std::string_view name, std::string_view value) {
  if (HTTPHeader* header = find(name)) {
    header->value.append(",").append(value);
  } else {
    _headers.emplace_back(std::string(name), std::string(value));
  }
}

std::optional<std::string> HTTPHeaders::value(std::string_view name) const {
  const auto found =
      std::ranges::find_if(_headers, [&](const HTTPHeader& header) { return isSameName(header.name, name); });
  return found == _headers.end() ? std::nullopt : std::optional(found->value);
}

HTTPHeader* HTTPHeaders::find(std::string_view name) {
  const auto found =
      std::ranges::find_if(_headers, [&](const HTTPHeader& header) { return isSameName(header.name, name); });
  return found == _headers.end() ? nullptr : &*found;
}

}  // namespace kestrom::networking
