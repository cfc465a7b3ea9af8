#pragma once

#include "Core/Models/ConversationDTO.hpp"
#include "Core/Models/LocationSnapshotDTO.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrom::models {

/// An answer as the walk reads it.
struct NativeBotEngineAnswerDTO {
  std::vector<ConversationDTO::AnswerDTO> answers;
  std::optional<LocationSnapshotDTO> location;
  /// "precise", "relative" or "none".
  std::string locationType;
  std::int64_t iterationId = 0;
  std::string messageId;
  std::string moduleId;
  /// Milliseconds since 1970, a whole number.
  double timestamp = 0;

  friend bool operator==(const NativeBotEngineAnswerDTO&, const NativeBotEngineAnswerDTO&) = default;
};

}  // namespace kestrom::models
