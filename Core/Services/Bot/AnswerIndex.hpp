#pragma once

#include "Core/Models/NativeBotEngineAnswerDTO.hpp"
#include "Core/Services/Bot/FlatIndex.hpp"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace kestrom::services {

/// The answers of one walk, found by the identity of their node and by iteration: which of them remain, and which
/// message was the first made of them. Stands for searching the lists, which a walk does for every node. Answers are
/// told by their place in the list; "first" is by that place. The list must outlive the index.
class AnswerIndex {
 public:
  static constexpr std::uint32_t kNone = FlatIndex<std::string_view>::kNone;

  explicit AnswerIndex(std::span<const models::NativeBotEngineAnswerDTO> answers);

  /// The first answer of a node that remains, of any iteration; else `kNone`.
  std::uint32_t firstRemaining(std::string_view messageId) const;

  /// The first answer of a node in an iteration that remains; else `kNone`.
  std::uint32_t firstRemaining(std::string_view messageId, std::int64_t iteration) const;

  /// Adds all answers of a node that remain, of any iteration, to `answers`.
  void appendRemaining(std::string_view messageId, std::vector<std::uint32_t>& answers) const;

  /// Takes the first one that remains of those that share node and iteration with `answer`; nothing when none does.
  void removeFirstLike(std::uint32_t answer);

  /// Keeps that `message` was made of `answer`, if it is the first one of that node and iteration.
  void noteMessage(std::uint32_t answer, std::uint32_t message);

  /// The first message that was made of an answer of a node in an iteration; else `kNone`.
  std::uint32_t firstMessage(std::string_view messageId, std::int64_t iteration) const;

 private:
  /// One answer. Answers that share node and iteration are told by the first of them, their head.
  struct Entry {
    std::uint32_t node = kNone;
    std::uint32_t head = kNone;
    // The answers of the node that remain, in both directions.
    std::uint32_t previous = kNone;
    std::uint32_t next = kNone;
    // The next one with the same node and iteration.
    std::uint32_t nextAlike = kNone;
    // Of a head only. Those behind the first one that remains all remain, since an answer is only ever taken as the
    // first of its kind.
    std::uint32_t firstAlike = kNone;
    std::uint32_t lastAlike = kNone;
    std::uint32_t firstMessage = kNone;
  };

  /// The answers of one node.
  struct Node {
    std::uint32_t first;
    std::uint32_t last;
    std::uint32_t firstRemaining;
  };

  struct NodeIteration {
    std::uint32_t node;
    std::int64_t iteration;
    friend bool operator==(const NodeIteration&, const NodeIteration&) = default;
  };
  struct NodeIterationHash {
    std::size_t operator()(const NodeIteration& key) const;
  };

  void append(std::uint32_t answer, Node& node);
  std::uint32_t headOf(std::string_view messageId, std::int64_t iteration) const;

  std::span<const models::NativeBotEngineAnswerDTO> _answers;
  std::vector<Entry> _entries;
  std::vector<Node> _nodes;
  FlatIndex<std::string_view> _nodeOfId;
  /// Only of nodes with more than one answer: most have one, and need no second table.
  FlatIndex<NodeIteration, NodeIterationHash> _headOfIteration;
};

}  // namespace kestrom::services
