#pragma once

#include "Core/Services/Networking/REST/ErrorHandlers/RESTErrorHandler.hpp"

namespace kestrom::services {

/// Logs each failure and recovers nothing.
class GenericErrorHandler final : public RESTErrorHandler {
 public:
  reactive::Publisher<std::any, RESTError> tryHandle(RESTError error, const RESTRequest& originalRequest,
                                                     const JSONDecoder& decoder) const override;
};

}  // namespace kestrom::services
