#pragma once

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace kestrom::reactive {

/// Whether this process has no other thread, so that counts and marks need no exchange with one. A thread that starts
/// later sees all that was written before. False where the system does not tell.
inline bool isSingleThreaded() noexcept {
#if __has_include(<sys/single_threaded.h>)
  return __libc_single_threaded;
#else
  return false;
#endif
}

}  // namespace kestrom::reactive
