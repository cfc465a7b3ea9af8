#include "Core/Services/Bot/NativeBotEngine.hpp"

#include "Tests/Support/SmallStack.hpp"
#include "Tests/Support/TemplateBuilder.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::services {

namespace {

using models::BotNode;
using models::ConversationDTO;
using models::NodeList;
using tests::answer;
using tests::Answers;
using tests::arm;
using tests::branching;
using tests::entry;
using tests::leaf;
using tests::menu;
using tests::module;
using tests::Nodes;
using tests::NodeType;
using tests::numbered;
using tests::repeating;
using tests::when;
using Lines = std::vector<std::string>;
using MessageDTO = ConversationDTO::MessageDTO;

constexpr double kNow = 1'700'000'000;

ConversationDTO walk(Nodes modules, const Answers& answers) {
  const NativeBotEngine engine([] { return foundation::Date::fromSecondsSince1970(kNow); });
  return engine.conversation(answers, NodeList(std::move(modules)));
}

/// "pool?#1 <- yes" for an answer of iteration 1, "ask pool?" for a question outside repeating; completed choices
/// follow.
std::string line(const MessageDTO& message) {
  std::string text = message.text;
  if (message.iterationId) text += "#" + std::to_string(*message.iterationId);
  if (message.answers) {
    text += " <-";
    for (const auto& each : *message.answers) text += " " + each.key;
    return message.editable == true ? text + " (editable)" : text;
  }
  if (message.options && message.options->values) {
    for (const auto& value : *message.options->values) {
      if (value.completed == true) text += " -" + value.key;
    }
  }
  return text;
}

Lines story(const ConversationDTO& conversation) {
  Lines lines;
  for (const MessageDTO& message : conversation.updatedMessages) {
    lines.push_back((message.answers ? "" : "ask ") + line(message));
  }
  if (conversation.lastEditableAnswer) lines.push_back("revise " + line(*conversation.lastEditableAnswer));
  const auto& progress = conversation.progress;
  lines.push_back(std::to_string(progress.currentModuleCount) + " of " + std::to_string(progress.totalModuleCount) +
                  (progress.isFinished ? ", finished" : ""));
  return lines;
}

Lines story(Nodes modules, const Answers& answers) {
  return story(walk(std::move(modules), answers));
}

}  // namespace

TEST(NativeBotEngine, CountsModules) {
  EXPECT_EQ(story({}, {}), (Lines{"0 of 0, finished"}));
  EXPECT_EQ(story({module("m", {leaf("a")})}, {}), (Lines{"ask a?", "0 of 1"}));
  EXPECT_EQ(story({module("m", {leaf("a")})}, {answer("a", "x")}), (Lines{"a?#0 <- x", "1 of 1, finished"}));
  EXPECT_EQ(story({module("m", {leaf("a")}), leaf("silent"), module("n", {leaf("b")})}, {answer("a", "x")}),
            (Lines{"a?#0 <- x (editable)", "ask b?", "revise a?", "2 of 3"}));
  EXPECT_EQ(story({module("empty", {}), leaf("silent")}, {}), (Lines{"2 of 2, finished"}));
}

TEST(NativeBotEngine, FillsTheMessages) {
  BotNode choice = leaf("b", NodeType::selectOne);
  choice.options.emplace().maxLength = 7;
  choice.options->values = {{"One", "1", true, {}, {}}};
  BotNode bare = leaf("a", NodeType::photo);
  bare.text.reset();
  auto given = answer("a", "photo", 4);
  given.answers = {entry("mediaUrl", "file:///a"), entry("photo", "p"), entry("mediaUrl"), entry("mediaURL")};
  given.timestamp = 1'690'000'000'123;

  const ConversationDTO conversation =
      walk({module("outer", {module("inner", {bare}), branching("gate", {when("yes", {choice})})})},
           {given, answer("gate", "yes")});

  MessageDTO first;
  first.answers = {entry("photo", "p"), entry("mediaURL")};
  first.messageId = "a";
  first.timestamp = 1'690'000'000'123;
  first.editable = false;
  first.iterationId = 4;
  MessageDTO question;
  question.text = "b?";
  question.messageId = "b";
  question.timestamp = kNow;
  question.options = choice.options;
  question.type = NodeType::selectOne;
  question.editable = false;
  question.messageKey = "b.key";
  question.moduleId = "outer";
  question.moduleKey = "outer.key";
  MessageDTO revisable = question;
  revisable.text = "gate?";
  revisable.messageId = "gate";
  revisable.options.reset();
  revisable.type = NodeType::boolean;
  revisable.editable = true;
  revisable.messageKey = "gate.key";

  ASSERT_EQ(conversation.updatedMessages.size(), 3U);
  EXPECT_EQ(conversation.updatedMessages[0], first);
  EXPECT_EQ(conversation.updatedMessages[2], question);
  EXPECT_EQ(conversation.lastEditableAnswer, revisable);
}

TEST(NativeBotEngine, OffersTheLastAnswerForRevisionButNoStatement) {
  const Nodes modules{module("m", {leaf("hello", NodeType::bot), leaf("a"), leaf("b")})};
  EXPECT_EQ(story(modules, {answer("hello", "")}), (Lines{"hello?#0 <- ", "ask a?", "0 of 1"}));
  EXPECT_EQ(story(modules, {answer("b", "x"), answer("hello", ""), answer("off the path", "x")}),
            (Lines{"hello?#0 <- ", "ask a?", "0 of 1"}));
  EXPECT_EQ(story(modules, {answer("hello", ""), answer("a", "x")}),
            (Lines{"hello?#0 <- ", "a?#0 <- x (editable)", "ask b?", "revise a?", "0 of 1"}));
}

TEST(NativeBotEngine, ConsumesAnswersOfLeavesButNotOfBranchingNodes) {
  EXPECT_EQ(story({module("m", {leaf("a"), leaf("a"), leaf("a")})}, {answer("a", "x", 3), answer("a", "y", 1)}),
            (Lines{"a?#3 <- x", "a?#1 <- y (editable)", "ask a?", "revise a?", "0 of 1"}));
  EXPECT_EQ(story({module("m", {branching("a", {when("x", {leaf("b")})}), branching("a", {}), leaf("a"), leaf("c")})},
                  {answer("a", "x"), answer("b", "z")}),
            (Lines{"a?#0 <- x", "b?#0 <- z", "a?#0 <- x", "a?#0 <- x (editable)", "ask c?", "revise a?", "0 of 1"}));
}

TEST(NativeBotEngine, TakesTheModuleOfTheNearestSequence) {
  const Nodes modules{module("outer", {menu("pick", {arm("go", {module("inner", {leaf("a")}), leaf("b")})})}),
                      menu("top", {arm("up", {leaf("c")})})};
  const auto moduleOfQuestion = [&](const Answers& answers) {
    const MessageDTO question = walk(modules, answers).updatedMessages.back();
    return *question.moduleId + " " + *question.moduleKey;
  };
  EXPECT_EQ(moduleOfQuestion({}), "outer outer.key");
  EXPECT_EQ(moduleOfQuestion({answer("pick", "go")}), "inner inner.key");
  EXPECT_EQ(moduleOfQuestion({answer("pick", "go"), answer("a", "x")}), "outer outer.key");
  const Answers toTheTop{answer("pick", "go"), answer("a", "x"), answer("b", "x")};
  EXPECT_EQ(moduleOfQuestion(toTheTop), "top top.key");
  Answers intoTheTop = toTheTop;
  intoTheTop.push_back(answer("top", "up"));
  EXPECT_EQ(moduleOfQuestion(intoTheTop), "top top.key");
}

TEST(NativeBotEngine, PrefersTheSequenceThenTheMenuThenTheBranches) {
  BotNode all = menu("n", {arm("x", {leaf("in menu")})});
  all.branches = {when("x", {leaf("in branch")})};
  EXPECT_EQ(story({module("m", {all})}, {answer("n", "x")}),
            (Lines{"n?#0 <- x (editable)", "ask in menu?", "revise n?#0", "0 of 1"}));
  all.sequence = NodeList();
  EXPECT_EQ(story({module("m", {all, leaf("a")})}, {answer("n", "x")}), (Lines{"ask a?", "0 of 1"}));
}

TEST(NativeBotEngine, RepeatsAModuleWhileItsGateSaysYes) {
  const Nodes open{repeating(module("m", {leaf("gate"), leaf("a")}), "one more?"), module("n", {leaf("end")})};
  struct Row {
    const char* label;
    Answers answers;
    Lines want;
  };
  const Row rows[] = {
      {"first pass asks as authored", {}, {"ask gate?#0", "0 of 2"}},
      {"the gate's no at first does not skip the pass",
       {answer("gate", "no")},
       {"gate?#0 <- no (editable)", "ask a?#0", "revise gate?#0", "0 of 2"}},
      {"no after the first pass ends it",
       {answer("gate", "no"), answer("a", "x")},
       {"gate?#0 <- no", "a?#0 <- x (editable)", "ask end?", "revise a?#0", "1 of 2"}},
      {"yes asks once more",
       {answer("gate", "YES"), answer("a", "x")},
       {"gate?#0 <- YES", "a?#0 <- x (editable)", "ask one more?#1", "revise a?#0", "0 of 2"}},
      {"more words are no yes",
       {answer("gate", "yes please"), answer("a", "x")},
       {"gate?#0 <- yes please", "a?#0 <- x (editable)", "ask end?", "revise a?#0", "1 of 2"}},
      {"the second showing says yes",
       {answer("gate", "yes"), answer("a", "x"), answer("gate", "True", 1)},
       {"gate?#0 <- yes", "a?#0 <- x", "one more?#1 <- True (editable)", "ask a?#1", "revise one more?#1", "0 of 2"}},
      {"closed right after the first pass: the revision asks as authored",
       {answer("gate", "yes"), answer("a", "x"), answer("gate", "no", 1)},
       {"gate?#0 <- yes", "a?#0 <- x", "one more?#1 <- no (editable)", "ask end?", "revise gate?#1", "1 of 2"}},
      {"closed later: the revision asks for one more",
       {answer("gate", "yes"), answer("a", "x"), answer("gate", "yes", 1), answer("a", "y", 1),
        answer("gate", "no", 2)},
       {"gate?#0 <- yes", "a?#0 <- x", "one more?#1 <- yes", "a?#1 <- y", "one more?#2 <- no (editable)", "ask end?",
        "revise one more?#2", "1 of 2"}},
      {"an iteration is not answered by another", {answer("gate", "yes", 1)}, {"ask gate?#0", "0 of 2"}},
  };
  for (const Row& row : rows) EXPECT_EQ(story(open, row.answers), row.want) << row.label;
}

TEST(NativeBotEngine, DecidesARepeatByTheGatesFirstEntry) {
  const Nodes modules{repeating(module("m", {leaf("gate")})), module("n", {leaf("end")})};
  const auto withEntries = [](std::int64_t iteration, std::vector<ConversationDTO::AnswerDTO> entries) {
    auto given = answer("gate", "", iteration);
    given.answers = std::move(entries);
    return given;
  };
  struct Row {
    const char* label;
    Answers answers;
    Lines want;
  };
  const Row rows[] = {
      {"a later medium does not count",
       {withEntries(0, {entry("true"), entry("mediaUrl")})},
       {"gate?#0 <- true (editable)", "ask missing#1", "revise gate?#0", "0 of 2"}},
      {"nor does a later yes",
       {withEntries(0, {entry("no"), entry("yes")})},
       {"gate?#0 <- no yes (editable)", "ask end?", "revise gate?#0", "1 of 2"}},
      {"in the message a leading medium is gone",
       {withEntries(0, {entry("mediaUrl"), entry("yes")})},
       {"gate?#0 <- yes (editable)", "ask missing#1", "revise gate?#0", "0 of 2"}},
      {"in the answer it stands",
       {answer("gate", "yes"), withEntries(1, {entry("mediaUrl"), entry("yes")})},
       {"gate?#0 <- yes", "missing#1 <- yes (editable)", "ask end?", "revise gate?#1", "1 of 2"}},
      {"nothing in the message",
       {withEntries(0, {entry("mediaUrl")})},
       {"gate?#0 <- (editable)", "ask end?", "revise gate?#0", "1 of 2"}},
      {"nothing in the answer",
       {answer("gate", "yes"), withEntries(1, {})},
       {"gate?#0 <- yes", "missing#1 <- (editable)", "ask end?", "revise gate?#1", "1 of 2"}},
  };
  for (const Row& row : rows) EXPECT_EQ(story(modules, row.answers), row.want) << row.label;
}

TEST(NativeBotEngine, CountsPassesUpToTheBound) {
  const auto passes = [](std::int64_t maxRepeats) {
    Answers answers;
    for (std::int64_t iteration = 0; iteration < 6; ++iteration) answers.push_back(answer("gate", "yes", iteration));
    return story({repeating(module("m", {leaf("gate")}), "more?", maxRepeats)}, answers);
  };
  EXPECT_EQ(passes(3),
            (Lines{"gate?#0 <- yes", "more?#1 <- yes", "more?#2 <- yes", "more?#3 <- yes", "1 of 1, finished"}));
  EXPECT_EQ(passes(1), (Lines{"gate?#0 <- yes", "more?#1 <- yes", "1 of 1, finished"}));
  EXPECT_EQ(passes(std::numeric_limits<std::int64_t>::min()), passes(1));
  // Without an answer for the next showing it is not shown at the bound.
  const Nodes bounded{repeating(module("m", {leaf("gate")}), "more?", 2), module("n", {leaf("end")})};
  EXPECT_EQ(
      story({repeating(module("m", {leaf("gate")}), "more?", 1), module("n", {leaf("end")})}, {answer("gate", "yes")}),
      (Lines{"gate?#0 <- yes (editable)", "ask end?", "revise gate?#0", "1 of 2"}));
  EXPECT_EQ(story(bounded, {answer("gate", "yes")}),
            (Lines{"gate?#0 <- yes (editable)", "ask more?#1", "revise gate?#0", "0 of 2"}));
  EXPECT_EQ(story(bounded, {answer("gate", "yes"), answer("gate", "yes", 1)}),
            (Lines{"gate?#0 <- yes", "more?#1 <- yes (editable)", "ask end?", "revise more?#1", "1 of 2"}));
}

TEST(NativeBotEngine, KeepsTheClosingAnswerForLaterNodes) {
  EXPECT_EQ(
      story({repeating(module("m", {leaf("gate")}), "more?"), module("n", {leaf("gate"), leaf("end")})},
            {answer("gate", "yes"), answer("gate", "no", 1)}),
      (Lines{"gate?#0 <- yes", "more?#1 <- no", "gate?#1 <- no (editable)", "ask end?", "revise gate?", "1 of 2"}));
}

TEST(NativeBotEngine, WordsTheRepeatOfAGateThatIsNoLeaf) {
  // A menu and a branching node have a text of their own; a nested list starts afresh each time it is entered.
  const Nodes byMenu{repeating(module("m", {menu("pick", {arm("yes", {})}), leaf("a")}), "more?")};
  EXPECT_EQ(story(byMenu, {answer("pick", "yes"), answer("a", "x")}),
            (Lines{"pick?#0 <- yes", "a?#0 <- x (editable)", "ask more?#0", "revise a?#0", "0 of 1"}));
  EXPECT_EQ(story(byMenu, {answer("pick", "yes"), answer("a", "x"), answer("pick", "yes", 1)}),
            (Lines{"pick?#0 <- yes", "pick again?#1 <- yes", "a?#0 <- x (editable)", "ask more?#0", "revise a?#0",
                   "0 of 1"}));
  const Nodes nested{repeating(
      module("m", {branching("gate", {when("yes", {repeating(module("n", {leaf("a")}), "again a?", 2)})})}), "more?")};
  EXPECT_EQ(story(nested, {answer("gate", "yes"), answer("gate", "yes", 1), answer("a", "yes"), answer("a", "no", 1),
                           answer("a", "no", 0)}),
            (Lines{"gate?#0 <- yes", "a?#0 <- yes", "again a?#1 <- no", "more?#1 <- yes", "a?#0 <- no",
                   "again a?#1 <- no (editable)", "ask more?#2", "revise a?#1", "0 of 1"}));
}

TEST(NativeBotEngine, RepeatsTheListOfAChosenArm) {
  BotNode rooms = repeating(menu("rooms", {arm("kitchen", {leaf("gate"), leaf("a")})}), "more?");
  EXPECT_EQ(
      story({module("m", {rooms, leaf("end")})},
            {answer("rooms", "kitchen", 5), answer("gate", "yes"), answer("a", "x")}),
      (Lines{"rooms?#5 <- kitchen", "gate?#0 <- yes", "a?#0 <- x (editable)", "ask more?#1", "revise a?#0", "0 of 1"}));
}

TEST(NativeBotEngine, LeavesAnEmptyRepeatingListAfterItsFirstPass) {
  EXPECT_EQ(story({repeating(module("m", {}), "more?"), module("n", {leaf("a")})}, {}), (Lines{"ask a?", "1 of 2"}));
  EXPECT_EQ(story({module("m", {repeating(menu("pick", {arm("x", {})})), leaf("a")})}, {answer("pick", "x")}),
            (Lines{"pick?#0 <- x (editable)", "ask a?", "revise pick?#0", "0 of 1"}));
}

TEST(NativeBotEngine, OffersAMenuUntilAllOfItsArmsAreDone) {
  const Nodes modules{
      module("m", {menu("rooms", {arm("a", {leaf("qa")}), arm("b", {}), arm("c", {leaf("qc")})}), leaf("end")})};
  struct Row {
    const char* label;
    Answers answers;
    Lines want;
  };
  const Row rows[] = {
      {"at first", {}, {"ask rooms?#0", "0 of 1"}},
      {"inside an arm", {answer("rooms", "a")}, {"rooms?#0 <- a (editable)", "ask qa?", "revise rooms?#0", "0 of 1"}},
      {"the second choice",
       {answer("rooms", "a"), answer("qa", "x")},
       {"rooms?#0 <- a", "qa?#0 <- x (editable)", "ask rooms again?#1 -a", "revise qa?", "0 of 1"}},
      {"the third choice, the second open to revision",
       {answer("rooms", "a"), answer("qa", "x"), answer("rooms", "b", 1)},
       {"rooms?#0 <- a", "qa?#0 <- x", "rooms again?#1 <- b (editable)", "ask rooms again?#2 -a -b",
        "revise rooms again?#1 -a", "0 of 1"}},
      {"as many choices as arms",
       {answer("rooms", "a"), answer("qa", "x"), answer("rooms", "b", 1), answer("rooms", "b", 2)},
       {"rooms?#0 <- a", "qa?#0 <- x", "rooms again?#1 <- b", "rooms again?#2 <- b (editable)", "ask end?",
        "revise rooms again?#2 -a -b", "0 of 1"}},
      {"the next offer counts on from the last answer, whatever the one before",
       {answer("rooms", "b", 7)},
       {"rooms?#7 <- b (editable)", "ask rooms again?#8 -b", "revise rooms?#7", "0 of 1"}},
      {"no arm of that name", {answer("rooms", "d")}, {"0 of 1"}},
      {"nor at the second choice", {answer("rooms", "b"), answer("rooms", "d", 1)}, {"rooms?#0 <- b", "0 of 1"}},
  };
  for (const Row& row : rows) EXPECT_EQ(story(modules, row.answers), row.want) << row.label;

  const MessageDTO again = walk(modules, {answer("rooms", "b")}).updatedMessages.back();
  EXPECT_EQ(again.type, NodeType::selectSingleModule);
  EXPECT_EQ(again.timestamp, std::nullopt);
  EXPECT_EQ(again.options->values->front().completed, false);
  EXPECT_EQ(walk(modules, {answer("rooms", "b", std::numeric_limits<std::int64_t>::max())})
                .updatedMessages.back()
                .iterationId,
            std::numeric_limits<std::int64_t>::max());
}

TEST(NativeBotEngine, ChoosesTheFirstArmInTheTemplatesOrder) {
  for (const std::size_t arms : {3U, 40U}) {
    std::vector<models::AdventureNode> list;
    for (std::size_t index = 0; index < arms; ++index) list.push_back(arm(numbered("k", index % 3), {}));
    list[1].adventure.sequence = NodeList({leaf("a")});
    auto given = answer("pick", "k2");
    given.answers = {entry("none"), entry("k2"), entry("k1")};
    EXPECT_EQ(story({module("m", {menu("pick", list)})}, {given}).at(1), "ask a?");
  }
}

TEST(NativeBotEngine, FollowsAMenusAnswersAsTheyStoodWhenItWasReached) {
  // The first arm's leaf shares the menu's identity and takes the second choice, which the menu still follows.
  const Nodes modules{module("m", {menu("n", {arm("a", {leaf("n")}), arm("b", {})}), leaf("n")})};
  EXPECT_EQ(
      story(modules, {answer("n", "a"), answer("n", "b")}),
      (Lines{"n?#0 <- a", "n?#0 <- b", "n again?#0 <- b (editable)", "ask n?", "revise n again?#0 -a", "0 of 1"}));
}

TEST(NativeBotEngine, ReadsTheClockOnce) {
  int reads = 0;
  const NativeBotEngine engine([&] { return foundation::Date::fromSecondsSince1970(kNow + reads++); });
  const NodeList modules({module("m", {leaf("a"), leaf("b")})});
  const Answers answers{answer("a", "x")};
  const ConversationDTO conversation = engine.conversation(answers, modules);
  EXPECT_EQ(conversation.lastEditableAnswer->timestamp, kNow);
  EXPECT_EQ(conversation.updatedMessages.back().timestamp, kNow);
  EXPECT_EQ(reads, 1);
}

TEST(NativeBotEngine, EndsATemplateThatDoublesItselfAtEachLevel) {
  // Gates that are branching nodes consume nothing, so that each list walks the one inside it twice.
  Answers answers;
  BotNode inner = leaf("never reached");
  for (std::size_t level = 0; level < 40; ++level) {
    const std::string gate = numbered("gate ", level);
    inner =
        repeating(module("m", {branching(gate, {}), level == 0 ? module("empty", {}) : std::move(inner)}), "more?", 2);
    answers.push_back(answer(gate, "yes"));
    answers.push_back(answer(gate, "yes", 1));
  }
  const ConversationDTO conversation = walk({std::move(inner)}, answers);
  EXPECT_FALSE(conversation.progress.isFinished);
  EXPECT_TRUE(conversation.updatedMessages.back().answers);
}

TEST(NativeBotEngine, WalksTheDeepestTemplateOnASmallStack) {
  Answers answers;
  NodeList list({leaf("bottom")});
  for (std::size_t level = 1; level < models::BotTemplate::kMaximumNesting; ++level) {
    const std::string id = numbered("n", level);
    NodeList outer;
    BotNode& node = outer.append();
    node.id = id;
    if (level % 3 == 0) {
      node.sequence = std::move(list);
      node.repeatable = level % 2 == 0;
    } else {
      answers.push_back(answer(id, "go"));
      if (level % 3 == 1) {
        node.adventures.emplace().emplace_back().key = "go";
        node.adventures->front().adventure.sequence = std::move(list);
      } else {
        node.branches.emplace().emplace_back().branch.emplace().sequence = std::move(list);
      }
    }
    list = std::move(outer);
  }
  tests::onSmallStack([&] {
    const NativeBotEngine engine([] { return foundation::Date::fromSecondsSince1970(kNow); });
    const ConversationDTO conversation = engine.conversation(answers, list);
    EXPECT_EQ(conversation.updatedMessages.size(), answers.size() + 1);
    EXPECT_EQ(conversation.updatedMessages.back().text, "bottom?");
  });
}

}  // namespace kestrom::services
