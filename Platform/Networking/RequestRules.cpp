#include "Platform/Networking/RequestRules.hpp"

#include "Platform/Networking/HTTPText.hpp"

#include <algorithm>
#include <string_view>

namespace kestrom::networking {

namespace {

/// A value with a line break would add headers of its own.
bool isHeaderValue(std::string_view text) {
  return std::ranges::none_of(text, [](char character) {
    const auto code = static_cast<unsigned char>(character);
    return (code < 0x20 && character != '\t') || code == 0x7f;
  });
}

std::string_view authorityOf(std::string_view url) {
  const std::size_t start = url.find("//");
  if (start == std::string_view::npos) return {};
  return url.substr(start + 2, url.find_first_of("/?#", start + 2) - start - 2);
}

}  // namespace

std::optional<URLError> faultOf(const URLRequest& request) {
  using enum URLError::Code;
  const std::string_view authority = authorityOf(request.url.absoluteString());
  if (!isSameName(request.url.scheme(), "https") || authority.empty()) {
    return URLError{unsupportedURL, "The URL is no https URL"};
  }
  // They would go out as a sign-in that the request's headers do not show.
  if (authority.contains('@')) return URLError{unsupportedURL, "The URL holds a user name"};
  if (!isToken(request.method)) return URLError{invalidRequest, "The method is no word"};
  for (const HTTPHeader& header : request.headers) {
    if (!isToken(header.name)) return URLError{invalidRequest, "The name of a header is no word"};
    if (!isHeaderValue(header.value)) return URLError{invalidRequest, "The value of a header has a control character"};
  }
  return std::nullopt;
}

}  // namespace kestrom::networking
