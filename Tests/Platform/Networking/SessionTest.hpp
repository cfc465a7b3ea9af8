#pragma once

#include "Platform/Networking/CurlURLSession.hpp"
#include "Tests/Support/LoopbackServer.hpp"

#include <gtest/gtest.h>

#include <expected>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <string_view>

namespace kestrom::networking {

using DataResult = std::expected<DataResponse, URLError>;
using DownloadResult = std::expected<DownloadResponse, URLError>;

URLRequest requestTo(std::string_view url, std::string method = "GET");
URLRequest postTo(std::string_view url, std::string_view body);
std::string textOf(const DataResult& result);
const HTTPURLResponse& headOf(const URLResponse& response);

/// The code of a failure, by its name so that a mismatch can be read; of an answer, its status.
std::string labelOf(const DataResult& result);
std::string labelOf(const DownloadResult& result);

/// Sessions against a server on the loopback that stands for "https://api.test".
class SessionTest : public ::testing::Test {
 protected:
  SessionTest();
  ~SessionTest() override;

  static const tests::LoopbackAuthority& authority();

  std::unique_ptr<tests::LoopbackServer> serve(tests::LoopbackServer::Script script) const;
  /// Connects to a port of the loopback and trusts the authority.
  CurlSessionConfiguration configurationFor(std::uint16_t port) const;
  std::unique_ptr<CurlURLSession> sessionFor(const tests::LoopbackServer& server) const;

  foundation::URL writeFile(std::string_view name, std::string_view content) const;
  /// The files in the temporary directory of the sessions.
  std::size_t temporaryFileCount() const;

  /// Waits for a result; fails the test when none comes.
  template <class Result>
  static Result await(std::future<Result> future) {
    if (future.wait_for(std::chrono::seconds(20)) == std::future_status::ready) return future.get();
    ADD_FAILURE() << "no result";
    std::abort();
  }

  static DataResult fetch(URLSession& session, URLRequest request);
  static DataResult upload(URLSession& session, URLRequest request, foundation::URL file);
  static DownloadResult download(URLSession& session, URLRequest request);

  const std::filesystem::path _directory;
};

}  // namespace kestrom::networking
