#include "Tests/Platform/Networking/SessionTest.hpp"

#include <sys/resource.h>
#include <sys/stat.h>

#include <optional>

namespace kestrom::networking {
namespace {

using tests::answerOf;
using tests::LoopbackConnection;
using tests::LoopbackServer;
using LimitTest = SessionTest;

constexpr std::size_t kLimit = 1 << 20;

/// A gzip stream of so many NULs, a thousandth as long: one literal and then repetitions of 258 of them.
std::string zippedNuls(std::size_t count) {
  std::string bytes("\x1f\x8b\x08\0\0\0\0\0\0\x03", 10);
  unsigned bits = 0;
  int bitCount = 0;
  const auto add = [&](std::string_view code) {
    for (const char bit : code) {
      bits |= static_cast<unsigned>(bit - '0') << bitCount;
      if (++bitCount < 8) continue;
      bytes.push_back(static_cast<char>(std::exchange(bits, 0)));
      bitCount = 0;
    }
  };
  add("110");
  add("00110000");
  for (std::size_t size = 1; size < count; size += 258) add("1100010100000");
  add("00000000000000");
  return bytes;
}

std::string headOfHeaders(int count, std::size_t size) {
  std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n";
  for (int i = 0; i < count; ++i) head += "H" + std::to_string(i) + ": " + std::string(size, 'v') + "\r\n";
  return head + "\r\n";
}

std::string chunksOf(std::size_t size) {
  std::string answer = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (std::size_t sent = 0; sent < size; sent += 4096) answer += "1000\r\n" + std::string(4096, 'c') + "\r\n";
  return answer + "0\r\n\r\n";
}

TEST_F(LimitTest, TakesNoMoreOfAnAnswerThanItsBound) {
  const std::string zip = "Content-Encoding: gzip\r\n";
  struct Row {
    std::string_view label;
    std::string answer;
    std::string_view want;
  };
  const Row rows[] = {
      {"as much as fits", answerOf(std::string(kLimit, 'x')), "200"},
      {"one byte more, and only its length", "HTTP/1.1 200 OK\r\nContent-Length: 1048577\r\n\r\n",
       "dataLengthExceedsMaximum"},
      {"as many chunks as fit", chunksOf(kLimit), "200"},
      {"one chunk more", chunksOf(kLimit + 1), "dataLengthExceedsMaximum"},
      {"small on the wire", answerOf(zippedNuls(16 * kLimit), "200 OK", zip), "dataLengthExceedsMaximum"},
      {"a long head", headOfHeaders(200, 1000), "200"},
      {"too long a head", headOfHeaders(300, 1000), "dataLengthExceedsMaximum"},
      {"one header that is too long", headOfHeaders(1, 300000), "dataLengthExceedsMaximum"},
      {"too many headers", headOfHeaders(2000, 1), "dataLengthExceedsMaximum"},
  };
  for (const Row& row : rows) {
    const auto server = serve([&](LoopbackConnection& connection, int) {
      while (connection.readRequest() && connection.send(row.answer)) {
      }
    });
    CurlSessionConfiguration configuration = configurationFor(server->port());
    configuration.maximumDataSize = configuration.maximumDownloadSize = kLimit;
    CurlURLSession session(configuration);
    EXPECT_EQ(labelOf(fetch(session, requestTo("https://api.test/"))), row.want) << row.label;
    const DownloadResult file = download(session, requestTo("https://api.test/"));
    EXPECT_EQ(labelOf(file), row.want) << row.label;
    EXPECT_EQ(temporaryFileCount(), file ? 1u : 0u) << row.label;
    if (file) std::filesystem::remove(file->file.path());
  }
}

TEST_F(LimitTest, TakesTheLengthThatAHeadAloneNames) {
  const auto server = serve([](LoopbackConnection& connection, int) {
    while (connection.readRequest()) connection.send("HTTP/1.1 200 OK\r\nContent-Length: 99999999999\r\n\r\n");
  });
  const auto session = sessionFor(*server);
  EXPECT_EQ(labelOf(fetch(*session, requestTo("https://api.test/", "HEAD"))), "200");
  EXPECT_EQ(labelOf(fetch(*session, requestTo("https://api.test/"))), "dataLengthExceedsMaximum");
  EXPECT_EQ(labelOf(download(*session, requestTo("https://api.test/"))), "dataLengthExceedsMaximum");
}

TEST_F(LimitTest, SendsNothingOfAFileThatItCannotOpen) {
  const auto server = serve(LoopbackServer::answering(answerOf("")));
  const auto session = sessionFor(*server);
  const std::string pipe = (_directory / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path : {(_directory / "missing").string(), _directory.string(), pipe}) {
    const auto file = foundation::URL::fromFilePath(path);
    EXPECT_EQ(labelOf(upload(*session, requestTo("https://api.test/", "POST"), file)), "cannotOpenFile") << path;
  }
  const auto remote = *foundation::URL::parse("https://api.test/file");
  EXPECT_EQ(labelOf(upload(*session, requestTo("https://api.test/", "POST"), remote)), "cannotOpenFile");

  CurlSessionConfiguration nowhere = configurationFor(server->port());
  nowhere.temporaryDirectory = foundation::URL::fromFilePath((_directory / "missing").string());
  CurlURLSession homeless(nowhere);
  EXPECT_EQ(labelOf(download(homeless, requestTo("https://api.test/"))), "cannotWriteToFile");
  EXPECT_EQ(server->connectionCount(), 0);
}

TEST_F(LimitTest, EndsAnUploadWhoseFileBecomesShorter) {
  const auto file = writeFile("upload", "");
  std::filesystem::resize_file(file.path(), 256 << 20);
  const auto server = serve([&](LoopbackConnection& connection, int) {
    connection.readHead();
    std::filesystem::resize_file(file.path(), 1);
    connection.waitForEnd();
  });
  const auto session = sessionFor(*server);
  EXPECT_EQ(labelOf(upload(*session, requestTo("https://api.test/", "POST"), file)), "cannotOpenFile");
}

TEST_F(LimitTest, FailsItsTasksWhenTheSystemHasNoDescriptorsLeft) {
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  rlimit none = before;
  none.rlim_cur = 0;
  ::setrlimit(RLIMIT_NOFILE, &none);
  auto session = std::make_unique<CurlURLSession>(configurationFor(1));
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(labelOf(fetch(*session, requestTo("https://api.test/"))), "unknown");
}

}  // namespace
}  // namespace kestrom::networking
