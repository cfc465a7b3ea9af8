#pragma once

#include "Core/Services/Networking/REST/RESTRequest.hpp"

#include <string>
#include <utility>
#include <variant>

namespace kestrom::services {

/// What the server keeps of the person. Both go to one address and are told apart by their bodies.
class UserRESTRequest final : public CodableRESTRequest {
 public:
  struct SaveUserProfile {
    std::string organizationID;
    std::string kestromId;
  };
  struct SubmitUserConstent {
    std::string termsVersion;
    std::string termsDate;
  };

  static UserRESTRequest saveUserProfile(std::string organizationID, std::string kestromId) {
    return UserRESTRequest(SaveUserProfile{std::move(organizationID), std::move(kestromId)});
  }
  /// The consent to the terms; its date is that of the building of the request.
  static UserRESTRequest submitUserConstent(std::string termsVersion, std::string termsDate) {
    return UserRESTRequest(SubmitUserConstent{std::move(termsVersion), std::move(termsDate)});
  }

  std::string path() const override { return "/integrations/firebase/user-profile"; }
  RESTMethod method() const override { return RESTMethod::post; }
  std::optional<foundation::Bytes> body(const foundation::Clock& clock) const override;

 private:
  using Form = std::variant<SaveUserProfile, SubmitUserConstent>;

  explicit UserRESTRequest(Form form) : _form(std::move(form)) {}

  Form _form;
};

}  // namespace kestrom::services
