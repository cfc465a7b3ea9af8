#pragma once

#include "Core/Models/KestromEventDTO.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

#include <array>
#include <optional>
#include <string>
#include <vector>

/// The bodies that clients send, as far as the server reads them otherwise than the kit writes them, and the records of
/// a seed. What is the same on both sides comes from Core/Models.
namespace kestrom::sandbox {

/// A date in ISO 8601; only its form is of interest.
struct DateText {};

struct SubmitBody {
  std::string status;
};

struct UserProfileBody {
  std::string organizationId;
  std::string kestromId;
};

struct ConsentBody {
  std::string termsDocumentVersion;
  DateText consentDate;
  std::string termsDocumentDate;
};

struct GeocodeBody {
  double lat = 0;
  double lng = 0;
  double height = 0;
  double width = 0;
};

struct EventDetailsBody {
  std::string eventName;
  DateText timestamp;
  models::EventProperties eventProperties;
  models::EventContext eventContext;
};

struct EventBody {
  std::vector<EventDetailsBody> eventDetails;
  models::KestromEventDTO::UserDTO eventUser;
};

struct EventsBody {
  std::vector<EventBody> events;
};

struct CaseCustomer {
  std::string email;
  std::string lastName;
  std::string firstName;
};

struct CaseProperty {
  std::string country;
  std::string zipCode;
  std::string state;
  std::string city;
  std::optional<std::string> streetAddress2;
  std::string streetAddress1;
};

struct CaseBot {
  std::string id;
  std::string name;
};

/// What a kit reads of a case; without it the case is none.
struct CaseBody {
  std::string id;
  CaseCustomer customer;
  CaseProperty property;
  CaseBot bot;
  std::string accessCode;
  std::string organizationId;
  std::string status;
};

/// A case of a seed: the file of its JSON, and what the status check tells of it.
struct SeedCase {
  std::string file;
  std::string expiration;
};

/// A bot's or an organization's file.
struct SeedFile {
  std::string id;
  std::string file;
};

/// All paths are relative to the seed's folder.
struct SeedBody {
  std::vector<SeedCase> cases;
  std::vector<SeedFile> bots;
  std::vector<SeedFile> brands;
};

}  // namespace kestrom::sandbox

namespace kestrom::foundation {

template <>
struct Coder<sandbox::DateText> {
  static void decode(sandbox::DateText& out, JSONValue value, DecodingContext& context);
};

template <>
struct Coding<sandbox::SubmitBody> {
  static constexpr std::array kFields{
      field<&sandbox::SubmitBody::status>("status"),
  };
};

template <>
struct Coding<sandbox::UserProfileBody> {
  static constexpr std::array kFields{
      field<&sandbox::UserProfileBody::organizationId>("organizationId"),
      field<&sandbox::UserProfileBody::kestromId>("kestromId"),
  };
};

template <>
struct Coding<sandbox::ConsentBody> {
  static constexpr std::array kFields{
      field<&sandbox::ConsentBody::termsDocumentVersion>("termsDocumentVersion"),
      field<&sandbox::ConsentBody::consentDate>("consentDate"),
      field<&sandbox::ConsentBody::termsDocumentDate>("termsDocumentDate"),
  };
};

template <>
struct Coding<sandbox::GeocodeBody> {
  static constexpr std::array kFields{
      field<&sandbox::GeocodeBody::lat>("lat"),
      field<&sandbox::GeocodeBody::lng>("lng"),
      field<&sandbox::GeocodeBody::height>("height"),
      field<&sandbox::GeocodeBody::width>("width"),
  };
};

template <>
struct Coding<sandbox::EventDetailsBody> {
  static constexpr std::array kFields{
      field<&sandbox::EventDetailsBody::eventName>("eventName"),
      field<&sandbox::EventDetailsBody::timestamp>("timestamp"),
      field<&sandbox::EventDetailsBody::eventProperties>("eventProperties"),
      field<&sandbox::EventDetailsBody::eventContext>("eventContext"),
  };
};

template <>
struct Coding<sandbox::EventBody> {
  static constexpr std::array kFields{
      field<&sandbox::EventBody::eventDetails>("eventDetails"),
      field<&sandbox::EventBody::eventUser>("eventUser"),
  };
};

template <>
struct Coding<sandbox::EventsBody> {
  static constexpr std::array kFields{
      field<&sandbox::EventsBody::events>("events"),
  };
};

template <>
struct Coding<sandbox::CaseCustomer> {
  static constexpr std::array kFields{
      field<&sandbox::CaseCustomer::email>("email"),
      field<&sandbox::CaseCustomer::lastName>("lastName"),
      field<&sandbox::CaseCustomer::firstName>("firstName"),
  };
};

template <>
struct Coding<sandbox::CaseProperty> {
  static constexpr std::array kFields{
      field<&sandbox::CaseProperty::country>("country"),
      field<&sandbox::CaseProperty::zipCode>("zipCode"),
      field<&sandbox::CaseProperty::state>("state"),
      field<&sandbox::CaseProperty::city>("city"),
      field<&sandbox::CaseProperty::streetAddress2>("streetAddress2"),
      field<&sandbox::CaseProperty::streetAddress1>("streetAddress1"),
  };
};

template <>
struct Coding<sandbox::CaseBot> {
  static constexpr std::array kFields{
      field<&sandbox::CaseBot::id>("_id"),
      field<&sandbox::CaseBot::name>("name"),
  };
};

template <>
struct Coding<sandbox::CaseBody> {
  static constexpr std::array kFields{
      field<&sandbox::CaseBody::id>("_id"),
      field<&sandbox::CaseBody::customer>("customer"),
      field<&sandbox::CaseBody::property>("property"),
      field<&sandbox::CaseBody::bot>("bot"),
      field<&sandbox::CaseBody::accessCode>("accessCode"),
      field<&sandbox::CaseBody::organizationId>("organizationId"),
      field<&sandbox::CaseBody::status>("status"),
  };
};

template <>
struct Coding<sandbox::SeedCase> {
  static constexpr std::array kFields{field<&sandbox::SeedCase::file>("file"),
                                      field<&sandbox::SeedCase::expiration>("expiration")};
};

template <>
struct Coding<sandbox::SeedFile> {
  static constexpr std::array kFields{field<&sandbox::SeedFile::id>("id"), field<&sandbox::SeedFile::file>("file")};
};

template <>
struct Coding<sandbox::SeedBody> {
  static constexpr std::array kFields{field<&sandbox::SeedBody::cases>("cases"),
                                      field<&sandbox::SeedBody::bots>("bots"),
                                      field<&sandbox::SeedBody::brands>("brands")};
};

}  // namespace kestrom::foundation
