#pragma once

#include "Core/Services/KestromObjectService.hpp"

#include <string>

namespace kestrom::usecases {

/// The status check of a case, for a host that shows no flow.
class StatusCheckUseCase {
 public:
  virtual ~StatusCheckUseCase() = default;

  virtual reactive::Publisher<models::StatusCheckResponseBody, services::RESTError> execute(
      const std::string& zipCode, const std::string& accessCode) const = 0;
};

}  // namespace kestrom::usecases
