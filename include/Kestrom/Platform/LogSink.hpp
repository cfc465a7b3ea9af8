#pragma once

#include "Kestrom/Export.hpp"

#include <cstdint>
#include <string_view>

namespace kestrom::foundation {

enum class LogLevel : std::uint8_t { info, error };

/// Where log lines go. Called from any thread.
class KESTROM_API LogSink {
 public:
  virtual ~LogSink() = default;

  /// Takes one line, without a line feed at its end.
  virtual void write(LogLevel level, std::string_view line) = 0;
};

/// Writes each line to the standard error stream, whole lines even when threads write at once.
class KESTROM_API StandardErrorLogSink final : public LogSink {
 public:
  void write(LogLevel level, std::string_view line) override;
};

}  // namespace kestrom::foundation
