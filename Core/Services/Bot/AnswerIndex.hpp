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
  static constexpr std::uint32_t kNone = FlatIndex::kNone;

  explicit AnswerIndex(std::span<const models::NativeBotEngineAnswerDTO> answers);

  /// The first answer of a node that remains, of any iteration; else `kNone`.
  std::uint32_t firstRemaining(std::string_view messageId) const;

  /// The first answer of a node in an iteration that remains; else `kNone`.
  std::uint32_t firstRemaining(std::string_view messageId, std::int64_t iteration) const;

  /// Adds all answers of a node that remain, of any iteration, to `answers`.
  void appendRemaining(std::string_view messageId, std::vector<std::uint32_t>& answers) const;

  /// Takes the first one that remains of those that share node and iteration with `answer`; nothing when none does.
  void removeFirstLike(std::uint32_t answer);

  /// Keeps that `message` was made of `answer`; the first one of that node and iteration counts.
  void noteMessage(std::uint32_t answer, std::uint32_t message);

  /// The first message that was made of an answer of a node in an iteration; else `kNone`.
  std::uint32_t firstMessage(std::string_view messageId, std::int64_t iteration) const;

 private:
  /// One answer. A node is told by its first answer, and so is a node in an iteration: by the head of its answers.
  struct Entry {
    std::uint32_t node = kNone;
    std::uint32_t head = kNone;
    // The answers of the node that remain, in both directions.
    std::uint32_t previous = kNone;
    std::uint32_t next = kNone;
    // The next one with the same node and iteration.
    std::uint32_t nextAlike = kNone;
    // Of a head. Those behind the first one that remains all remain, since an answer is only ever taken as the first of
    // its kind.
    std::uint32_t firstAlike = kNone;
    std::uint32_t lastAlike = kNone;
    std::uint32_t firstMessage = kNone;
    // Of a node's first answer.
    std::uint32_t firstRemaining = kNone;
    std::uint32_t lastOfNode = kNone;
  };

  struct NodeIteration {
    std::uint32_t node;
    std::int64_t iteration;
    friend bool operator==(const NodeIteration&, const NodeIteration&) = default;
  };

  void append(std::uint32_t answer);
  std::uint32_t insertHead(std::uint32_t answer);
  std::string_view idOf(std::uint32_t node) const;
  NodeIteration keyOf(std::uint32_t answer) const;
  std::uint32_t nodeOf(std::string_view messageId) const;
  std::uint32_t headOf(std::string_view messageId, std::int64_t iteration) const;

  std::span<const models::NativeBotEngineAnswerDTO> _answers;
  std::vector<Entry> _entries;
  FlatIndex _nodeOfId;
  /// Only of nodes with more than one answer: most have one, and need no second table.
  FlatIndex _headOfIteration;
  /// The answer behind the one that was used last.
  std::uint32_t _expected = 0;
};

}  // namespace kestrom::services
