#pragma once

#include "Core/Models/LoginDTO.hpp"
#include "Core/Services/Networking/REST/RESTRequest.hpp"

#include <utility>

namespace kestrom::services {

/// The sign-in. Needs no token.
class AuthRESTRequest final : public CodableRESTRequest {
 public:
  static AuthRESTRequest mobileLogin(models::MobileLoginRequestBody body) { return AuthRESTRequest(std::move(body)); }

  std::string path() const override { return "/auth/mobile-login"; }
  RESTMethod method() const override { return RESTMethod::post; }
  std::optional<foundation::Bytes> body(const foundation::Clock&) const override {
    return encoded(_body, foundation::DateStrategy::secondsSinceReferenceDate);
  }

 private:
  explicit AuthRESTRequest(models::MobileLoginRequestBody body) : _body(std::move(body)) {}

  models::MobileLoginRequestBody _body;
};

}  // namespace kestrom::services
