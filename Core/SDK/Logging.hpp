#pragma once

#include "Kestrom/Platform/LogSink.hpp"

#include <memory>
#include <source_location>
#include <string_view>

/// The kit's log. Both operations do nothing unless the host has enabled logs. No token, access code, address or answer
/// may be handed to them. Any thread.
namespace kestrom::session {

void logInfo(std::string_view message);

/// `function` is the operation's name as support knows it, for example "locationManager(_:didFailWithError:)"; file and
/// line are those of the call.
void logError(std::string_view errorDescription, std::string_view function,
              const std::source_location& place = std::source_location::current());

/// Where the lines go from now on; the standard error stream until then.
void setLogSink(std::shared_ptr<foundation::LogSink> sink);

}  // namespace kestrom::session
