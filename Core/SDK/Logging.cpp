#include "Core/SDK/Logging.hpp"

#include "Core/SDK/ProcessValues.hpp"

#include <mutex>
#include <string>
#include <utility>

namespace kestrom::session {

namespace {

using foundation::LogLevel;
using foundation::LogSink;

class SinkHolder {
 public:
  std::shared_ptr<LogSink> get() {
    const std::lock_guard lock(_mutex);
    return _sink;
  }
  void set(std::shared_ptr<LogSink> sink) {
    const std::lock_guard lock(_mutex);
    _sink.swap(sink);
  }

 private:
  std::mutex _mutex;
  std::shared_ptr<LogSink> _sink = std::make_shared<foundation::StandardErrorLogSink>();
};

/// Never destroyed: a thread may still log when the process ends.
SinkHolder& holder() {
  static auto* const kHolder = new SinkHolder;
  return *kHolder;
}

std::string_view lastPathComponent(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

}  // namespace

void logInfo(std::string_view message) {
  if (!isLoggingEnabled()) return;
  holder().get()->write(LogLevel::info, "[KestromSDK] " + std::string(message));
}

void logError(std::string_view errorDescription, std::string_view function, const std::source_location& place) {
  if (!isLoggingEnabled()) return;
  // The misspelt word is what people who read these logs search for.
  std::string line = "[KestromSDK] ";
  line.append(lastPathComponent(place.file_name()))
      .append(" funtion:")
      .append(function)
      .append(" line:")
      .append(std::to_string(place.line()))
      .append(" ")
      .append(errorDescription);
  holder().get()->write(LogLevel::error, line);
}

void setLogSink(std::shared_ptr<LogSink> sink) {
  holder().set(std::move(sink));
}

}  // namespace kestrom::session
