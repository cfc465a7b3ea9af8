#pragma once

#include "Core/Services/Networking/REST/JSONDecoders.hpp"
#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Core/Services/Networking/REST/RESTRequest.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <any>

namespace kestrom::services {

/// Gets each failure of a call before the caller does.
class RESTErrorHandler {
 public:
  virtual ~RESTErrorHandler() = default;

  /// A publisher that recovers with a value, which must be of the type that the call gives (bytes, a record or a
  /// `VoidResponse`), or passes on by failing.
  virtual reactive::Publisher<std::any, RESTError> tryHandle(RESTError error, const RESTRequest& originalRequest,
                                                             const JSONDecoder& decoder) const = 0;
};

}  // namespace kestrom::services
