#pragma once

#include "Core/Models/BotTemplate.hpp"
#include "Kestrom/KestromEvent.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <memory>
#include <optional>
#include <string>

namespace kestrom::models {

/// A case with all that the flow needs of it: who, which property, which bot, which status. A value that is cheap to
/// copy; any thread.
struct KestromObjectDetails {
  struct Customer {
    std::string email;
    std::string lastName;
    std::string firstName;
    friend bool operator==(const Customer&, const Customer&) = default;
  };
  struct Property {
    std::string country;
    std::string zipCode;
    std::string state;
    std::string city;
    std::optional<std::string> streetAddress2;
    std::string streetAddress1;
    friend bool operator==(const Property&, const Property&) = default;
  };

  std::string id;
  Customer customer;
  Property property;
  std::string accessCode;
  std::string organizationId;
  /// As the server says it, for example "invited".
  std::string status;
  /// Never null; shared, as it may be large.
  std::shared_ptr<const BotTemplate> bot;
  KestromAnalyticUser analyticUser;
  /// The whole case as the server sent it, an object: templates reach into it. Never null.
  std::shared_ptr<const foundation::JSONDocument> rawJSON;
};

}  // namespace kestrom::models
