#pragma once

#include "Core/Models/BotTemplate.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Short words for templates and answers in tests. A node "pool" asks "pool?" and has the key "pool.key".
namespace kestrom::tests {

using NodeType = models::ConversationDTO::MessageDTO::MessageTypeDTO;
using Nodes = std::vector<models::BotNode>;
using Answer = models::NativeBotEngineAnswerDTO;
using Answers = std::vector<Answer>;

/// "arm 3" of "arm " and 3.
inline std::string numbered(std::string name, std::size_t number) {
  return name += std::to_string(number);
}

inline models::BotNode leaf(const std::string& id, NodeType type = NodeType::text) {
  models::BotNode node;
  node.type = type;
  node.id = id;
  node.key = id + ".key";
  node.text = id + "?";
  return node;
}

inline models::BotNode module(const std::string& id, Nodes children) {
  models::BotNode node = leaf(id, NodeType::module);
  node.sequence = models::NodeList(std::move(children));
  return node;
}

/// The node, repeating what it holds; without details when `repeatText` is absent.
inline models::BotNode repeating(models::BotNode node, std::optional<std::string> repeatText = std::nullopt,
                                 std::optional<std::int64_t> maxRepeats = std::nullopt) {
  node.repeatable = true;
  if (repeatText) node.repeatableDetails = {maxRepeats, *repeatText};
  return node;
}

inline models::AdventureNode arm(const std::string& key, Nodes children) {
  return {.value = "Go to " + key, .key = key, .adventure = {models::NodeList(std::move(children))}};
}

/// A menu that offers its arms as options and asks "<id> again?" from the second time on.
inline models::BotNode menu(const std::string& id, std::vector<models::AdventureNode> arms) {
  models::BotNode node = leaf(id, NodeType::cyoa);
  node.repeatText = id + " again?";
  auto& values = node.options.emplace().values.emplace();
  for (const models::AdventureNode& each : arms) values.push_back({each.value, each.key, {}, {}, {}});
  node.adventures = std::move(arms);
  return node;
}

inline models::ConditionalNode::Case test(models::ConditionalNode::Case::Operator operation, const char* value) {
  return {operation, {models::ConditionalNode::Case::Value::String{value}}};
}

/// A guard that holds when the answer is `value`.
inline models::ConditionalNode when(const char* value, Nodes children) {
  return {.logicalOperator = models::ConditionalNode::LogicalOperator::AND,
          .cases = {test(models::ConditionalNode::Case::Operator::equal, value)},
          .branch = models::ConditionalNode::Branch{models::NodeList(std::move(children))}};
}

inline models::BotNode branching(const std::string& id, std::vector<models::ConditionalNode> branches) {
  models::BotNode node = leaf(id, NodeType::boolean);
  node.branches = std::move(branches);
  return node;
}

inline models::ConversationDTO::AnswerDTO entry(const std::string& key, const std::string& value = "") {
  return {key, models::ConversationDTO::AnswerDTO::Value::string(value)};
}

/// An answer with one entry.
inline Answer answer(const std::string& messageId, const std::string& key, std::int64_t iteration = 0) {
  Answer given;
  given.answers = {entry(key)};
  given.locationType = "none";
  given.messageId = messageId;
  given.iterationId = iteration;
  given.timestamp = 1'690'000'000'000;
  return given;
}

}  // namespace kestrom::tests
