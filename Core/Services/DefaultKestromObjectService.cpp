#include "Core/Services/DefaultKestromObjectService.hpp"

#include "Core/Services/Networking/REST/JSONDecoders.hpp"
#include "Core/Services/Networking/REST/KestromObjectRESTRequest.hpp"

namespace kestrom::services {

reactive::Publisher<models::StatusCheckResponseBody, RESTError> DefaultKestromObjectService::statusCheck(
    const std::string& zipCode, const std::string& accessCode) const {
  return _restService->decoded<models::StatusCheckResponseBody>(
      KestromObjectRESTRequest::statusCheck(zipCode, accessCode), defaultDecoder());
}

reactive::Publisher<reactive::Nothing, RESTError> DefaultKestromObjectService::submit(
    const std::string& kestromID) const {
  return _restService->perform(KestromObjectRESTRequest::submit(kestromID), defaultDecoder());
}

}  // namespace kestrom::services
