// A chain of six operators beside the bare cost of the same: six nodes allocated, linked and freed for its life, three
// std::function calls in a row for a value. The limits are 6 and 3, and no allocation for a value.

#include "Platform/Reactive/Publisher.hpp"
#include "Platform/Reactive/Sources.hpp"
#include "Platform/Reactive/Subjects.hpp"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <new>
#include <optional>
#include <utility>

namespace {

std::uint64_t allocationCount = 0;

}  // namespace

// Not inlined: the compiler would see malloc meet delete.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocationCount;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace kestrom::benchmarks {
namespace {

using namespace kestrom::reactive;

/// Counts the allocations of the rounds of a benchmark.
class AllocationCounter {
 public:
  explicit AllocationCounter(benchmark::State& state) : _state(state) {}
  ~AllocationCounter() {
    _state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(allocationCount - _before), benchmark::Counter::kAvgIterations);
  }

 private:
  benchmark::State& _state;
  std::uint64_t _before = allocationCount;
};

Publisher<int, Never> throughSix(const Publisher<int, Never>& source) {
  return source.map([](int value) { return value + 1; })
      .filter([](int value) { return value != 0; })
      .map([](int value) { return value * 3; })
      .scan(0, [](int accumulated, int value) { return accumulated ^ value; })
      .map([](int value) { return value - 1; })
      .compactMap([](int value) { return std::optional(value); });
}

void life(benchmark::State& state) {
  int sum = 0;
  const AllocationCounter counter(state);
  for (auto _ : state) {
    const AnyCancellable token = throughSix(just(1)).sink([&](int value) { sum += value; });
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(life)->Name("publisher-chain/kestrom");

void sixNodes(benchmark::State& state) {
  struct Node {
    Node* next;
    void* content[5];
  };
  for (auto _ : state) {
    Node* head = nullptr;
    for (int i = 0; i < 6; ++i) {
      head = new Node{head, {}};
      benchmark::DoNotOptimize(head);
    }
    while (head) delete std::exchange(head, head->next);
  }
}
BENCHMARK(sixNodes)->Name("publisher-chain/six-nodes");

void value(benchmark::State& state) {
  Ref<Subscriber<int, Never>> top;
  const auto source = detail::makePublisher<int, Never>(
      [&](Ref<Subscriber<int, Never>> downstream, const Ref<Scope>&) { top = std::move(downstream); });
  int sum = 0;
  const AnyCancellable token = throughSix(source).sink([&](int last) { sum += last; });
  const AllocationCounter counter(state);
  for (auto _ : state) {
    top->receive(1);
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(value)->Name("publisher-value/kestrom");

void subjectValue(benchmark::State& state) {
  PassthroughSubject<int> subject;
  int sum = 0;
  const AnyCancellable token = throughSix(subject.publisher()).sink([&](int last) { sum += last; });
  const AllocationCounter counter(state);
  for (auto _ : state) {
    subject.send(1);
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(subjectValue)->Name("publisher-subject-value/kestrom");

void threeFunctions(benchmark::State& state) {
  int step = 1;
  std::function<int(int)> first = [&](int argument) { return argument + step; };
  std::function<int(int)> second = [&](int argument) { return argument * step; };
  std::function<int(int)> third = [&](int argument) { return argument - step; };
  benchmark::DoNotOptimize(first);
  benchmark::DoNotOptimize(second);
  benchmark::DoNotOptimize(third);
  int result = 0;
  for (auto _ : state) {
    result = third(second(first(result)));
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(threeFunctions)->Name("publisher-value/three-functions");
BENCHMARK(threeFunctions)->Name("publisher-subject-value/three-functions");

}  // namespace
}  // namespace kestrom::benchmarks
