#include "Platform/Foundation/FatalError.hpp"

#include <atomic>
#include <cstdlib>

namespace kestrom::foundation {

namespace {

std::atomic<LogSink*> fatalErrorSink = nullptr;

}  // namespace

void setFatalErrorSink(LogSink& sink) {
  fatalErrorSink = &sink;
}

void fatalError(std::string_view text) {
  StandardErrorLogSink standard;
  LogSink* sink = fatalErrorSink;
  (sink ? *sink : standard).write(LogLevel::error, text);
  std::abort();
}

}  // namespace kestrom::foundation
