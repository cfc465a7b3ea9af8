#include "Tests/Support/SystemCalls.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace kestrom::tests {

namespace {

thread_local SystemCallWatch* theWatch = nullptr;

using Kind = SystemCall::Kind;

/// Makes a call through the watch: `system(limit)` is the real one, after which `complete` adds what is known only
/// then.
template <class System, class Complete = void (*)(SystemCall&)>
auto watched(
    SystemCall call, System system, Complete complete = [](SystemCall&) {}) -> decltype(system(std::size_t{})) {
  if (!theWatch) return system(call.bytes.size());
  const Interference interference = theWatch->before(call);
  if (interference.error != 0) {
    errno = interference.error;
    return -1;
  }
  const auto result = system(std::min(call.bytes.size(), interference.limit.value_or(call.bytes.size())));
  const int error = errno;
  complete(call);
  theWatch->after(call, result);
  errno = error;
  return result;
}

}  // namespace

SystemCallWatch::SystemCallWatch() {
  theWatch = this;
}

SystemCallWatch::~SystemCallWatch() {
  theWatch = nullptr;
}

Interference FaultySystemCalls::before(const SystemCall& call) {
  if (_fault == Fault::shortWrite && call.kind != Kind::write) return {};
  if (_wasCutShort && !_isForGood) {
    _wasCutShort = false;
    return {.error = ENOSPC};
  }
  ++_count;
  if (_n == 0 || _count < _n || (_count > _n && !_isForGood)) return {};
  switch (_fault) {
    case Fault::noSpace:
      return {.error = ENOSPC};
    case Fault::noPermission:
      return {.error = EACCES};
    case Fault::shortWrite:
      break;
  }
  if (_wasCutShort || call.bytes.size() < 2) return {.error = ENOSPC};
  _wasCutShort = true;
  return {.limit = call.bytes.size() / 2};
}

}  // namespace kestrom::tests

using kestrom::tests::SystemCall;
using kestrom::tests::watched;
using Kind = SystemCall::Kind;

// The linker leads the kit's calls to __wrap_… and gives the system's under the name __real_….
extern "C" {

int __real_open(const char* path, int flags, ...);
int __real_mkostemp(char* path, int flags);
ssize_t __real_read(int descriptor, void* bytes, size_t size);
ssize_t __real_write(int descriptor, const void* bytes, size_t size);
int __real_fsync(int descriptor);
int __real_rename(const char* path, const char* newPath);
int __real_unlink(const char* path);
int __real_mkdir(const char* path, mode_t mode);
int __real_stat(const char* path, struct stat* status);
int __real_lstat(const char* path, struct stat* status);

int __wrap_open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const auto mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return watched({.kind = Kind::open, .path = path}, [&](std::size_t) { return __real_open(path, flags, mode); });
}

int __wrap_mkostemp(char* path, int flags) {
  return watched(
      {.kind = Kind::makeTemporary, .path = path}, [&](std::size_t) { return __real_mkostemp(path, flags); },
      [&](SystemCall& call) { call.path = path; });
}

ssize_t __wrap_read(int descriptor, void* bytes, size_t size) {
  return watched({.kind = Kind::read, .descriptor = descriptor},
                 [&](std::size_t) { return __real_read(descriptor, bytes, size); });
}

ssize_t __wrap_write(int descriptor, const void* bytes, size_t size) {
  return watched(
      {.kind = Kind::write, .descriptor = descriptor, .bytes = {static_cast<const std::uint8_t*>(bytes), size}},
      [&](std::size_t limit) { return __real_write(descriptor, bytes, limit); });
}

int __wrap_fsync(int descriptor) {
  return watched({.kind = Kind::synchronize, .descriptor = descriptor},
                 [&](std::size_t) { return __real_fsync(descriptor); });
}

int __wrap_rename(const char* path, const char* newPath) {
  return watched({.kind = Kind::rename, .path = path, .newPath = newPath},
                 [&](std::size_t) { return __real_rename(path, newPath); });
}

int __wrap_unlink(const char* path) {
  return watched({.kind = Kind::unlink, .path = path}, [&](std::size_t) { return __real_unlink(path); });
}

int __wrap_mkdir(const char* path, mode_t mode) {
  return watched({.kind = Kind::makeDirectory, .path = path}, [&](std::size_t) { return __real_mkdir(path, mode); });
}

int __wrap_stat(const char* path, struct stat* status) {
  return watched({.kind = Kind::status, .path = path}, [&](std::size_t) { return __real_stat(path, status); });
}

int __wrap_lstat(const char* path, struct stat* status) {
  return watched({.kind = Kind::status, .path = path}, [&](std::size_t) { return __real_lstat(path, status); });
}

}  // extern "C"
