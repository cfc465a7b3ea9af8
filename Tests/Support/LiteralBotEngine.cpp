#include "Tests/Support/LiteralBotEngine.hpp"

#include "Core/Models/BotTemplate.hpp"
#include "Core/Services/Bot/ConditionalEvaluation.hpp"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace kestrom::tests {

using models::AdventureNode;
using models::BotNode;
using models::ConversationDTO;
using models::NativeBotEngineAnswerDTO;
using MessageDTO = ConversationDTO::MessageDTO;

namespace {

struct Context {
  std::string moduleKey;
  std::string moduleId;
};

struct Details {
  BotNode node;
  Context context;
  std::optional<std::int64_t> iterationId;
};

bool hasKey(const std::vector<ConversationDTO::AnswerDTO>& entries, const std::string& key) {
  return std::any_of(entries.begin(), entries.end(), [&](const auto& entry) { return entry.key == key; });
}

bool saysYes(std::string key) {
  for (char& letter : key) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  return key == "true" || key == "yes";
}

struct Walk {
  std::vector<NativeBotEngineAnswerDTO> answers;
  double now;
  std::vector<NativeBotEngineAnswerDTO> remaining = answers;
  std::vector<MessageDTO> messages = {};
  std::optional<MessageDTO> lastEditable = std::nullopt;
  std::optional<Details> lastNode = std::nullopt;

  using Found = std::optional<NativeBotEngineAnswerDTO>;

  Found find(const std::string& id, std::optional<std::int64_t> iteration) const {
    for (const auto& answer : remaining) {
      if (answer.messageId == id && (!iteration || answer.iterationId == *iteration)) return answer;
    }
    return std::nullopt;
  }

  void remove(const std::string& id, std::int64_t iteration) {
    for (auto at = remaining.begin(); at != remaining.end(); ++at) {
      if (at->messageId == id && at->iterationId == iteration) {
        remaining.erase(at);
        return;
      }
    }
  }

  static MessageDTO answeredMessage(const NativeBotEngineAnswerDTO& answer, const std::string& text) {
    MessageDTO message;
    message.answers.emplace();
    for (const auto& entry : answer.answers) {
      if (entry.key != "mediaUrl") message.answers->push_back(entry);
    }
    message.text = text;
    message.messageId = answer.messageId;
    message.timestamp = answer.timestamp;
    message.editable = false;
    message.iterationId = answer.iterationId;
    return message;
  }

  MessageDTO questionMessage(const BotNode& node, const Context& context, std::optional<std::int64_t> iteration) const {
    MessageDTO message;
    message.text = node.text.value_or("");
    message.messageId = node.id;
    message.timestamp = now;
    message.options = node.options;
    message.type = node.type;
    message.editable = false;
    message.iterationId = iteration;
    message.messageKey = node.key;
    message.moduleId = context.moduleId;
    message.moduleKey = context.moduleKey;
    return message;
  }

  static void complete(MessageDTO& message, const std::vector<NativeBotEngineAnswerDTO>& given) {
    if (!message.options || !message.options->values) return;
    for (auto& value : *message.options->values) {
      value.completed = std::any_of(given.begin(), given.end(),
                                    [&](const auto& answer) { return hasKey(answer.answers, value.key); });
    }
  }

  void append(MessageDTO message, const Details& details) {
    if (message.answers) {
      messages.push_back(message);
      lastNode = details;
      return;
    }
    if (!lastNode || messages.empty() ||
        models::ConversationDTO::MessageDTO::MessageTypeDTO::bot == lastNode->node.type) {
      messages.push_back(message);
      lastNode = details;
      return;
    }
    messages.back().editable = true;
    messages.push_back(message);
    const BotNode& node = lastNode->node;
    MessageDTO revised = questionMessage(node, lastNode->context, lastNode->iterationId);
    revised.editable = true;
    if (node.adventures && !node.adventures->empty()) {
      std::vector<NativeBotEngineAnswerDTO> had;
      for (const auto& answer : answers) {
        if (answer.messageId == node.id) had.push_back(answer);
      }
      if (!had.empty()) had.pop_back();
      if (!had.empty() && node.repeatText) revised.text = *node.repeatText;
      complete(revised, had);
    }
    lastEditable = revised;
    lastNode = details;
  }

  bool walkNode(const BotNode& node, const Context& context, std::int64_t iteration, bool notRepeating) {
    if (node.sequence) return walkSequence(*node.sequence, node, {node.key, node.id}, iteration, notRepeating);
    if (node.adventures) return walkMenu(node, context);
    if (node.branches) return walkBranches(node, context, iteration, notRepeating);
    const Details details{node, context, notRepeating ? std::nullopt : std::optional(iteration)};
    const Found answer = find(node.id, details.iterationId);
    if (!answer) {
      append(questionMessage(node, context, details.iterationId), details);
      return true;
    }
    remove(answer->messageId, answer->iterationId);
    append(answeredMessage(*answer, node.text.value_or("")), details);
    return false;
  }

  bool walkSequence(const models::NodeList& list, const BotNode& owner, const Context& context, std::int64_t iteration,
                    bool notRepeating) {
    std::vector<BotNode> children(list.begin(), list.end());
    const bool isRepeating = owner.repeatable.value_or(false);
    std::int64_t count = 0;
    while (true) {
      for (std::size_t index = 0; index < children.size(); ++index) {
        const BotNode child = children[index];
        if (walkNode(child, context, isRepeating ? count : iteration, !isRepeating && notRepeating)) return true;
      }
      if (!isRepeating || children.empty()) return false;
      const BotNode first = children.front();
      const std::int64_t next = count + 1;
      const std::string repeatText = owner.repeatableDetails ? owner.repeatableDetails->repeatText : "missing";
      std::int64_t maxRepeats = std::numeric_limits<std::int64_t>::max();
      if (owner.repeatableDetails && owner.repeatableDetails->maxRepeats) {
        maxRepeats = *owner.repeatableDetails->maxRepeats;
      }
      if (count == 0) children.front().text = repeatText;
      if (const Found gate = find(first.id, next)) {
        if (maxRepeats > next && !gate->answers.empty() && saysYes(gate->answers.front().key)) {
          count = next;
          continue;
        }
        append(answeredMessage(*gate, repeatText), {first, context, gate->iterationId});
        return false;
      }
      const auto message = std::find_if(messages.begin(), messages.end(), [&](const MessageDTO& candidate) {
        return candidate.messageId == first.id && candidate.iterationId == count;
      });
      if (message == messages.end() || !message->answers || message->answers->empty()) return false;
      if (!saysYes(message->answers->front().key) || next >= maxRepeats) return false;
      count = next;
    }
  }

  bool walkMenu(const BotNode& node, const Context& context) {
    std::vector<NativeBotEngineAnswerDTO> given;
    for (const auto& answer : remaining) {
      if (answer.messageId == node.id) given.push_back(answer);
    }
    if (given.empty()) {
      append(questionMessage(node, context, 0), {node, context, 0});
      return true;
    }
    const std::string text = node.text.value_or("");
    const std::string again = node.repeatText.value_or(text);
    for (std::size_t index = 0; index < given.size(); ++index) {
      const auto& answer = given[index];
      const auto arm =
          std::find_if(node.adventures->begin(), node.adventures->end(),
                       [&](const AdventureNode& candidate) { return hasKey(answer.answers, candidate.key); });
      if (arm == node.adventures->end()) return true;
      remove(answer.messageId, answer.iterationId);
      append(answeredMessage(answer, index == 0 ? text : again), {node, context, answer.iterationId});
      if (walkSequence(arm->adventure.sequence, node, context, 0, true)) return true;
      if (index + 1 == given.size() && given.size() < node.adventures->size()) {
        MessageDTO offer = questionMessage(node, context, answer.iterationId + 1);
        offer.text = again;
        offer.timestamp.reset();
        complete(offer, given);
        offer.type = MessageDTO::MessageTypeDTO::selectSingleModule;
        append(offer, {node, context, answer.iterationId});
        return true;
      }
    }
    return false;
  }

  bool walkBranches(const BotNode& node, const Context& context, std::int64_t iteration, bool notRepeating) {
    const Details details{node, context, notRepeating ? std::nullopt : std::optional(iteration)};
    const Found answer = find(node.id, details.iterationId);
    if (!answer) {
      append(questionMessage(node, context, details.iterationId), details);
      return true;
    }
    append(answeredMessage(*answer, node.text.value_or("")), details);
    const auto* branch = services::selectBranch(*answer, node, *node.branches);
    return branch && walkSequence(branch->sequence, node, context, iteration, notRepeating);
  }
};

}  // namespace

ConversationDTO LiteralBotEngine::conversation(std::span<const NativeBotEngineAnswerDTO> answers,
                                               const models::NodeList& sequence) const {
  Walk walk{.answers = {answers.begin(), answers.end()}, .now = _now};
  const auto total = static_cast<std::int64_t>(sequence.size());
  std::int64_t current = 0;
  for (; current < total; ++current) {
    const BotNode& node = sequence[static_cast<std::size_t>(current)];
    if (!node.sequence && !node.adventures && !node.branches) continue;
    if (walk.walkNode(node, {node.key, node.id}, 0, true)) break;
  }
  return {{total, current, current == total}, walk.lastEditable, walk.messages};
}

}  // namespace kestrom::tests
