#pragma once

#include "Kestrom/Platform/LogSink.hpp"

#include <string_view>

namespace kestrom::foundation {

/// Ends the process for a mistake of a programmer: one log line with exactly `text`, then abort. Never for bad bytes
/// from a server or the disk. Any thread.
[[noreturn]] void fatalError(std::string_view text);

/// Where the last line of the process goes; the standard error stream until a host says otherwise. `sink` must live as
/// long as the process. One for the process, because whoever finds a mistake is about to end it and has no sink at
/// hand.
void setFatalErrorSink(LogSink& sink);

}  // namespace kestrom::foundation
