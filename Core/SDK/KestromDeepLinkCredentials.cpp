#include "Core/SDK/KestromDeepLinkCredentials.hpp"

#include "Core/SDK/Logging.hpp"
#include "Platform/Foundation/URLComponents.hpp"

#include <map>

namespace kestrom::session {

std::optional<KestromDeepLinkCredentials> KestromDeepLinkCredentials::parse(const foundation::URL& link,
                                                                            bool shouldSkipLogin) {
  const auto items = foundation::URLComponents(link).queryItems();
  if (!items) {
    logInfo("URL was invalid or did not have query items");
    return std::nullopt;
  }
  std::map<std::string, std::string> values;
  for (const foundation::URLQueryItem& item : *items) {
    if (item.value) {
      values[item.name] = *item.value;
    } else {
      values.erase(item.name);
    }
  }
  const auto zipCode = values.find("kestromZipCode");
  const auto accessCode = values.find("kestromAccessCode");
  if (zipCode == values.end() || accessCode == values.end()) {
    logInfo("Invalid Kestrom deeplinking parameters");
    return std::nullopt;
  }
  return KestromDeepLinkCredentials{accessCode->second, zipCode->second, shouldSkipLogin};
}

}  // namespace kestrom::session
