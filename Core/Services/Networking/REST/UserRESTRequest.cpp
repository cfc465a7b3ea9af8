#include "Core/Services/Networking/REST/UserRESTRequest.hpp"

#include "Core/Models/LoginDTO.hpp"

namespace kestrom::services {

std::optional<foundation::Bytes> UserRESTRequest::body(const foundation::Clock& clock) const {
  if (const auto* profile = std::get_if<SaveUserProfile>(&_form)) {
    return encodedTexts({{"organizationId", profile->organizationID}, {"kestromId", profile->kestromId}});
  }
  const auto& consent = std::get<SubmitUserConstent>(_form);
  return encoded(models::UserConsentBody{consent.termsVersion, clock.now(), consent.termsDate},
                 foundation::DateStrategy::iso8601);
}

}  // namespace kestrom::services
