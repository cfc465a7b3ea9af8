#pragma once

#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <string>

namespace kestrom::usecases {

/// Binds the signed-in person to a case.
class UpdateUserProfileUseCase {
 public:
  virtual ~UpdateUserProfileUseCase() = default;

  virtual reactive::Publisher<reactive::Nothing, services::RESTError> execute(const std::string& organizationId,
                                                                              const std::string& kestromId) const = 0;
};

}  // namespace kestrom::usecases
