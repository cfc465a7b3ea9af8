#pragma once

#include "Kestrom/KestromEvent.hpp"

#include <string>
#include <variant>

namespace kestrom::usecases {

/// What a screen knows of something that happened; the rest of the event is added when it is posted.
struct InternalEventTrigger {
  struct UserLoggedIn {
    /// Status of the case.
    std::string status;
    bool isDeeplink = false;

    friend bool operator==(const UserLoggedIn&, const UserLoggedIn&) = default;
  };
  struct QuestionAsked {
    EventMessageDetails message;

    friend bool operator==(const QuestionAsked&, const QuestionAsked&) = default;
  };
  struct QuestionAnswered {
    EventMessageDetails message;

    friend bool operator==(const QuestionAnswered&, const QuestionAnswered&) = default;
  };
  struct SDKClosed {
    friend bool operator==(const SDKClosed&, const SDKClosed&) = default;
  };
  struct KestromCompleted {
    friend bool operator==(const KestromCompleted&, const KestromCompleted&) = default;
  };

  std::variant<UserLoggedIn, QuestionAsked, QuestionAnswered, SDKClosed, KestromCompleted> form;

  friend bool operator==(const InternalEventTrigger&, const InternalEventTrigger&) = default;
};

}  // namespace kestrom::usecases
