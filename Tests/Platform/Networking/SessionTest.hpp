#pragma once

#include "Platform/Networking/CurlURLSession.hpp"
#include "Tests/Support/LoopbackServer.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <expected>
#include <filesystem>
#include <future>
#include <memory>
#include <mutex>
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

/// Counts down to 0 and lets those go on who wait for it, on any thread; what never comes fails the test instead of
/// holding it up.
class CountDown {
 public:
  explicit CountDown(int count) : _count(count) {}

  void count() {
    // Under the mutex, because whoever waits may destroy it as soon as it is at 0.
    const std::lock_guard lock(_mutex);
    if (--_count <= 0) _isOver.notify_all();
  }
  /// False when it takes so long that it will never be.
  [[nodiscard]] bool wait() {
    std::unique_lock lock(_mutex);
    return _isOver.wait_for(lock, std::chrono::seconds(20), [this] { return _count <= 0; });
  }

 private:
  std::mutex _mutex;
  std::condition_variable _isOver;
  int _count;
};

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
