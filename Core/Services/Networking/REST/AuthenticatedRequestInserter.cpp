#include "Core/Services/Networking/REST/AuthenticatedRequestInserter.hpp"

#include "Platform/Reactive/Sources.hpp"

namespace kestrom::services {

reactive::Publisher<networking::URLRequest, reactive::Never> AuthenticatedRequestInserter::modified(
    networking::URLRequest request) const {
  const session::KestromUser user = _store->user();
  if (user.token) request.headers.add("authorization", "Bearer " + *user.token);
  if (user.currentKestromInfo) request.headers.add("organizationId", user.currentKestromInfo->organizationId);
  return reactive::handedOver(std::move(request));
}

}  // namespace kestrom::services
