#pragma once

#include "Core/Models/Message.hpp"

#include <optional>
#include <vector>

namespace kestrom::services {

/// The state of a conversation as the chat shows it.
struct Conversation {
  /// Finished modules by all modules; not a number for a template without modules.
  float progress = 0;
  /// The question whose answer may be revised; absent when there is none.
  std::optional<std::vector<models::Message>> editableMessages;
  /// All rows, oldest first.
  std::vector<models::Message> messages;

  friend bool operator==(const Conversation&, const Conversation&) = default;
};

}  // namespace kestrom::services
