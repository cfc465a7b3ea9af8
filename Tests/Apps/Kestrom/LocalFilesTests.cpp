#include "Apps/kestrom/LocalFiles.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

namespace kestrom::app {
namespace {

namespace fs = std::filesystem;

class LocalFilesTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "kestrom-files-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    _directory = name;
  }
  void TearDown() override { fs::remove_all(_directory); }

  std::string path(const std::string& name) const { return (_directory / name).string(); }
  std::ptrdiff_t entryCount() const { return std::distance(fs::directory_iterator(_directory), {}); }

 private:
  fs::path _directory;
};

TEST_F(LocalFilesTest, ReplacesWholeFilesAndLeavesNothingBeside) {
  ASSERT_TRUE(replaceFile(path("a"), "a long first content"));
  fs::permissions(path("a"), fs::perms::owner_all);
  ASSERT_TRUE(replaceFile(path("a"), "short"));
  EXPECT_EQ(readFile(path("a"), 5), "short");
  EXPECT_EQ(fs::status(path("a")).permissions(), fs::perms::owner_all);
  EXPECT_EQ(entryCount(), 1);
}

TEST_F(LocalFilesTest, ALinkStaysALink) {
  ASSERT_TRUE(replaceFile(path("a"), "old"));
  fs::create_symlink("a", path("link"));
  ASSERT_TRUE(replaceFile(path("link"), "new"));
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(readFile(path("a"), 100), "new");
}

TEST_F(LocalFilesTest, WhatCannotBeReplacedStays) {
  fs::create_directory(path("taken"));
  EXPECT_FALSE(replaceFile(path("taken"), "x"));
  EXPECT_FALSE(replaceFile(path("missing/a"), "x"));
  EXPECT_FALSE(replaceFile(path(std::string(300, 'x')), "x"));
  EXPECT_TRUE(fs::is_directory(path("taken")));
  EXPECT_EQ(entryCount(), 1);
}

TEST_F(LocalFilesTest, ReadsUpToTheLimit) {
  ASSERT_TRUE(replaceFile(path("a"), std::string(200000, 'x')));
  EXPECT_EQ(readFile(path("a"), 200000)->size(), 200000U);
  EXPECT_EQ(readFile(path("a"), 199999).error(), "larger than 199999 bytes");
  EXPECT_EQ(readFile("/dev/zero", 1000).error(), "larger than 1000 bytes");
  EXPECT_FALSE(readFile(path("."), 1000));
  EXPECT_FALSE(readFile(path("missing"), 1000));
}

}  // namespace
}  // namespace kestrom::app
