// What a use of ten operators costs the compiler; timed by scripts/bench-compile.

#include "Platform/Reactive/Publisher.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <optional>
#include <string>

namespace kestrom::benchmarks {

reactive::AnyCancellable throughTen(const reactive::Publisher<int, std::string>& source, reactive::Scheduler& scheduler,
                                    int& sum) {
  using namespace std::chrono_literals;
  return source.map([](int value) { return value + 1; })
      .filter([](int value) { return value > 0; })
      .compactMap([](int value) { return std::optional(value); })
      .scan(0, [](int accumulated, int value) { return accumulated + value; })
      .flatMap([](int value) { return reactive::just(value); })
      .delay(1s, scheduler)
      .timeout(10s, scheduler, std::string("late"))
      .retry(3)
      .catchError([](const std::string&) { return reactive::just(0); })
      .receiveOn(scheduler)
      .sink([&](int value) { sum += value; });
}

}  // namespace kestrom::benchmarks
