#include "Platform/Networking/LiveLoops.hpp"

#include "Platform/Networking/CurlLoop.hpp"

#include <cstdlib>
#include <mutex>
#include <vector>

namespace kestrom::networking::live_loops {

namespace {

struct Register {
  std::mutex mutex;
  std::vector<CurlLoop*> loops;
};

/// Never destroyed, as it is asked last of all.
Register& theRegister() {
  static auto* const kRegister = new Register;
  return *kRegister;
}

void freezeAll() {
  const std::lock_guard lock(theRegister().mutex);
  for (CurlLoop* const loop : theRegister().loops) loop->freeze();
}

}  // namespace

void freezeAtExit() {
  static_cast<void>(std::atexit(&freezeAll));
}

void add(CurlLoop& loop) {
  const std::lock_guard lock(theRegister().mutex);
  theRegister().loops.push_back(&loop);
}

void remove(CurlLoop& loop) {
  const std::lock_guard lock(theRegister().mutex);
  std::erase(theRegister().loops, &loop);
}

}  // namespace kestrom::networking::live_loops
