#pragma once

#include "Core/Models/ConversationDTO.hpp"
#include "Core/Models/NodeList.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrom::models {

/// One arm of a menu.
struct AdventureNode {
  struct Adventure {
    NodeList sequence;

    friend bool operator==(const Adventure&, const Adventure&) = default;
  };

  /// Label of the arm.
  std::string value;
  /// Compared with the keys of an answer to find the arm that the user chose.
  std::string key;
  Adventure adventure;

  friend bool operator==(const AdventureNode&, const AdventureNode&) = default;
};

/// One guarded arm of a branching node.
struct ConditionalNode {
  enum class LogicalOperator : std::uint8_t { AND, OR };

  /// One test of the node's answer against a literal.
  struct Case {
    enum class Operator : std::uint8_t { equal, notEqual, greaterThan, lessThan, contains, doesNotContain };

    /// The literal. In JSON a bare value, tried as a number, then as a string, then as a boolean.
    struct Value {
      struct Number {
        double value;
        friend bool operator==(const Number&, const Number&) = default;
      };
      struct String {
        std::string value;
        friend bool operator==(const String&, const String&) = default;
      };
      struct Bool {
        bool value;
        friend bool operator==(const Bool&, const Bool&) = default;
      };

      std::variant<Number, String, Bool> form;

      friend bool operator==(const Value&, const Value&) = default;
    };

    Operator operation = Operator::equal;
    Value value;

    friend bool operator==(const Case&, const Case&) = default;
  };

  struct Branch {
    NodeList sequence;

    friend bool operator==(const Branch&, const Branch&) = default;
  };

  LogicalOperator logicalOperator = LogicalOperator::AND;
  std::vector<Case> cases;
  /// A guard without a branch matches and leads nowhere.
  std::optional<Branch> branch;

  friend bool operator==(const ConditionalNode&, const ConditionalNode&) = default;
};

/// A node of the template's tree. Which list it holds decides how it is walked, in this order: `sequence` (children
/// walked in order), `adventures` (a menu), `branches` (a branching node), none of them (a leaf). An empty list counts
/// as present.
struct BotNode {
  /// Limits and text of a repeat.
  struct RepeatableDetails {
    /// Upper bound of passes; absent means no bound.
    std::optional<std::int64_t> maxRepeats;
    /// Replaces the first child's text on repeats.
    std::string repeatText;

    friend bool operator==(const RepeatableDetails&, const RepeatableDetails&) = default;
  };

  ConversationDTO::MessageDTO::MessageTypeDTO type = ConversationDTO::MessageDTO::MessageTypeDTO::module;
  std::optional<ConversationDTO::MessageDTO::OptionsDTO> options;
  std::string key;
  /// Identity of the node, under which its answers are filed.
  std::string id;
  /// Question or statement, with placeholders.
  std::optional<std::string> text;
  /// Text of a menu from its second showing on.
  std::optional<std::string> repeatText;
  std::optional<bool> repeatable;
  std::optional<NodeList> sequence;
  std::optional<std::vector<AdventureNode>> adventures;
  std::optional<std::vector<ConditionalNode>> branches;
  std::optional<RepeatableDetails> repeatableDetails;

  friend bool operator==(const BotNode&, const BotNode&) = default;
};

/// A bot's decision tree. Decoded once, then only read; may be shared between threads. Its root object has the one key
/// "sequence".
struct BotTemplate {
  /// Levels of node lists within each other, the root's list being the first, that a template may have. Deeper ones are
  /// a decoding error: no author nests by hand beyond a few dozen, and the bound keeps what follows the tree bounded.
  static constexpr std::size_t kMaximumNesting = 1024;

  NodeList sequence;

  friend bool operator==(const BotTemplate&, const BotTemplate&) = default;
};

inline std::size_t NodeList::size() const {
  return _nodes.size();
}
inline const BotNode* NodeList::begin() const {
  return _nodes.data();
}
inline const BotNode* NodeList::end() const {
  return _nodes.data() + _nodes.size();
}
inline const BotNode& NodeList::operator[](std::size_t index) const {
  return _nodes[index];
}

}  // namespace kestrom::models
