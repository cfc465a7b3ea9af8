#pragma once

#include "Core/Models/StatusCheckResponseBody.hpp"
#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <string>

namespace kestrom::services {

/// What can be asked of a case. Values and failures come on the main queue; a publisher may outlive the service.
class KestromObjectService {
 public:
  virtual ~KestromObjectService() = default;

  /// The state of the case that the two codes open. Needs no sign-in.
  virtual reactive::Publisher<models::StatusCheckResponseBody, RESTError> statusCheck(
      const std::string& zipCode, const std::string& accessCode) const = 0;

  /// Hands the finished case in.
  virtual reactive::Publisher<reactive::Nothing, RESTError> submit(const std::string& kestromID) const = 0;
};

}  // namespace kestrom::services
