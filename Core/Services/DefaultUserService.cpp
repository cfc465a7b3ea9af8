#include "Core/Services/DefaultUserService.hpp"

#include "Core/Services/Networking/REST/UserRESTRequest.hpp"
#include "Platform/Foundation/URLComponents.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

namespace kestrom::services {

using foundation::URLQueryItem;
using reactive::Nothing;
using reactive::Publisher;

namespace {

/// Of several items of one name the first counts, even without a value.
std::string firstValue(const std::vector<URLQueryItem>& items, std::string_view name) {
  const auto item = std::ranges::find(items, name, &URLQueryItem::name);
  return item == items.end() ? "" : item->value.value_or("");
}

}  // namespace

Publisher<Nothing, RESTError> DefaultUserService::saveUserProfile(const std::string& organizationId,
                                                                  const std::string& kestromId) const {
  return _restService->perform(UserRESTRequest::saveUserProfile(organizationId, kestromId), defaultDecoder());
}

Publisher<Nothing, RESTError> DefaultUserService::submitConsent(const foundation::URL& termsURL) const {
  const auto items = foundation::URLComponents(termsURL).queryItems().value_or(std::vector<URLQueryItem>());
  return _restService->perform(
      UserRESTRequest::submitUserConstent(firstValue(items, "version"), firstValue(items, "dateOfDocument")),
      defaultDecoder());
}

}  // namespace kestrom::services
