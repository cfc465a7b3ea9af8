#pragma once

#include "Core/Models/BotTemplate.hpp"
#include "Core/Models/ConversationDTO.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"
#include "Core/Services/Bot/AnswerIndex.hpp"
#include "Core/Services/Bot/FlatIndex.hpp"
#include "Core/Services/Bot/Transcript.hpp"
#include "Kestrom/Platform/Date.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrom::services {

/// One walk over a template: goes past what is answered and stops at the first node that is not, the pending question.
/// Made for one call of `run`. The lists that are being walked stand on a stack of its own, because a template may nest
/// deeper than a small thread's stack allows. Template and answers must outlive it; neither is copied.
class TemplateWalk {
 public:
  /// `now` is the timestamp of questions.
  TemplateWalk(std::span<const models::NativeBotEngineAnswerDTO> answers, foundation::Date now);

  models::ConversationDTO run(const models::NodeList& modules);

 private:
  /// Whether the walk goes on. It stops where a question was asked, and where it has no way.
  enum class Flow { goOn, stop };

  /// What a node takes over from where it stands.
  struct Place {
    const models::BotNode* module = nullptr;
    std::int64_t iteration = 0;
    bool notRepeating = true;

    NodeDetails details(WalkedNode node) const;
  };

  /// A list that is being walked, pass after pass if its owner repeats.
  struct SequenceFrame {
    const models::NodeList* children;
    const models::BotNode* owner;
    Place inherited;
    std::int64_t count = 0;
    std::size_t nextChild = 0;
    /// The first child's text from the second pass on.
    std::optional<std::string_view> firstText = std::nullopt;

    bool repeats() const { return owner->repeatable == true; }
    WalkedNode child(std::size_t index) const;
    Place place() const;
  };

  /// A menu whose answers are being followed, one arm after the other.
  struct MenuFrame {
    WalkedNode node;
    const models::BotNode* module;
    /// Its answers as they were when it was reached: a run of `_given`.
    std::size_t givenStart;
    std::size_t givenCount;
    std::size_t nextGiven = 0;
    /// Arms by key, where there are many.
    std::unique_ptr<FlatIndex> arms = nullptr;
  };

  Flow visit(WalkedNode node, Place place);
  Flow visitMenu(WalkedNode node, const Place& place);
  Flow visitBranching(WalkedNode node, const Place& place);
  Flow visitLeaf(WalkedNode node, const Place& place);
  void enterSequence(const models::NodeList& children, const models::BotNode& owner, const Place& inherited);

  Flow follow();
  Flow resume(SequenceFrame& frame);
  Flow resume(MenuFrame& frame);
  Flow decideRepeat(SequenceFrame& frame);
  Flow leave();

  std::uint32_t lookUp(const models::BotNode& node, const Place& place) const;
  void answered(std::uint32_t answer, std::string_view text, const NodeDetails& details);
  const models::AdventureNode* chosenArm(const MenuFrame& menu, const models::NativeBotEngineAnswerDTO& answer) const;

  std::span<const models::NativeBotEngineAnswerDTO> _answers;
  AnswerIndex _remaining;
  Transcript _transcript;
  std::vector<std::variant<SequenceFrame, MenuFrame>> _frames;
  std::vector<std::uint32_t> _given;
  std::size_t _units = 0;
};

}  // namespace kestrom::services
