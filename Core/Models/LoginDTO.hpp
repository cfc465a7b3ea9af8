#pragma once

#include "Platform/Foundation/JSONCoding.hpp"

#include <string>

namespace kestrom::models {

/// What a person signs in with.
struct MobileLoginRequestBody {
  std::string accessCode;
  std::string zipCode;

  friend bool operator==(const MobileLoginRequestBody&, const MobileLoginRequestBody&) = default;
};

/// What a sign-in gives.
struct MobileLoginResponseBody {
  /// The bearer token. Opaque to the kit.
  std::string token;
  std::string organizationId;
  std::string kestromId;

  friend bool operator==(const MobileLoginResponseBody&, const MobileLoginResponseBody&) = default;
};

/// The consent to the terms.
struct UserConsentBody {
  std::string termsDocumentVersion;
  /// When the request was built.
  foundation::Date consentDate;
  std::string termsDocumentDate;

  friend bool operator==(const UserConsentBody&, const UserConsentBody&) = default;
};

}  // namespace kestrom::models

namespace kestrom::foundation {

template <>
struct Coding<models::MobileLoginRequestBody> {
  static constexpr std::array kFields{
      field<&models::MobileLoginRequestBody::accessCode>("accessCode"),
      field<&models::MobileLoginRequestBody::zipCode>("zipCode"),
  };
};

template <>
struct Coding<models::MobileLoginResponseBody> {
  static constexpr std::array kFields{
      field<&models::MobileLoginResponseBody::token>("token"),
      field<&models::MobileLoginResponseBody::organizationId>("organizationId"),
      field<&models::MobileLoginResponseBody::kestromId>("kestromId"),
  };
};

template <>
struct Coding<models::UserConsentBody> {
  static constexpr std::array kFields{
      field<&models::UserConsentBody::termsDocumentVersion>("termsDocumentVersion"),
      field<&models::UserConsentBody::consentDate>("consentDate"),
      field<&models::UserConsentBody::termsDocumentDate>("termsDocumentDate"),
  };
};

}  // namespace kestrom::foundation
