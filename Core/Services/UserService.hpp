#pragma once

#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <string>

namespace kestrom::services {

/// What the server is told of the person. Values and failures come on the main queue; a publisher may outlive the
/// service.
class UserService {
 public:
  virtual ~UserService() = default;

  /// Binds the signed-in person to the case.
  virtual reactive::Publisher<reactive::Nothing, RESTError> saveUserProfile(const std::string& organizationId,
                                                                            const std::string& kestromId) const = 0;

  /// The person agrees, at the subscription, to the terms at this address. Its query names them: "version" and
  /// "dateOfDocument"; what it does not tell is sent as an empty text.
  virtual reactive::Publisher<reactive::Nothing, RESTError> submitConsent(const foundation::URL& termsURL) const = 0;
};

}  // namespace kestrom::services
