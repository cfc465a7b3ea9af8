#pragma once

#include "Core/Models/KestromObjectDetails.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

#include <string>

namespace kestrom::models {

/// A case as the server sends it, as far as the kit knows its members.
struct KestromObjectDetailsDTO {
  /// The template, which is loaded apart.
  struct Bot {
    std::string id;
    std::string name;

    friend bool operator==(const Bot&, const Bot&) = default;
  };

  std::string id;
  KestromObjectDetails::Customer customer;
  KestromObjectDetails::Property property;
  Bot bot;
  std::string accessCode;
  std::string organizationId;
  std::string status;

  friend bool operator==(const KestromObjectDetailsDTO&, const KestromObjectDetailsDTO&) = default;
};

}  // namespace kestrom::models

namespace kestrom::foundation {

template <>
struct Coding<models::KestromObjectDetails::Customer> {
  using Customer = models::KestromObjectDetails::Customer;
  static constexpr std::array kFields{
      field<&Customer::email>("email"),
      field<&Customer::lastName>("lastName"),
      field<&Customer::firstName>("firstName"),
  };
};

template <>
struct Coding<models::KestromObjectDetails::Property> {
  using Property = models::KestromObjectDetails::Property;
  static constexpr std::array kFields{
      field<&Property::country>("country"),
      field<&Property::zipCode>("zipCode"),
      field<&Property::state>("state"),
      field<&Property::city>("city"),
      field<&Property::streetAddress2>("streetAddress2"),
      field<&Property::streetAddress1>("streetAddress1"),
  };
};

template <>
struct Coding<models::KestromObjectDetailsDTO::Bot> {
  using Bot = models::KestromObjectDetailsDTO::Bot;
  static constexpr std::array kFields{field<&Bot::id>("_id"), field<&Bot::name>("name")};
};

template <>
struct Coding<models::KestromObjectDetailsDTO> {
  using DTO = models::KestromObjectDetailsDTO;
  static constexpr std::array kFields{
      field<&DTO::id>("_id"),
      field<&DTO::customer>("customer"),
      field<&DTO::property>("property"),
      field<&DTO::bot>("bot"),
      field<&DTO::accessCode>("accessCode"),
      field<&DTO::organizationId>("organizationId"),
      field<&DTO::status>("status"),
  };
};

}  // namespace kestrom::foundation
