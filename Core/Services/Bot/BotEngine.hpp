#pragma once

#include "Core/Models/BotAnswer.hpp"
#include "Core/Services/Bot/Conversation.hpp"
#include "Core/Services/Networking/REST/AnyError.hpp"
#include "Platform/Reactive/Publisher.hpp"

namespace kestrom::services {

/// A running conversation as the chat sees it. Main queue; a publisher may outlive the engine.
class BotEngine {
 public:
  struct Result {
    /// The template's end is reached.
    bool isCompleted = false;
    Conversation conversation;

    friend bool operator==(const Result&, const Result&) = default;
  };
  struct Submission {
    models::BotAnswer answer;
    /// Whether the answer leaves the chat, for the server or the device's record; otherwise it counts here alone.
    bool shouldSubmit = true;
    /// Whether it takes the place of an earlier answer to the same question; later answers stay and apply again.
    bool isEdit = false;
  };

  virtual ~BotEngine() = default;

  /// Takes up the conversation from the case's history, at each subscription anew.
  virtual reactive::Publisher<Result, AnyError> start() = 0;

  /// Takes the answer, inside the call, and gives what follows from it at once. Neither waits for its delivery nor
  /// tells of it.
  virtual reactive::Publisher<Result, AnyError> submit(Submission submission) = 0;
};

}  // namespace kestrom::services
