#include "Core/Services/Bot/TemplateWalk.hpp"

#include "Core/Services/Bot/ConditionalEvaluation.hpp"
#include "Core/Services/Bot/LowerCase.hpp"

#include <algorithm>
#include <limits>
#include <utility>

namespace kestrom::services {

using models::AdventureNode;
using models::BotNode;
using models::ConditionalNode;
using models::ConversationDTO;
using models::NativeBotEngineAnswerDTO;
using models::NodeList;

namespace {

/// How much one walk may do, in units of one case of a guard. An answered question costs a visit and a message; only
/// lists that repeat within each other without consuming answers double the walk at each level, and would hang the
/// host. Beside what its answers cost a walk may visit four million nodes, more than any document holds, or test 64
/// million cases, or make 800,000 messages, some hundred megabytes.
constexpr std::size_t kUnitsOfVisit = 16;
constexpr std::size_t kUnitsOfMessage = 64;
constexpr std::size_t kUnitsBesideAnswers = 64'000'000;
constexpr std::size_t kUnitsForAnswer = 2 * (kUnitsOfVisit + kUnitsOfMessage);

/// From this many arms on a table of their keys is worth its making.
constexpr std::size_t kManyArms = 8;

std::string_view repeatTextOf(const BotNode& owner) {
  return owner.repeatableDetails ? std::string_view(owner.repeatableDetails->repeatText) : "missing";
}

std::int64_t maxRepeatsOf(const BotNode& owner) {
  constexpr std::int64_t kNoBound = std::numeric_limits<std::int64_t>::max();
  return owner.repeatableDetails ? owner.repeatableDetails->maxRepeats.value_or(kNoBound) : kNoBound;
}

bool isAffirmative(const ConversationDTO::AnswerDTO& entry) {
  return readsInLowerCase(entry.key, "true") || readsInLowerCase(entry.key, "yes");
}

auto keyOfArm(const std::vector<AdventureNode>& arms) {
  return [&](std::uint32_t arm) -> const std::string& { return arms[arm].key; };
}

}  // namespace

NodeDetails TemplateWalk::Place::details(WalkedNode node) const {
  return {node, module, notRepeating ? std::nullopt : std::optional(iteration)};
}

WalkedNode TemplateWalk::SequenceFrame::child(std::size_t index) const {
  return {&(*children)[index], index == 0 ? firstText : std::nullopt};
}

TemplateWalk::Place TemplateWalk::SequenceFrame::place() const {
  return repeats() ? Place{inherited.module, count, false} : inherited;
}

TemplateWalk::TemplateWalk(std::span<const NativeBotEngineAnswerDTO> answers, foundation::Date now)
    : _answers(answers), _remaining(answers), _transcript(answers, now) {}

ConversationDTO TemplateWalk::run(const NodeList& modules) {
  const auto isLeaf = [](const BotNode& node) { return !node.sequence && !node.adventures && !node.branches; };
  std::size_t index = 0;
  for (; index < modules.size(); ++index) {
    const BotNode& module = modules[index];
    // A leaf between modules is never shown and counts as finished.
    if (isLeaf(module)) continue;
    if (visit({&module}, {.module = &module}) == Flow::stop || follow() == Flow::stop) break;
  }
  const auto total = static_cast<std::int64_t>(modules.size());
  const auto current = static_cast<std::int64_t>(index);
  return std::move(_transcript).finish({total, current, current == total});
}

/// Walks what has been entered to its end.
TemplateWalk::Flow TemplateWalk::follow() {
  const std::size_t limit = kUnitsBesideAnswers + kUnitsForAnswer * _answers.size();
  while (!_frames.empty()) {
    if (_units > limit) return Flow::stop;
    const Flow flow = std::visit([this](auto& frame) { return resume(frame); }, _frames.back());
    if (flow == Flow::stop) return flow;
  }
  return Flow::goOn;
}

TemplateWalk::Flow TemplateWalk::leave() {
  _frames.pop_back();
  return Flow::goOn;
}

TemplateWalk::Flow TemplateWalk::visit(WalkedNode node, Place place) {
  _units += kUnitsOfVisit;
  if (node->sequence) {
    place.module = node.node;
    enterSequence(*node->sequence, *node.node, place);
    return Flow::goOn;
  }
  if (node->adventures) return visitMenu(node, place);
  if (node->branches) return visitBranching(node, place);
  return visitLeaf(node, place);
}

TemplateWalk::Flow TemplateWalk::visitLeaf(WalkedNode node, const Place& place) {
  const std::uint32_t answer = lookUp(*node.node, place);
  if (answer == AnswerIndex::kNone) {
    _transcript.appendQuestion(place.details(node));
    return Flow::stop;
  }
  _remaining.removeFirstLike(answer);
  answered(answer, node.text(), place.details(node));
  return Flow::goOn;
}

TemplateWalk::Flow TemplateWalk::visitBranching(WalkedNode node, const Place& place) {
  const std::uint32_t answer = lookUp(*node.node, place);
  if (answer == AnswerIndex::kNone) {
    _transcript.appendQuestion(place.details(node));
    return Flow::stop;
  }
  // The answer remains: the node gives the same answer wherever it stands again.
  answered(answer, node.text(), place.details(node));

  for (const ConditionalNode& guard : *node->branches) _units += 1 + guard.cases.size();
  const ConditionalNode::Branch* branch = selectBranch(_answers[answer], *node.node, *node->branches);
  if (branch) enterSequence(branch->sequence, *node.node, place);
  return Flow::goOn;
}

void TemplateWalk::enterSequence(const NodeList& children, const BotNode& owner, const Place& inherited) {
  _frames.emplace_back(SequenceFrame{.children = &children, .owner = &owner, .inherited = inherited});
}

TemplateWalk::Flow TemplateWalk::resume(SequenceFrame& frame) {
  // Visiting may enter a list, which moves the frames: this one is not touched after that.
  if (frame.nextChild < frame.children->size()) {
    const std::size_t child = frame.nextChild++;
    return visit(frame.child(child), frame.place());
  }
  return frame.repeats() ? decideRepeat(frame) : leave();
}

TemplateWalk::Flow TemplateWalk::decideRepeat(SequenceFrame& frame) {
  // Without a first child nothing could ever end the passes.
  if (frame.children->empty()) return leave();

  // The first child as it stands in this pass: closing after the first pass leaves its authored text to a revision.
  const WalkedNode first = frame.child(0);
  const std::int64_t next = frame.count + 1;
  const std::string_view repeatText = repeatTextOf(*frame.owner);
  const std::int64_t maxRepeats = maxRepeatsOf(*frame.owner);
  frame.firstText = repeatText;

  const auto repeat = [&] {
    frame.count = next;
    frame.nextChild = 0;
    return Flow::goOn;
  };

  const std::uint32_t gate = _remaining.firstRemaining(first->id, next);
  if (gate != AnswerIndex::kNone) {
    const NativeBotEngineAnswerDTO& answer = _answers[gate];
    if (next < maxRepeats && !answer.answers.empty() && isAffirmative(answer.answers.front())) return repeat();
    answered(gate, repeatText, {first, frame.inherited.module, answer.iterationId});
    return leave();
  }

  // The gate was passed in this iteration: if it said yes, one more pass asks it again.
  const std::uint32_t message = _remaining.firstMessage(first->id, frame.count);
  if (message == AnswerIndex::kNone) return leave();
  const auto& entries = _transcript.messages()[message].answers;
  if (entries && !entries->empty() && isAffirmative(entries->front()) && next < maxRepeats) return repeat();
  return leave();
}

TemplateWalk::Flow TemplateWalk::visitMenu(WalkedNode node, const Place& place) {
  const std::size_t start = _given.size();
  _remaining.appendRemaining(node->id, _given);
  const std::size_t count = _given.size() - start;
  _units += count;
  if (count == 0) {
    _transcript.appendQuestion({node, place.module, 0});
    return Flow::stop;
  }
  MenuFrame frame{.node = node, .module = place.module, .givenStart = start, .givenCount = count};
  const std::vector<AdventureNode>& arms = *node->adventures;
  if (arms.size() >= kManyArms) {
    frame.arms = std::make_unique<FlatIndex>(arms.size());
    for (std::uint32_t arm = 0; arm < arms.size(); ++arm) {
      frame.arms->insert(arms[arm].key, hashOf(arms[arm].key), arm, keyOfArm(arms));
    }
  }
  _frames.emplace_back(std::move(frame));
  return Flow::goOn;
}

TemplateWalk::Flow TemplateWalk::resume(MenuFrame& frame) {
  const std::span given = std::span(_given).subspan(frame.givenStart, frame.givenCount);

  if (frame.nextGiven == given.size()) {
    if (given.size() >= frame.node->adventures->size()) {
      _given.resize(frame.givenStart);
      return leave();
    }
    const std::int64_t last = _answers[given.back()].iterationId;
    // There is nothing above the largest iteration: its offer stays there.
    const std::int64_t next = last == std::numeric_limits<std::int64_t>::max() ? last : last + 1;
    _transcript.appendMenuAgain({frame.node, frame.module, next}, given);
    return Flow::stop;
  }

  const std::uint32_t answer = given[frame.nextGiven];
  const AdventureNode* arm = chosenArm(frame, _answers[answer]);
  if (!arm) return Flow::stop;
  // The very answer may be gone, if the arm before this one holds a node of the same identity.
  _remaining.removeFirstLike(answer);
  const std::string_view text = frame.nextGiven == 0 ? frame.node.text() : frame.node.repeatText();
  // An edit of the last choice must find the entry that it revises: the iteration is the answer's.
  answered(answer, text, {frame.node, frame.module, _answers[answer].iterationId});
  ++frame.nextGiven;
  enterSequence(arm->adventure.sequence, *frame.node.node, {.module = frame.module});
  return Flow::goOn;
}

/// The first arm that one of the answer's entries names; null when none does.
const AdventureNode* TemplateWalk::chosenArm(const MenuFrame& menu, const NativeBotEngineAnswerDTO& answer) const {
  const std::vector<AdventureNode>& arms = *menu.node->adventures;
  if (menu.arms) {
    std::uint32_t first = AnswerIndex::kNone;
    for (const ConversationDTO::AnswerDTO& entry : answer.answers) {
      first = std::min(first, menu.arms->find(entry.key, hashOf(entry.key), keyOfArm(arms)));
    }
    return first == AnswerIndex::kNone ? nullptr : &arms[first];
  }
  const auto arm = std::ranges::find_if(arms, [&](const AdventureNode& candidate) {
    return std::ranges::find(answer.answers, candidate.key, &ConversationDTO::AnswerDTO::key) != answer.answers.end();
  });
  return arm == arms.end() ? nullptr : &*arm;
}

/// The answer of a leaf or a branching node that remains: outside repeating of any iteration.
std::uint32_t TemplateWalk::lookUp(const BotNode& node, const Place& place) const {
  return place.notRepeating ? _remaining.firstRemaining(node.id) : _remaining.firstRemaining(node.id, place.iteration);
}

void TemplateWalk::answered(std::uint32_t answer, std::string_view text, const NodeDetails& details) {
  _units += kUnitsOfMessage;
  _remaining.noteMessage(answer, static_cast<std::uint32_t>(_transcript.messages().size()));
  _transcript.appendAnswered(_answers[answer], text, details);
}

}  // namespace kestrom::services
