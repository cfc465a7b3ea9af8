#include "Core/Services/Bot/AnswerIndex.hpp"

namespace kestrom::services {

namespace {

/// Answers lie in order, their texts anywhere: those of a large list are asked for this many answers before their use.
constexpr std::uint32_t kAhead = 4;

void prefetch(const void* address) {
  __builtin_prefetch(address);
}

/// Iterations count up from zero and nodes are numbered densely: the multiplications spread both over all bits, of
/// which the upper ones are the good ones.
std::uint32_t hashOf(std::uint32_t node, std::int64_t iteration) {
  const std::uint64_t mixed =
      (static_cast<std::uint64_t>(iteration) * 0x9e3779b97f4a7c15U + node + 1) * 0xff51afd7ed558ccdU;
  return static_cast<std::uint32_t>(mixed >> 32U);
}

}  // namespace

AnswerIndex::AnswerIndex(std::span<const models::NativeBotEngineAnswerDTO> answers)
    : _answers(answers), _entries(answers.size()), _nodeOfId(answers.size()) {
  const auto keyOfNode = [this](std::uint32_t node) { return idOf(node); };
  for (std::uint32_t answer = 0; answer < answers.size(); ++answer) {
    if (answer + kAhead < answers.size()) prefetch(answers[answer + kAhead].messageId.data());
    const std::string_view messageId = answers[answer].messageId;
    Entry& entry = _entries[answer];
    entry.node = _nodeOfId.insert(messageId, services::hashOf(messageId), answer, keyOfNode);
    if (entry.node == answer) {
      entry.head = entry.firstAlike = entry.lastAlike = answer;
      entry.firstRemaining = entry.lastOfNode = answer;
    } else {
      append(answer);
    }
  }
}

/// Adds an answer to a node that has some.
void AnswerIndex::append(std::uint32_t answer) {
  Entry& entry = _entries[answer];
  Entry& node = _entries[entry.node];
  if (node.lastOfNode == entry.node) insertHead(entry.node);
  _entries[node.lastOfNode].next = answer;
  entry.previous = node.lastOfNode;
  node.lastOfNode = answer;

  entry.head = insertHead(answer);
  Entry& head = _entries[entry.head];
  if (entry.head == answer) {
    head.firstAlike = answer;
  } else {
    _entries[head.lastAlike].nextAlike = answer;
  }
  head.lastAlike = answer;
}

/// The head of the answers like `answer`, which it becomes itself if there is none.
std::uint32_t AnswerIndex::insertHead(std::uint32_t answer) {
  const NodeIteration key = keyOf(answer);
  return _headOfIteration.insert(key, hashOf(key.node, key.iteration), answer,
                                 [this](std::uint32_t head) { return keyOf(head); });
}

AnswerIndex::NodeIteration AnswerIndex::keyOf(std::uint32_t answer) const {
  return {_entries[answer].node, _answers[answer].iterationId};
}

std::string_view AnswerIndex::idOf(std::uint32_t node) const {
  return _answers[node].messageId;
}

std::uint32_t AnswerIndex::nodeOf(std::string_view messageId) const {
  // Walks mostly meet the answers in the order in which they were given.
  if (_expected < _answers.size() && _answers[_expected].messageId == messageId) return _entries[_expected].node;
  return _nodeOfId.find(messageId, services::hashOf(messageId), [this](std::uint32_t node) { return idOf(node); });
}

std::uint32_t AnswerIndex::headOf(std::string_view messageId, std::int64_t iteration) const {
  const std::uint32_t node = nodeOf(messageId);
  if (node == kNone) return kNone;
  if (_entries[node].lastOfNode == node) return _answers[node].iterationId == iteration ? node : kNone;
  return _headOfIteration.find(NodeIteration{node, iteration}, hashOf(node, iteration),
                               [this](std::uint32_t head) { return keyOf(head); });
}

std::uint32_t AnswerIndex::firstRemaining(std::string_view messageId) const {
  const std::uint32_t node = nodeOf(messageId);
  return node == kNone ? kNone : _entries[node].firstRemaining;
}

std::uint32_t AnswerIndex::firstRemaining(std::string_view messageId, std::int64_t iteration) const {
  const std::uint32_t head = headOf(messageId, iteration);
  return head == kNone ? kNone : _entries[head].firstAlike;
}

void AnswerIndex::appendRemaining(std::string_view messageId, std::vector<std::uint32_t>& answers) const {
  for (std::uint32_t answer = firstRemaining(messageId); answer != kNone; answer = _entries[answer].next) {
    answers.push_back(answer);
  }
}

void AnswerIndex::removeFirstLike(std::uint32_t answer) {
  Entry& head = _entries[_entries[answer].head];
  if (head.firstAlike == kNone) return;
  const Entry& taken = _entries[head.firstAlike];
  head.firstAlike = taken.nextAlike;

  if (taken.previous == kNone) {
    _entries[taken.node].firstRemaining = taken.next;
  } else {
    _entries[taken.previous].next = taken.next;
  }
  if (taken.next != kNone) _entries[taken.next].previous = taken.previous;
}

void AnswerIndex::noteMessage(std::uint32_t answer, std::uint32_t message) {
  std::uint32_t& first = _entries[_entries[answer].head].firstMessage;
  if (first == kNone) first = message;
  _expected = answer + 1;
  if (answer + kAhead < _answers.size()) {
    const models::NativeBotEngineAnswerDTO& ahead = _answers[answer + kAhead];
    prefetch(ahead.messageId.data());
    prefetch(ahead.answers.data());
  }
}

std::uint32_t AnswerIndex::firstMessage(std::string_view messageId, std::int64_t iteration) const {
  const std::uint32_t head = headOf(messageId, iteration);
  return head == kNone ? kNone : _entries[head].firstMessage;
}

}  // namespace kestrom::services
