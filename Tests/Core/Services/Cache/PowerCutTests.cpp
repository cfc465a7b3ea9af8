#include "Core/Models/AnswerConversion.hpp"
#include "Core/Services/Cache/DefaultJSONCache.hpp"
#include "Core/Services/Cache/SystemFileManager.hpp"
#include "Platform/Foundation/PosixFileManager.hpp"
#include "Tests/Platform/Foundation/TemporaryDirectory.hpp"
#include "Tests/Support/AnswerSamples.hpp"
#include "Tests/Support/OutcomeNow.hpp"
#include "Tests/Support/SystemCalls.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace kestrom::services {
namespace {

using tests::SystemCall;

/// What a disk may hold after the power went: of what was written and not synchronized any beginning, and of names that
/// were given and not synchronized the old or the new.
class Disk final : public tests::FaultySystemCalls {
 public:
  Disk(std::string path, Fault fault, int n, bool isForGood)
      : FaultySystemCalls(fault, n, isForGood), _path(std::move(path)) {
    std::ifstream file(_path, std::ios::binary);
    if (!file) return;
    auto there = std::make_shared<File>();
    there->written.assign(std::istreambuf_iterator<char>(file), {});
    there->onDisk = there->written;
    _names[_path] = there;
    _namesOnDisk = {there};
  }

  void after(const SystemCall& call, long result) override {
    if (result < 0) return;
    switch (call.kind) {
      case SystemCall::Kind::open:
        _open[static_cast<int>(result)] = call.path.ends_with('/') ? nullptr : fileAt(call.path);
        break;
      case SystemCall::Kind::makeTemporary:
        _open[static_cast<int>(result)] = fileAt(call.path);
        break;
      case SystemCall::Kind::write:
        _open[call.descriptor]->written.append(reinterpret_cast<const char*>(call.bytes.data()),
                                               static_cast<std::size_t>(result));
        break;
      case SystemCall::Kind::synchronize:
        synchronize(_open[call.descriptor]);
        break;
      case SystemCall::Kind::rename:
        _names[call.newPath] = fileAt(call.path);
        _names.erase(call.path);
        if (call.newPath == _path) _namesOnDisk.insert(_names[_path]);
        break;
      case SystemCall::Kind::unlink:
        _names.erase(call.path);
        if (call.path == _path) _namesOnDisk.insert(nullptr);
        break;
      default:
        return;
    }
    note();
  }

  /// Every content that the file could have had at any moment since `forget`; "-" for no file.
  const std::set<std::string>& seen() const { return _seen; }
  void forget() {
    _seen.clear();
    note();
  }

 private:
  struct File {
    std::string written;
    std::string onDisk;
  };
  using FileRef = std::shared_ptr<File>;

  FileRef fileAt(const std::string& path) {
    FileRef& file = _names[path];
    if (!file) file = std::make_shared<File>();
    return file;
  }

  void synchronize(const FileRef& file) {
    if (file) {
      file->onDisk = file->written;
    } else {
      _namesOnDisk = {_names.contains(_path) ? _names[_path] : nullptr};
    }
  }

  void note() {
    if (_namesOnDisk.empty()) _seen.insert("-");
    for (const FileRef& file : _namesOnDisk) {
      if (!file) {
        _seen.insert("-");
        continue;
      }
      _seen.insert(file->onDisk);
      _seen.insert(file->written);
      if (file->onDisk != file->written) _seen.insert(file->written.substr(0, file->written.size() / 2));
    }
  }

  std::string _path;
  std::map<std::string, FileRef> _names;
  std::map<int, FileRef> _open;
  /// The files that may bear the name after a power cut; null for none. Empty where there was none to begin with.
  std::set<FileRef> _namesOnDisk;
  std::set<std::string> _seen;
};

using Fault = Disk::Fault;

class PowerCutTest : public testing::Test {
 protected:
  PowerCutTest() { std::filesystem::create_directories(directory.path("documents")); }

  DefaultJSONCache makeCache() const {
    const auto files = std::make_shared<foundation::PosixFileManager>(
        foundation::PosixFileManager::Directories{directory.url("documents"), directory.url("tmp")});
    return {std::make_shared<SystemFileManager>(files), {.documentsDirectory = directory.url("documents")}, {}};
  }

  /// The file's content, or "-".
  std::string content() const {
    return std::filesystem::exists(directory.path(kName)) ? directory.content(kName) : "-";
  }

  /// Upserts a few answers, each of which finds and leaves the old or the new list wherever the power goes. `n` lets a
  /// call fail. The number of calls.
  int run(Fault fault, int n, bool isForGood) {
    std::filesystem::remove(directory.path(kName));
    Disk disk(directory.path(kName), fault, n, isForGood);
    DefaultJSONCache cache = makeCache();
    // What a failed upsert left behind is there, but nobody has promised that it is on the disk.
    std::set<std::string> old{content()};
    for (int index = 0; index < 5; ++index) {
      disk.forget();
      const auto answer = models::apiAnswer(
          tests::chosenAnswer(std::to_string(index % 3), std::string(static_cast<std::size_t>(40 * index), 'x')),
          false);
      const bool isDone = tests::outcomeNow(cache.upsert(answer, CacheFilename::answers("o", "c"))).value().has_value();
      const std::string after = content();
      for (const std::string& seen : disk.seen()) {
        EXPECT_TRUE(seen == after || old.contains(seen)) << "a third content, call " << disk.count() << ": " << seen;
      }
      if (isDone) {
        EXPECT_FALSE(old.contains(after));
        disk.forget();
        EXPECT_EQ(disk.seen(), std::set<std::string>{after}) << "told as done and not yet on the disk";
        old.clear();
      }
      old.insert(after);
    }
    return disk.count();
  }

  static constexpr auto kName = "documents/o-c-answers.json";
  foundation::TemporaryDirectory directory;
};

TEST_F(PowerCutTest, LeavesTheOldListOrTheNewOne) {
  EXPECT_GT(run(Fault::noSpace, 0, false), 40);
}

TEST_F(PowerCutTest, LeavesTheOldListOrTheNewOneWhenCallsFail) {
  for (const Fault fault : {Fault::noSpace, Fault::noPermission, Fault::shortWrite}) {
    for (const bool isForGood : {false, true}) {
      const int count = run(fault, 0, false);
      for (int n = 1; n <= count; ++n) {
        run(fault, n, isForGood);
        if (HasFailure()) FAIL() << "call " << n << " of " << count;
      }
    }
  }
}

}  // namespace
}  // namespace kestrom::services
