#include "Kestrom/Platform/LogSink.hpp"

#include <cstdio>
#include <string>

namespace kestrom::foundation {

void StandardErrorLogSink::write(LogLevel, std::string_view line) {
  // One call a line: the stream's lock keeps lines of several threads apart.
  std::string text(line);
  text += '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace kestrom::foundation
