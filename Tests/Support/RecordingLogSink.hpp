#pragma once

#include "Core/SDK/Logging.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Kestrom/Platform/LogSink.hpp"

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::tests {

/// Keeps what is logged.
class RecordingLogSink final : public foundation::LogSink {
 public:
  void write(foundation::LogLevel level, std::string_view line) override {
    const std::lock_guard lock(_mutex);
    _lines.emplace_back(line);
    _levels.push_back(level);
  }
  std::vector<std::string> lines() const {
    const std::lock_guard lock(_mutex);
    return _lines;
  }
  /// Of each line.
  std::vector<foundation::LogLevel> levels() const {
    const std::lock_guard lock(_mutex);
    return _levels;
  }

 private:
  mutable std::mutex _mutex;
  std::vector<std::string> _lines;
  std::vector<foundation::LogLevel> _levels;
};

/// Turns logging on into a sink of its own for as long as it lives.
class RecordedLog {
 public:
  RecordedLog() {
    session::setLogSink(_sink);
    session::setLoggingEnabled(true);
  }
  ~RecordedLog() {
    session::setLoggingEnabled(false);
    session::setLogSink(std::make_shared<foundation::StandardErrorLogSink>());
  }
  RecordedLog(const RecordedLog&) = delete;
  RecordedLog& operator=(const RecordedLog&) = delete;

  std::vector<std::string> lines() const { return _sink->lines(); }
  std::vector<foundation::LogLevel> levels() const { return _sink->levels(); }

 private:
  std::shared_ptr<RecordingLogSink> _sink = std::make_shared<RecordingLogSink>();
};

}  // namespace kestrom::tests
