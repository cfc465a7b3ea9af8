#include "Core/Services/Networking/REST/StandardRequestInserter.hpp"

#include "Platform/Reactive/Sources.hpp"

namespace kestrom::services {

reactive::Publisher<networking::URLRequest, reactive::Never> StandardRequestInserter::modified(
    networking::URLRequest request) const {
  request.headers.add("version", "3");
  request.headers.add("sdk-version", _sdkBundle->infoValue("CFBundleShortVersionString").value_or("Unknown"));
  return reactive::handedOver(std::move(request));
}

}  // namespace kestrom::services
