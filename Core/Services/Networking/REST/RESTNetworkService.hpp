#pragma once

#include "Core/Services/Networking/REST/ErrorHandlers/RESTErrorHandler.hpp"
#include "Core/Services/Networking/REST/MultipartFileWriter.hpp"
#include "Core/Services/Networking/REST/RESTService.hpp"
#include "Core/Services/Networking/REST/URLRequestModifier.hpp"
#include "Kestrom/Platform/Clock.hpp"
#include "Kestrom/Platform/Scheduler.hpp"

#include <memory>
#include <utility>
#include <vector>

namespace kestrom::services {

/// Sends requests: headers are added, the request goes out, the status is checked, the body read, failures pass the
/// handlers. One attempt for each call. A value without state; many alike exist.
class RESTNetworkService final : public RESTService {
 public:
  struct Parts {
    Session session;
    /// Applied in this order.
    std::vector<std::shared_ptr<const URLRequestModifier>> requestModifiers;
    /// Applied in this order.
    std::vector<std::shared_ptr<const RESTErrorHandler>> errorHandlers;
    std::shared_ptr<MultipartFileWriter> multipartFileWriter;
    /// Where results are delivered. It and the clock outlive the publishers.
    reactive::Scheduler& mainQueue;
    const foundation::Clock& clock;
  };

  explicit RESTNetworkService(Parts parts) : _parts(std::make_shared<const Parts>(std::move(parts))) {}

 protected:
  reactive::Publisher<std::any, RESTError> run(SharedRequest request, const JSONDecoder& decoder, Session session,
                                               ReadBody read) const override;

 private:
  std::shared_ptr<const Parts> _parts;
};

}  // namespace kestrom::services
