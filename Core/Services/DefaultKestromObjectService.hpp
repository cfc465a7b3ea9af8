#pragma once

#include "Core/Services/KestromObjectService.hpp"
#include "Core/Services/Networking/REST/RESTService.hpp"

#include <memory>
#include <utility>

namespace kestrom::services {

/// Asks the server.
class DefaultKestromObjectService final : public KestromObjectService {
 public:
  explicit DefaultKestromObjectService(std::shared_ptr<const RESTService> restService)
      : _restService(std::move(restService)) {}

  reactive::Publisher<models::StatusCheckResponseBody, RESTError> statusCheck(
      const std::string& zipCode, const std::string& accessCode) const override;
  reactive::Publisher<reactive::Nothing, RESTError> submit(const std::string& kestromID) const override;

 private:
  std::shared_ptr<const RESTService> _restService;
};

}  // namespace kestrom::services
