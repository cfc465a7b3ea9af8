// Walking a template with all of its answers given but the last, beside the bare cost of the output (making the same
// records from records that lie ready) and beside the literal walk that copies and searches. Freeing is included.

#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Tests/Support/LiteralBotEngine.hpp"
#include "Tests/Support/TemplateBuilder.hpp"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::benchmarks {
namespace {

using models::BotNode;
using models::ConversationDTO;
using models::NodeList;
using tests::Answers;
using tests::Nodes;
using tests::NodeType;

constexpr double kNow = 1'700'000'000;

/// A template and the answers that lead to its end.
struct Conversation {
  Nodes modules;
  Answers answers;

  std::string nextId() {
    char id[25];
    std::snprintf(id, sizeof id, "%024llx", 0x9e3779b97f4a7c15ULL * ++_made);
    return id;
  }

  BotNode question(std::size_t choice = 3) {
    BotNode node = tests::leaf(nextId(), choice % 3 == 0 ? NodeType::text : NodeType::selectOne);
    node.text = "Please tell us about the condition of part " + node.id.substr(20) + " of the house";
    return node;
  }

  void answer(const BotNode& node, const std::string& key, std::int64_t iteration = 0) {
    tests::Answer given = tests::answer(node.id, key, iteration);
    given.answers = {tests::entry(key, "In a good state, " + node.id.substr(18))};
    given.moduleId = "0123456789abcdef01234567";
    answers.push_back(std::move(given));
  }

  BotNode answeredQuestion(std::size_t choice) {
    BotNode node = question(choice);
    answer(node, tests::numbered("choice_number_", choice));
    return node;
  }

 private:
  unsigned long long _made = 0;
};

/// Modules of twenty questions, of which one opens a branch and one is a menu of two arms.
Conversation typical(std::size_t questions) {
  Conversation made;
  while (made.answers.size() < questions) {
    Nodes nodes;
    for (std::size_t index = 0; index < 14; ++index) nodes.push_back(made.answeredQuestion(index));
    BotNode gate = made.answeredQuestion(1);
    gate.branches = {tests::when("no", {}), tests::when("choice_number_1", {made.answeredQuestion(2)})};
    nodes.push_back(std::move(gate));

    BotNode menu = made.question();
    made.answer(menu, "kitchen");
    std::vector<models::AdventureNode> arms{tests::arm("kitchen", {made.answeredQuestion(4)})};
    made.answer(menu, "bathroom", 1);
    arms.push_back(tests::arm("bathroom", {made.answeredQuestion(5)}));
    menu.adventures = std::move(arms);
    nodes.push_back(std::move(menu));
    made.modules.push_back(tests::module(made.nextId(), std::move(nodes)));
  }
  made.modules.push_back(tests::module(made.nextId(), {made.question()}));
  return made;
}

/// One module of a gate and a question, passed again and again.
Conversation gated(std::size_t passes) {
  Conversation made;
  const BotNode gate = made.question();
  const BotNode question = made.question();
  for (std::size_t pass = 0; pass < passes; ++pass) {
    made.answer(gate, "yes", static_cast<std::int64_t>(pass));
    made.answer(question, "x", static_cast<std::int64_t>(pass));
  }
  made.modules.push_back(tests::repeating(tests::module(made.nextId(), {gate, question}), "Is there one more?"));
  return made;
}

/// One menu, worked through but for its last arm.
Conversation ofOneMenu(std::size_t count) {
  Conversation made;
  BotNode menu = tests::menu(made.nextId(), {});
  for (std::size_t index = 0; index < count; ++index) {
    const std::string key = tests::numbered("arm number ", index);
    menu.adventures->push_back(tests::arm(key, {}));
    menu.options->values->push_back({"Go to " + key, key, {}, {}, {}});
    if (index + 1 < count) made.answer(menu, key, static_cast<std::int64_t>(index));
  }
  made.modules.push_back(tests::module(made.nextId(), {std::move(menu)}));
  return made;
}

services::NativeBotEngine nativeEngine() {
  return services::NativeBotEngine([] { return foundation::Date::fromSecondsSince1970(kNow); });
}

/// What every variant of a measurement holds, whether it needs it or not, so that all find the same heap.
struct Prepared {
  explicit Prepared(Conversation made)
      : answers(std::move(made.answers)),
        sequence(std::move(made.modules)),
        output(nativeEngine().conversation(answers, sequence)) {}

  Answers answers;
  NodeList sequence;
  ConversationDTO output;
};

using Make = Conversation (*)(std::size_t);

void measure(benchmark::State& state, Make make, const services::ChatBot& bot) {
  const Prepared prepared(make(static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(bot.conversation(prepared.answers, prepared.sequence));
}

void kestrom(benchmark::State& state, Make make) {
  measure(state, make, nativeEngine());
}

void literal(benchmark::State& state, Make make) {
  measure(state, make, tests::LiteralBotEngine(kNow));
}

void bareOutput(benchmark::State& state, Make make) {
  const Prepared prepared(make(static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(ConversationDTO(prepared.output));
}

BENCHMARK_CAPTURE(kestrom, walk, typical)->Name("walk/kestrom")->RangeMultiplier(10)->Range(100, 100'000);
BENCHMARK_CAPTURE(bareOutput, walk, typical)->Name("walk/bare output")->RangeMultiplier(10)->Range(100, 100'000);
BENCHMARK_CAPTURE(literal, walk, typical)->Name("walk/literal")->RangeMultiplier(10)->Range(100, 10'000);
BENCHMARK_CAPTURE(kestrom, repeats, gated)->Name("repeats/kestrom")->RangeMultiplier(10)->Range(100, 10'000);
BENCHMARK_CAPTURE(bareOutput, repeats, gated)->Name("repeats/bare output")->RangeMultiplier(10)->Range(100, 10'000);
BENCHMARK_CAPTURE(kestrom, menu, ofOneMenu)->Name("menu/kestrom")->RangeMultiplier(10)->Range(100, 10'000);
BENCHMARK_CAPTURE(bareOutput, menu, ofOneMenu)->Name("menu/bare output")->RangeMultiplier(10)->Range(100, 10'000);

}  // namespace
}  // namespace kestrom::benchmarks
