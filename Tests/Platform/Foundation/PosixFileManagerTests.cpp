#include "Platform/Foundation/PosixFileManager.hpp"

#include "Tests/Platform/Foundation/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <thread>

namespace kestrom::foundation {
namespace {

namespace fs = std::filesystem;
using Kind = FileError::Kind;
using Names = std::vector<std::string>;

/// The kind of failure; absent for a success.
std::optional<Kind> failure(const auto& result) {
  return result ? std::nullopt : std::optional(result.error().kind);
}

/// Lets no file of this process grow beyond `size`.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t size) {
    ::getrlimit(RLIMIT_FSIZE, &_earlier);
    const rlimit limit{size, _earlier.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &_earlier); }

 private:
  rlimit _earlier{};
};

/// Root may write anywhere, so that it has to be somebody else for a while.
class UnprivilegedUser {
 public:
  UnprivilegedUser() : _earlier(::geteuid()) {
    if (_earlier == 0) isActive = ::seteuid(65534) == 0;
  }
  ~UnprivilegedUser() {
    if (_earlier == 0 && ::seteuid(0) != 0) std::abort();
  }

  bool isActive = true;

 private:
  uid_t _earlier;
};

class PosixFileManagerTest : public testing::Test {
 protected:
  TemporaryDirectory directory;
  PosixFileManager files{{.documents = directory.url("documents"), .temporary = directory.url("temporary")}};
};

TEST_F(PosixFileManagerTest, ReplacesAFileWholeAndForThisUserAlone) {
  const std::string large(3 << 20, 'x');
  for (const std::string_view content : {std::string_view("first"), std::string_view(large), std::string_view("")}) {
    ASSERT_EQ(failure(files.writeFile(directory.url("ü %41.json"), bytesOf(content))), std::nullopt);
    EXPECT_EQ(directory.content("ü %41.json"), content);
    EXPECT_EQ(textOf(files.readFile(directory.url("ü %41.json"), content.size()).value()), content);
  }
  EXPECT_EQ(directory.names(), Names{"ü %41.json"});
  EXPECT_EQ(fs::status(directory.path("ü %41.json")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(failure(files.writeFile(directory.url(std::string(255, 'n')), {})), std::nullopt);
}

TEST_F(PosixFileManagerTest, AWriteThatFailsLeavesWhatWasThereAndNothingElse) {
  directory.put("file", "old");
  fs::create_directory(directory.path("directory"));
  ASSERT_EQ(::mkfifo(directory.path("pipe").c_str(), 0600), 0);
  const Names names = directory.names();

  struct Row {
    std::string_view label;
    URL url;
    Kind kind;
  };
  const Row rows[] = {
      {"the new name cannot be given", directory.url("directory"), Kind::isDirectory},
      {"a missing directory", URL::parse(directory.url("missing").absoluteString() + "/file").value(), Kind::notFound},
      {"a file for a directory", URL::parse(directory.url("file").absoluteString() + "/x").value(), Kind::notFound},
      {"a name too long", directory.url(std::string(256, 'n')), Kind::other},
      {"a pipe", directory.url("pipe"), Kind::other},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(failure(files.writeFile(row.url, bytesOf("new"))), row.kind) << row.label;
    EXPECT_EQ(directory.names(), names) << row.label;
  }

  // The system takes a part of the bytes, then no more.
  std::signal(SIGXFSZ, SIG_IGN);
  {
    const FileSizeLimit limit(10000);
    EXPECT_EQ(failure(files.writeFile(directory.url("file"), Bytes(20000))), Kind::tooLarge);
  }
  std::signal(SIGXFSZ, SIG_DFL);
  EXPECT_EQ(directory.names(), names);
  EXPECT_EQ(directory.content("file"), "old");
}

TEST_F(PosixFileManagerTest, ACrashInTheMiddleOfAWriteLeavesTheOldContent) {
  directory.put("file", "old");
  EXPECT_EXIT(
      {
        const FileSizeLimit limit(10000);
        (void)files.writeFile(directory.url("file"), Bytes(20000));
      },
      testing::KilledBySignal(SIGXFSZ), "");
  EXPECT_EQ(directory.content("file"), "old");
}

TEST_F(PosixFileManagerTest, ADirectoryOfOthersGivesNoPermission) {
  fs::create_directory(directory.path("others"));
  const URL inside = URL::parse(directory.url("others").absoluteString() + "/file").value();
  ASSERT_EQ(failure(files.writeFile(inside, bytesOf("old"))), std::nullopt);
  // Everybody may look, nobody may change.
  constexpr auto kLooking = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
  fs::permissions(directory.path(""), fs::perms::owner_all | kLooking);
  fs::permissions(directory.path("others"), kLooking);
  fs::permissions(directory.path("others/file"), fs::perms::none);
  {
    const UnprivilegedUser user;
    if (!user.isActive) GTEST_SKIP() << "root of a container that may not become another user";
    EXPECT_EQ(failure(files.writeFile(inside, bytesOf("new"))), Kind::noPermission);
    EXPECT_EQ(failure(files.readFile(inside, 10)), Kind::noPermission);
    EXPECT_EQ(failure(files.removeItem(inside)), Kind::noPermission);
    EXPECT_TRUE(files.fileExists(directory.path("others/file")));
  }
  fs::permissions(directory.path("others"), fs::perms::owner_all);
}

TEST_F(PosixFileManagerTest, ReadsUpToTheLimitAndNoFurther) {
  directory.put("file", "12345");
  EXPECT_EQ(textOf(files.readFile(directory.url("file"), 5).value()), "12345");
  EXPECT_EQ(failure(files.readFile(directory.url("file"), 4)), Kind::tooLarge);
  EXPECT_EQ(textOf(files.readFile(directory.url("file"), SIZE_MAX).value()), "12345");
  EXPECT_EQ(failure(files.readFile(URL::fromFilePath("/dev/zero"), 100000)), Kind::tooLarge);
  EXPECT_EQ(failure(files.readFile(directory.url(""), 5)), Kind::isDirectory);
  EXPECT_EQ(failure(files.readFile(directory.url("missing"), 5)), Kind::notFound);
}

TEST_F(PosixFileManagerTest, TakesOnlyFileURLsOfThisDevice) {
  directory.put("file", "x");
  const std::string path = directory.path("file");
  for (const std::string& text : {"https://a.example" + path, "file://a.example" + path, path, std::string("file:file"),
                                  "file://" + path + "%00.jpeg", std::string("file://")}) {
    const auto read = files.readFile(URL::parse(text).value(), 5);
    ASSERT_EQ(failure(read), Kind::other) << text;
    EXPECT_EQ(read.error().path, text);
  }
  for (const std::string& text : {"FILE://localhost" + path, "file:" + path, "file://" + path + "?x#y"}) {
    EXPECT_EQ(failure(files.readFile(URL::parse(text).value(), 5)), std::nullopt) << text;
  }
  EXPECT_FALSE(files.fileExists(path + '\0' + "x"));
}

TEST_F(PosixFileManagerTest, CopiesAFileOnlyToAFreePlace) {
  const std::string content(200000, 'x');
  directory.put("a", content);
  directory.put("b", "b");
  EXPECT_EQ(failure(files.copyItem(directory.url("a"), directory.url("c"))), std::nullopt);
  EXPECT_EQ(directory.content("c"), content);
  EXPECT_EQ(failure(files.copyItem(directory.url("a"), directory.url("b"))), Kind::other);
  EXPECT_EQ(directory.content("b"), "b");
  EXPECT_EQ(failure(files.copyItem(directory.url("a"), directory.url("a"))), Kind::other);
  EXPECT_EQ(directory.content("a"), content);
  EXPECT_EQ(failure(files.copyItem(directory.url("missing"), directory.url("d"))), Kind::notFound);
  EXPECT_EQ(failure(files.copyItem(directory.url(""), directory.url("d"))), Kind::isDirectory);
  EXPECT_EQ(directory.names(), (Names{"a", "b", "c"}));
}

TEST_F(PosixFileManagerTest, RemovesWhatIsThereButNotWhatALinkPointsTo) {
  fs::create_directories(directory.path("tree/inner"));
  directory.put("tree/inner/file", "x");
  directory.put("target", "x");
  fs::create_symlink(directory.path("target"), directory.path("link"));
  EXPECT_EQ(failure(files.removeItem(directory.url("tree"))), std::nullopt);
  EXPECT_EQ(failure(files.removeItem(directory.url("link"))), std::nullopt);
  EXPECT_EQ(failure(files.removeItem(directory.url("link"))), Kind::notFound);
  EXPECT_EQ(directory.names(), Names{"target"});
}

TEST_F(PosixFileManagerTest, MakesDirectories) {
  directory.put("file", "x");
  const auto make = [&](const std::string& name, bool withIntermediates) {
    return failure(files.createDirectory(URL::fromFilePath(directory.path(name)), withIntermediates));
  };
  EXPECT_EQ(make("a/b/c", false), Kind::notFound);
  EXPECT_EQ(make("a/b/c", true), std::nullopt);
  EXPECT_TRUE(files.fileExists(directory.path("a/b/c")));
  EXPECT_EQ(make("a/b/c", true), std::nullopt);
  EXPECT_EQ(make("a/b/c", false), Kind::other);
  EXPECT_EQ(make("a/d/", false), std::nullopt);
  EXPECT_EQ(make("file", true), Kind::other);
  EXPECT_EQ(make("file/x", true), Kind::notFound);
}

TEST_F(PosixFileManagerTest, ThreadsThatMakeOneDirectoryAllSucceed) {
  for (int round = 0; round < 50; ++round) {
    const URL url = URL::fromFilePath(directory.path("round" + std::to_string(round) + "/a/b/c"));
    std::optional<Kind> failures[2] = {Kind::other, Kind::other};
    std::thread other([&] { failures[0] = failure(files.createDirectory(url, true)); });
    failures[1] = failure(files.createDirectory(url, true));
    other.join();
    ASSERT_EQ(failures[0], std::nullopt);
    ASSERT_EQ(failures[1], std::nullopt);
  }
}

}  // namespace
}  // namespace kestrom::foundation
