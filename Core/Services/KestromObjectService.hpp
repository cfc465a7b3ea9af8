#pragma once

#include "Core/Models/KestromObjectDetails.hpp"
#include "Core/Models/StatusCheckResponseBody.hpp"
#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <string>

namespace kestrom::services {

/// What can be asked of a case. Values and failures come on the main queue; a publisher may outlive the service.
class KestromObjectService {
 public:
  virtual ~KestromObjectService() = default;

  /// The case with its template. What the device kept of a case that the server still sees as merely invited is
  /// forgotten before its value comes.
  ///
  /// A failure to load or to read the case itself is a `customError` that holds it, a missing connection too, unless it
  /// is `decoding`; one of the template is as it is.
  virtual reactive::Publisher<models::KestromObjectDetails, RESTError> get(const std::string& kestromId) const = 0;

  /// The state of the case that the two codes open. Needs no sign-in.
  virtual reactive::Publisher<models::StatusCheckResponseBody, RESTError> statusCheck(
      const std::string& zipCode, const std::string& accessCode) const = 0;

  /// Hands the finished case in.
  virtual reactive::Publisher<reactive::Nothing, RESTError> submit(const std::string& kestromID) const = 0;
};

}  // namespace kestrom::services
