#include "Core/Services/Bot/NativeBotEngine.hpp"

#include "Tests/Support/LiteralBotEngine.hpp"
#include "Tests/Support/TemplateBuilder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::services {

namespace {

using models::BotNode;
using models::ConversationDTO;
using models::NodeList;
using tests::Answer;
using tests::Answers;
using MessageDTO = ConversationDTO::MessageDTO;

constexpr double kNow = 1'700'000'000;

/// Templates and answers by chance. Names are few, so that nodes, arms and answers meet under the same ones.
class Chance {
 public:
  explicit Chance(std::uint32_t seed) : _random(seed) {}

  /// True in one of `outOf` cases.
  bool once(int outOf) { return below(outOf) == 0; }
  int below(int bound) { return static_cast<int>(_random() % static_cast<std::uint32_t>(bound)); }
  std::size_t placeIn(std::size_t size) { return _random() % size; }

  std::string id() { return std::string(1, static_cast<char>('a' + below(6))); }
  std::string key() {
    static const std::vector<std::string> kKeys{"yes", "TRUE", "no", "x", "y", "mediaUrl"};
    return kKeys[placeIn(once(6) ? kKeys.size() : kKeys.size() - 1)];
  }

  NodeList list(int depth) {
    std::vector<BotNode> nodes;
    for (int count = once(12) ? 0 : 1 + below(3); count > 0; --count) nodes.push_back(node(depth));
    return NodeList(std::move(nodes));
  }

  BotNode node(int depth) {
    BotNode node = tests::leaf(id(), static_cast<tests::NodeType>(below(16)));
    if (once(8)) node.text.reset();
    if (once(2)) node.repeatText = node.id + " again";
    if (once(2)) options(node);
    const int kind = depth == 0 ? 0 : below(8);
    if (kind == 1 || kind == 2) node.sequence = list(depth - 1);
    if (kind == 3 || kind == 4 || (kind == 1 && once(4))) arms(node, depth);
    if (kind == 5 || kind == 6 || (kind == 3 && once(4))) branches(node, depth);
    if (once(2)) repeat(node);
    return node;
  }

  Answer answer(std::string messageId, std::int64_t iteration) {
    Answer given = tests::answer(messageId, key(), iteration);
    given.timestamp += below(1000);
    if (once(10)) given.answers.clear();
    while (once(4)) given.answers.push_back(tests::entry(key(), key()));
    return given;
  }

  void mutate(Answers& answers) {
    if (answers.empty()) return;
    const auto at = answers.begin() + static_cast<std::ptrdiff_t>(placeIn(answers.size()));
    switch (below(5)) {
      case 0:
        answers.erase(at);
        break;
      case 1:
        answers.insert(at, Answer(*at));
        break;
      case 2:
        *at = answer(at->messageId, at->iterationId);
        break;
      case 3:
        at->iterationId += below(3) - 1;
        break;
      default:
        std::swap(*at, answers.front());
    }
  }

 private:
  void options(BotNode& node) {
    node.options.emplace().maxLength = below(9);
    if (once(4)) return;
    auto& values = node.options->values.emplace();
    for (int count = below(4); count > 0; --count) values.push_back({"Option", key(), {}, once(3), {}});
  }

  void arms(BotNode& node, int depth) {
    auto& arms = node.adventures.emplace();
    // Many arms are found by another road than few.
    const bool many = once(6);
    for (int count = many ? 12 : below(4); count > 0; --count) {
      arms.push_back({"Arm", key(), {list(many ? 0 : depth - 1)}});
    }
  }

  void branches(BotNode& node, int depth) {
    auto& guards = node.branches.emplace();
    for (int count = below(3); count > 0; --count) {
      models::ConditionalNode& guard = guards.emplace_back();
      const std::string value = key();
      if (!once(3)) guard.cases.push_back(tests::test(models::ConditionalNode::Case::Operator::equal, value.c_str()));
      if (!once(5)) guard.branch.emplace().sequence = list(depth - 1);
    }
  }

  void repeat(BotNode& node) {
    node.repeatable = !once(6);
    if (once(4)) return;
    node.repeatableDetails.emplace().repeatText = "more";
    if (once(2)) node.repeatableDetails->maxRepeats = below(4);
  }

  std::mt19937 _random;
};

/// Names what differs first, since whole conversations are too long to read.
std::string difference(const ConversationDTO& a, const ConversationDTO& b) {
  if (a.progress != b.progress) return "progress";
  if (a.lastEditableAnswer != b.lastEditableAnswer) return "last editable answer";
  const auto [left, right] = std::ranges::mismatch(a.updatedMessages, b.updatedMessages);
  return "message " + std::to_string(left - a.updatedMessages.begin()) + " of " +
         std::to_string(a.updatedMessages.size()) + " and " + std::to_string(b.updatedMessages.size());
}

}  // namespace

TEST(WalkDifferential, AgreesWithTheLiteralWalk) {
  const NativeBotEngine engine([] { return foundation::Date::fromSecondsSince1970(kNow); });
  const tests::LiteralBotEngine literal(kNow);
  constexpr std::uint32_t kRounds = 1500;
  std::size_t longest = 0;

  for (std::uint32_t seed = 0; seed < kRounds; ++seed) {
    Chance chance(seed);
    const NodeList sequence = chance.list(4);
    Answers answers;
    for (int count = chance.below(6); count > 0; --count)
      answers.push_back(chance.answer(chance.id(), chance.below(3)));

    // Answering what is asked leads deep; changing what was said then leaves answers off the path.
    for (int turn = 0; turn < 11; ++turn) {
      const ConversationDTO conversation = engine.conversation(answers, sequence);
      const ConversationDTO expected = literal.conversation(answers, sequence);
      ASSERT_TRUE(conversation == expected)
          << "seed " << seed << ", turn " << turn << ": " << difference(conversation, expected);
      longest = std::max(longest, conversation.updatedMessages.size());
      const bool isAsked = !conversation.updatedMessages.empty() && !conversation.updatedMessages.back().answers;
      if (isAsked && !chance.once(6)) {
        const MessageDTO& question = conversation.updatedMessages.back();
        Answer given = chance.answer(*question.messageId, question.iterationId.value_or(0));
        const bool hasChoices = question.options && question.options->values && !question.options->values->empty();
        if (hasChoices && !given.answers.empty() && !chance.once(4)) {
          const auto& values = *question.options->values;
          given.answers.front().key = values[chance.placeIn(values.size())].key;
        }
        answers.push_back(std::move(given));
      } else {
        chance.mutate(answers);
      }
    }
  }
  // The chances are set so that walks go deep enough to meet every step.
  EXPECT_GT(longest, 12U);
}

}  // namespace kestrom::services
