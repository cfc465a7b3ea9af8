#pragma once

#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Reactive/Publisher.hpp"

namespace kestrom::usecases {

/// The person agrees to the terms at an address.
class SubmitTermsConsentUseCase {
 public:
  virtual ~SubmitTermsConsentUseCase() = default;

  virtual reactive::Publisher<reactive::Nothing, services::RESTError> execute(
      const foundation::URL& termsURL) const = 0;
};

}  // namespace kestrom::usecases
