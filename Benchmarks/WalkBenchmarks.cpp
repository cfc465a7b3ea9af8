// Walking a template with all of its answers given but the last, beside the bare cost of the output (making the same
// records from records that lie ready) and beside the literal walk that copies and searches. Freeing is included.

#include "Benchmarks/AnsweredTemplate.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Tests/Support/LiteralBotEngine.hpp"
#include "Tests/Support/TemplateBuilder.hpp"

#include <benchmark/benchmark.h>

#include <cstdint>
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

constexpr double kNow = 1'700'000'000;

AnsweredTemplate typical(std::size_t questions) {
  AnsweredTemplate made;
  made.addTypicalModules(questions);
  return made;
}

/// One module of a gate and a question, passed again and again.
AnsweredTemplate gated(std::size_t passes) {
  AnsweredTemplate made;
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
AnsweredTemplate ofOneMenu(std::size_t count) {
  AnsweredTemplate made;
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
  explicit Prepared(AnsweredTemplate made)
      : answers(std::move(made.answers)),
        sequence(std::move(made.modules)),
        output(nativeEngine().conversation(answers, sequence)) {}

  Answers answers;
  NodeList sequence;
  ConversationDTO output;
};

using Make = AnsweredTemplate (*)(std::size_t);

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
