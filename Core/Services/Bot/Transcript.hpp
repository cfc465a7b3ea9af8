#pragma once

#include "Core/Models/BotTemplate.hpp"
#include "Core/Models/ConversationDTO.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"
#include "Kestrom/Platform/Date.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kestrom::services {

/// A node as the walk sees it. The first child of a repeated list has another text than the template says; the template
/// is not copied for that, the text stands beside the node.
struct WalkedNode {
  const models::BotNode* node = nullptr;
  std::optional<std::string_view> replacingText = std::nullopt;

  const models::BotNode* operator->() const { return node; }
  std::string_view text() const;
  /// The text of a menu that is shown again.
  std::string_view repeatText() const;
};

/// A node with the context in which it was reached.
struct NodeDetails {
  WalkedNode node;
  /// The nearest node around it that holds a sequence.
  const models::BotNode* module = nullptr;
  /// Absent outside repeating.
  std::optional<std::int64_t> iterationId;
};

/// The messages of one walk, and what of them may be revised: the one answer given immediately before the pending
/// question. Everything it is given must outlive it.
class Transcript {
 public:
  Transcript(std::span<const models::NativeBotEngineAnswerDTO> answers, foundation::Date now);

  const std::vector<models::ConversationDTO::MessageDTO>& messages() const { return _messages; }

  void appendAnswered(const models::NativeBotEngineAnswerDTO& answer, std::string_view text,
                      const NodeDetails& details);

  /// Appends the pending question; the walk ends with it.
  void appendQuestion(const NodeDetails& details);

  /// Appends a menu that some of its arms were chosen of, for the next choice; the walk ends with it. `chosen` are the
  /// places of its answers in the list.
  void appendMenuAgain(const NodeDetails& details, std::span<const std::uint32_t> chosen);

  models::ConversationDTO finish(const models::ConversationDTO::ProgressDTO& progress) &&;

 private:
  models::ConversationDTO::MessageDTO question(const NodeDetails& details) const;
  models::ConversationDTO::MessageDTO revisableQuestion(const NodeDetails& details) const;
  void append(models::ConversationDTO::MessageDTO question);
  void markCompleted(models::ConversationDTO::MessageDTO& menu, std::span<const std::uint32_t> chosen) const;

  std::span<const models::NativeBotEngineAnswerDTO> _answers;
  double _now;
  std::vector<models::ConversationDTO::MessageDTO> _messages;
  std::optional<models::ConversationDTO::MessageDTO> _lastEditableAnswer;
  std::optional<NodeDetails> _lastNode;
};

}  // namespace kestrom::services
