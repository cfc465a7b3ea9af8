#pragma once

#include "Apps/sandbox/FaultScript.hpp"
#include "Apps/sandbox/HTTPMessage.hpp"
#include "Apps/sandbox/UploadReceiver.hpp"
#include "Kestrom/Platform/Date.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::sandbox {

/// What is told of one request. What it points to lives during the call.
struct LoggedRequest {
  foundation::Date time;
  std::optional<Endpoint> endpoint;
  FaultScript::Call call;
  const RequestHead& head;
  /// Bytes of the body, also of what was not kept.
  std::uint64_t bodySize = 0;
  std::string_view body;
  /// The body, if it is JSON.
  const foundation::JSONDocument* document = nullptr;
  /// Of an upload.
  const std::vector<UploadReceiver::Part>* parts = nullptr;
  /// Absent when no answer goes out.
  std::optional<unsigned> status;
};

/// The file in which every request is kept, one JSON object a line, for scripts to look at. It holds everything,
/// tokens and codes too. Any thread.
class RequestLog {
 public:
  /// Bytes that are kept of a body that is no JSON.
  static constexpr std::size_t kMaximumText = std::size_t{64} << 10;

  /// Goes on behind what the file holds.
  static std::expected<RequestLog, std::string> open(const std::filesystem::path& file);

  RequestLog(RequestLog&& other) noexcept;
  RequestLog& operator=(RequestLog&&) = delete;
  ~RequestLog();

  /// The line is in the file when this returns.
  void write(const LoggedRequest& request);

 private:
  explicit RequestLog(int file) : _file(file) {}

  int _file;
  std::mutex _mutex;
  std::int64_t _number = 0;
};

}  // namespace kestrom::sandbox
