#include "Kestrom/Platform/LinuxPlatform.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace kestrom {
namespace {

/// The system's temporary directory is one of the test's own.
class LinuxPlatformTest : public ::testing::Test {
 protected:
  LinuxPlatformTest() : _shared(makeDirectory()) { ::setenv("TMPDIR", _shared.c_str(), 1); }
  ~LinuxPlatformTest() override {
    ::unsetenv("TMPDIR");
    std::filesystem::remove_all(_shared);
  }

  static std::filesystem::path makeDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "kestrom-linux-XXXXXX").string();
    return ::mkdtemp(name.data());
  }
  std::filesystem::path ownDirectory() const { return _shared / ("kestrom-" + std::to_string(::getuid())); }
  static std::filesystem::path temporaryDirectory() {
    return linuxPlatform({}).fileManager->temporaryDirectory().path();
  }

  const std::filesystem::path _shared;
};

TEST_F(LinuxPlatformTest, HasATemporaryDirectoryOfItsUser) {
  const std::filesystem::path directory = temporaryDirectory();
  EXPECT_EQ(directory / "", ownDirectory() / "");
  struct stat status{};
  ASSERT_EQ(::stat(directory.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
  EXPECT_EQ(temporaryDirectory(), directory) << "the same one again";
}

TEST_F(LinuxPlatformTest, LeavesADirectoryAloneThatOthersCanWriteTo) {
  const auto expectAnother = [&] {
    const std::filesystem::path directory = temporaryDirectory();
    EXPECT_NE(directory / "", ownDirectory() / "");
    EXPECT_TRUE(std::filesystem::is_directory(directory));
  };
  std::filesystem::create_directory(ownDirectory());
  std::filesystem::permissions(ownDirectory(), std::filesystem::perms::all);
  expectAnother();
  std::filesystem::remove(ownDirectory());
  std::filesystem::create_directory_symlink(_shared, ownDirectory());
  expectAnother();
}

}  // namespace
}  // namespace kestrom
