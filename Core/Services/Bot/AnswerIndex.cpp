#include "Core/Services/Bot/AnswerIndex.hpp"

namespace kestrom::services {

std::size_t AnswerIndex::NodeIterationHash::operator()(const NodeIteration& key) const {
  // Iterations count up from zero and nodes are numbered densely: the multiplications spread both over all bits, of
  // which the upper ones are the good ones.
  const std::uint64_t mixed =
      (static_cast<std::uint64_t>(key.iteration) * 0x9e3779b97f4a7c15U + key.node + 1) * 0xff51afd7ed558ccdU;
  return mixed >> 32U;
}

AnswerIndex::AnswerIndex(std::span<const models::NativeBotEngineAnswerDTO> answers)
    : _answers(answers), _entries(answers.size()), _nodeOfId(answers.size()) {
  _nodes.reserve(answers.size());
  for (std::uint32_t answer = 0; answer < answers.size(); ++answer) {
    const auto fresh = static_cast<std::uint32_t>(_nodes.size());
    Entry& entry = _entries[answer];
    entry.node = _nodeOfId.insert(answers[answer].messageId, fresh);
    if (entry.node == fresh) {
      _nodes.push_back({answer, answer, answer});
      entry.head = entry.firstAlike = entry.lastAlike = answer;
    } else {
      append(answer, _nodes[entry.node]);
    }
  }
}

/// Adds an answer to a node that has some.
void AnswerIndex::append(std::uint32_t answer, Node& node) {
  Entry& entry = _entries[answer];
  if (node.first == node.last) _headOfIteration.insert({entry.node, _answers[node.first].iterationId}, node.first);
  _entries[node.last].next = answer;
  entry.previous = node.last;
  node.last = answer;

  entry.head = _headOfIteration.insert({entry.node, _answers[answer].iterationId}, answer);
  Entry& head = _entries[entry.head];
  if (entry.head == answer) {
    head.firstAlike = answer;
  } else {
    _entries[head.lastAlike].nextAlike = answer;
  }
  head.lastAlike = answer;
}

std::uint32_t AnswerIndex::headOf(std::string_view messageId, std::int64_t iteration) const {
  const std::uint32_t number = _nodeOfId.find(messageId);
  if (number == kNone) return kNone;
  const Node& node = _nodes[number];
  if (node.first == node.last) return _answers[node.first].iterationId == iteration ? node.first : kNone;
  return _headOfIteration.find({number, iteration});
}

std::uint32_t AnswerIndex::firstRemaining(std::string_view messageId) const {
  const std::uint32_t number = _nodeOfId.find(messageId);
  return number == kNone ? kNone : _nodes[number].firstRemaining;
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
    _nodes[taken.node].firstRemaining = taken.next;
  } else {
    _entries[taken.previous].next = taken.next;
  }
  if (taken.next != kNone) _entries[taken.next].previous = taken.previous;
}

void AnswerIndex::noteMessage(std::uint32_t answer, std::uint32_t message) {
  std::uint32_t& first = _entries[_entries[answer].head].firstMessage;
  if (first == kNone) first = message;
}

std::uint32_t AnswerIndex::firstMessage(std::string_view messageId, std::int64_t iteration) const {
  const std::uint32_t head = headOf(messageId, iteration);
  return head == kNone ? kNone : _entries[head].firstMessage;
}

}  // namespace kestrom::services
