#include "Core/Services/DefaultAuthenticationService.hpp"

#include "Core/Services/Networking/REST/AuthRESTRequest.hpp"

namespace kestrom::services {

reactive::Publisher<models::MobileLoginResponseBody, RESTError> DefaultAuthenticationService::login(
    models::MobileLoginRequestBody codes) const {
  return _restService->decoded<models::MobileLoginResponseBody>(AuthRESTRequest::mobileLogin(std::move(codes)),
                                                                defaultDecoder());
}

}  // namespace kestrom::services
