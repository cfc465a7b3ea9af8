// Exchanging one answer in a file of many, beside reading, parsing and writing the same bytes and nothing else. Both
// replace the file whole and wait for the disk; "upsert" counts the processor's time, "upsert-with-disk" the clock's.
// "upsert-after-start" is the first of a process, which finds a file that it has not written.

#include "Core/Services/Cache/DefaultJSONCache.hpp"
#include "Core/Services/Cache/SystemFileManager.hpp"
#include "Platform/Foundation/PosixFileManager.hpp"

#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kestrom::benchmarks {
namespace {

using foundation::JSONDocument;
using foundation::PosixFileManager;
using foundation::URL;
using models::BotAPIAnswerDTO;
using services::CacheFilename;
using services::DefaultJSONCache;

const CacheFilename kFile = CacheFilename::answers("organization", "case");

/// An answer as a choice of the chat gives it.
BotAPIAnswerDTO answer(std::size_t number, bool wasSynced) {
  char id[25];
  std::snprintf(id, sizeof id, "%024zx", number);
  const std::string text = "In a good state, no damage that could be seen";
  return {
      .value = {text},
      .keyValue = {models::KeyValue{"good_state", text}},
      .location = models::LocationSnapshotDTO{{4.8952, 52.3702}, "Point"},
      .iterationId = 0,
      .messageId = id,
      .moduleId = "0123456789abcdef01234567",
      .type = "select_one",
      .locationType = "precise",
      .context = "cv_utilities.na.skip_cv",
      .answeredAt = foundation::Date::fromSecondsSince1970(1'700'000'000.123 + static_cast<double>(number)),
      .wasSynced = wasSynced,
  };
}

/// A directory of its own with a file of so many answers.
class Device {
 public:
  explicit Device(std::size_t count) {
    std::string name = (std::filesystem::temp_directory_path() / "kestrom-benchmark-XXXXXX").string();
    _directory = ::mkdtemp(name.data());
    const URL url = URL::fromFilePath(_directory.string());
    _files = std::make_shared<services::SystemFileManager>(
        std::make_shared<PosixFileManager>(PosixFileManager::Directories{url, url}));
    std::vector<BotAPIAnswerDTO> answers;
    for (std::size_t number = 0; number < count; ++number) answers.push_back(answer(number, true));
    static_cast<void>(cache().save(answers, kFile));
  }
  ~Device() { std::filesystem::remove_all(_directory); }

  DefaultJSONCache cache() const {
    return {_files, {.documentsDirectory = URL::fromFilePath(_directory.string())}, {}};
  }
  services::FileManagerAdapter& files() const { return *_files; }

 private:
  std::filesystem::path _directory;
  std::shared_ptr<services::FileManagerAdapter> _files;
};

std::size_t countOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

/// The newest answer comes again with its other mark, as each does when it was delivered.
void kestrom(benchmark::State& state) {
  const Device device(countOf(state));
  DefaultJSONCache cache = device.cache();
  bool wasSynced = false;
  static_cast<void>(cache.upsert(answer(countOf(state) - 1, wasSynced), kFile));
  for (auto _ : state) {
    wasSynced = !wasSynced;
    benchmark::DoNotOptimize(cache.upsert(answer(countOf(state) - 1, wasSynced), kFile));
  }
}

void afterStart(benchmark::State& state) {
  const Device device(countOf(state));
  bool wasSynced = false;
  for (auto _ : state) {
    wasSynced = !wasSynced;
    benchmark::DoNotOptimize(device.cache().upsert(answer(countOf(state) - 1, wasSynced), kFile));
  }
}

void bare(benchmark::State& state) {
  const Device device(countOf(state));
  const auto url = device.files().documentsFileURL(kFile.name(), true);
  for (auto _ : state) {
    const auto bytes = device.files().readFile(*url, JSONDocument::kMaximumSize);
    benchmark::DoNotOptimize(JSONDocument::parse(foundation::textOf(*bytes)));
    benchmark::DoNotOptimize(device.files().writeFile(*url, *bytes));
  }
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(10)
      ->Range(10, 10'000)
      ->Repetitions(5)
      ->ReportAggregatesOnly()
      ->Unit(benchmark::kMicrosecond);
}

BENCHMARK(kestrom)->Name("upsert/kestrom")->Apply(sizes);
BENCHMARK(bare)->Name("upsert/bare")->Apply(sizes);
BENCHMARK(kestrom)->Name("upsert-with-disk/kestrom")->Apply(sizes)->UseRealTime();
BENCHMARK(bare)->Name("upsert-with-disk/bare")->Apply(sizes)->UseRealTime();
BENCHMARK(afterStart)->Name("upsert-after-start/kestrom")->Apply(sizes);
BENCHMARK(bare)->Name("upsert-after-start/bare")->Apply(sizes);

}  // namespace
}  // namespace kestrom::benchmarks
