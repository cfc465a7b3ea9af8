#pragma once

#include "Platform/Foundation/JSONCoding.hpp"

#include <optional>
#include <string>
#include <vector>

/// Analytics events as they are uploaded and kept in a file.
namespace kestrom::models {

struct UserPropertiesDTO {
  std::string botId;
  std::string botName;
  std::string organizationId;
  std::string status;

  friend bool operator==(const UserPropertiesDTO&, const UserPropertiesDTO&) = default;
};

struct MobileContext {
  std::optional<std::string> appVersion;
  std::optional<std::string> appName;

  friend bool operator==(const MobileContext&, const MobileContext&) = default;
};

struct DeviceContext {
  std::string manufacturer;
  std::optional<std::string> model;

  friend bool operator==(const DeviceContext&, const DeviceContext&) = default;
};

/// Degrees.
struct LocationContext {
  double latitude = 0;
  double longitude = 0;

  friend bool operator==(const LocationContext&, const LocationContext&) = default;
};

struct EventContext {
  std::optional<MobileContext> mobile;
  std::optional<DeviceContext> device;
  std::optional<LocationContext> location;

  friend bool operator==(const EventContext&, const EventContext&) = default;
};

struct EventProperties {
  std::optional<std::string> status;
  /// Seconds.
  std::optional<double> activeTime;
  std::optional<std::string> message;
  std::optional<std::string> messageType;
  std::optional<std::string> moduleKey;
  std::optional<std::string> messageKey;
  std::optional<std::string> loginType;
  std::optional<std::string> phase;

  friend bool operator==(const EventProperties&, const EventProperties&) = default;
};

struct KestromEventDetailsDTO {
  std::string eventName;
  foundation::Date timestamp;
  EventProperties eventProperties;
  EventContext eventContext;

  friend bool operator==(const KestromEventDetailsDTO&, const KestromEventDetailsDTO&) = default;
};

/// The events of one user.
struct KestromEventDTO {
  struct UserDTO {
    std::string id;
    std::string displayName;
    std::string email;
    UserPropertiesDTO properties;

    friend bool operator==(const UserDTO&, const UserDTO&) = default;
  };

  std::vector<KestromEventDetailsDTO> eventDetails;
  UserDTO eventUser;

  friend bool operator==(const KestromEventDTO&, const KestromEventDTO&) = default;
};

/// The body of an upload.
struct EventBatchDTO {
  std::vector<KestromEventDTO> events;

  friend bool operator==(const EventBatchDTO&, const EventBatchDTO&) = default;
};

}  // namespace kestrom::models

namespace kestrom::foundation {

template <>
struct Coding<models::UserPropertiesDTO> {
  static constexpr std::array kFields{
      field<&models::UserPropertiesDTO::botId>("botId"),
      field<&models::UserPropertiesDTO::botName>("botName"),
      field<&models::UserPropertiesDTO::organizationId>("organizationId"),
      field<&models::UserPropertiesDTO::status>("status"),
  };
};

template <>
struct Coding<models::MobileContext> {
  static constexpr std::array kFields{
      field<&models::MobileContext::appVersion>("appVersion"),
      field<&models::MobileContext::appName>("appName"),
  };
};

template <>
struct Coding<models::DeviceContext> {
  static constexpr std::array kFields{
      field<&models::DeviceContext::manufacturer>("manufacturer"),
      field<&models::DeviceContext::model>("model"),
  };
};

template <>
struct Coding<models::LocationContext> {
  static constexpr std::array kFields{
      field<&models::LocationContext::latitude>("latitude"),
      field<&models::LocationContext::longitude>("longitude"),
  };
};

template <>
struct Coding<models::EventContext> {
  static constexpr std::array kFields{
      field<&models::EventContext::mobile>("mobile"),
      field<&models::EventContext::device>("device"),
      field<&models::EventContext::location>("location"),
  };
};

template <>
struct Coding<models::EventProperties> {
  static constexpr std::array kFields{
      field<&models::EventProperties::status>("status"),
      field<&models::EventProperties::activeTime>("activeTime"),
      field<&models::EventProperties::message>("message"),
      field<&models::EventProperties::messageType>("messageType"),
      field<&models::EventProperties::moduleKey>("moduleKey"),
      field<&models::EventProperties::messageKey>("messageKey"),
      field<&models::EventProperties::loginType>("loginType"),
      field<&models::EventProperties::phase>("phase"),
  };
};

template <>
struct Coding<models::KestromEventDetailsDTO> {
  static constexpr std::array kFields{
      field<&models::KestromEventDetailsDTO::eventName>("eventName"),
      field<&models::KestromEventDetailsDTO::timestamp>("timestamp"),
      field<&models::KestromEventDetailsDTO::eventProperties>("eventProperties"),
      field<&models::KestromEventDetailsDTO::eventContext>("eventContext"),
  };
};

template <>
struct Coding<models::KestromEventDTO::UserDTO> {
  static constexpr std::array kFields{
      field<&models::KestromEventDTO::UserDTO::id>("id"),
      field<&models::KestromEventDTO::UserDTO::displayName>("displayName"),
      field<&models::KestromEventDTO::UserDTO::email>("email"),
      field<&models::KestromEventDTO::UserDTO::properties>("properties"),
  };
};

template <>
struct Coding<models::KestromEventDTO> {
  static constexpr std::array kFields{
      field<&models::KestromEventDTO::eventDetails>("eventDetails"),
      field<&models::KestromEventDTO::eventUser>("eventUser"),
  };
};

template <>
struct Coding<models::EventBatchDTO> {
  static constexpr std::array kFields{field<&models::EventBatchDTO::events>("events")};
};

}  // namespace kestrom::foundation
