#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/Date.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kestrom {

/// The case that a flow works on and the person whose it is.
struct KestromAnalyticUser {
  std::string kestromID;
  /// First and last name, with one blank between them.
  std::string name;
  std::string email;
  std::string botId;
  std::string botName;
  std::string organizationId;
  /// Status of the case when it was loaded.
  std::string status;
  bool isStaging = false;

  friend bool operator==(const KestromAnalyticUser&, const KestromAnalyticUser&) = default;
};

/// What the device and the host's bundle say of themselves.
struct KestromDeviceData {
  /// Hardware identifier, not the name under which the device is sold.
  std::optional<std::string> phoneModel;
  std::optional<std::string> appVersion;
  std::optional<std::string> appName;

  friend bool operator==(const KestromDeviceData&, const KestromDeviceData&) = default;
};

/// A place in degrees (WGS 84).
struct KestromCoordinate {
  double latitude = 0;
  double longitude = 0;

  friend bool operator==(const KestromCoordinate&, const KestromCoordinate&) = default;
};

/// The bot's message that an event is about.
struct EventMessageDetails {
  std::string message;
  std::string messageType;
  std::string moduleKey;
  std::string messageKey;
  /// "beginning", "middle" or "end" of the inspection.
  std::string phase;

  friend bool operator==(const EventMessageDetails&, const EventMessageDetails&) = default;
};

/// Something that happened in a flow.
struct KESTROM_API KestromEvent {
  /// What happened. Times of activity are seconds that the person really spent in the flow.
  struct Trigger {
    struct UserLoggedIn {
      /// Status of the case.
      std::string status;
      KestromDeviceData deviceData;
      std::optional<KestromCoordinate> location;
      /// Whether the codes came with a link or the host, and were not typed.
      bool isDeeplink = false;

      friend bool operator==(const UserLoggedIn&, const UserLoggedIn&) = default;
    };
    struct QuestionAsked {
      double activeTime = 0;
      EventMessageDetails message;

      friend bool operator==(const QuestionAsked&, const QuestionAsked&) = default;
    };
    struct QuestionAnswered {
      double activeTime = 0;
      std::optional<KestromCoordinate> location;
      EventMessageDetails message;

      friend bool operator==(const QuestionAnswered&, const QuestionAnswered&) = default;
    };
    struct SDKClosed {
      double activeTime = 0;

      friend bool operator==(const SDKClosed&, const SDKClosed&) = default;
    };
    struct KestromCompleted {
      double activeTime = 0;

      friend bool operator==(const KestromCompleted&, const KestromCompleted&) = default;
    };

    std::variant<UserLoggedIn, QuestionAsked, QuestionAnswered, SDKClosed, KestromCompleted> form;

    friend bool operator==(const Trigger&, const Trigger&) = default;
  };

  /// When the event went out, which for one that waits for a location is later than when it happened.
  foundation::Date timestamp;
  Trigger trigger;
  /// Absent before a case is open.
  std::optional<KestromAnalyticUser> user;

  /// "user_logged_in", "question_asked", "question_answered", "sdk_closed" or "kestrom_completed".
  std::string_view name() const;

  friend bool operator==(const KestromEvent&, const KestromEvent&) = default;
};

}  // namespace kestrom
