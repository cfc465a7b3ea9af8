#include "Platform/Foundation/FileStreams.hpp"

#include "Kestrom/Platform/Bytes.hpp"
#include "Tests/Platform/Foundation/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <array>

namespace kestrom::foundation {
namespace {

using Kind = FileError::Kind;

std::string readAll(InputStream& stream) {
  std::array<std::uint8_t, 3> buffer;
  std::string text;
  for (auto count = stream.read(buffer); count && *count > 0; count = stream.read(buffer)) {
    text += textOf(std::span(buffer).first(*count));
  }
  return text;
}

TEST(FileStreams, AnOutputReplacesWhatItOpensAndAnInputReadsItInPieces) {
  const TemporaryDirectory directory;
  directory.put("file", "what was there before");
  FileOutputStream output(directory.url("file"));
  ASSERT_TRUE(output.open());
  EXPECT_EQ(output.write(bytesOf("1234")), 4u);
  EXPECT_EQ(output.write({}), 0u);
  EXPECT_EQ(output.write(bytesOf("567")), 3u);
  EXPECT_TRUE(output.close());

  FileInputStream input(directory.url("file"));
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(input.open());
    EXPECT_EQ(readAll(input), "1234567");
    input.close();
  }
}

TEST(FileStreams, TellWhyTheyFail) {
  const TemporaryDirectory directory;
  FileOutputStream full(URL::fromFilePath("/dev/full"));
  ASSERT_TRUE(full.open());
  EXPECT_EQ(full.write(bytesOf("x")).error().kind, Kind::noSpace);

  EXPECT_EQ(FileOutputStream(directory.url("")).open().error().kind, Kind::isDirectory);
  EXPECT_EQ(FileOutputStream(URL::parse("https://a.example/b").value()).open().error().kind, Kind::other);
  EXPECT_EQ(FileInputStream(directory.url("missing")).open().error().kind, Kind::notFound);
  EXPECT_TRUE(directory.names().empty());

  FileInputStream inner(directory.url(""));
  std::array<std::uint8_t, 3> buffer;
  ASSERT_TRUE(inner.open());
  EXPECT_EQ(inner.read(buffer).error().kind, Kind::isDirectory);
}

TEST(FileStreams, AreOfNoUseUnlessOpen) {
  const TemporaryDirectory directory;
  FileOutputStream output(directory.url("file"));
  EXPECT_FALSE(output.write(bytesOf("x")));
  ASSERT_TRUE(output.open());
  ASSERT_TRUE(output.close());
  EXPECT_FALSE(output.write(bytesOf("x")));
  EXPECT_FALSE(output.close());

  FileInputStream input(directory.url("file"));
  std::array<std::uint8_t, 3> buffer;
  EXPECT_FALSE(input.read(buffer));
  ASSERT_TRUE(input.open());
  input.close();
  EXPECT_FALSE(input.read(buffer));
}

}  // namespace
}  // namespace kestrom::foundation
