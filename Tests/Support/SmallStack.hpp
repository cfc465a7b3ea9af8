#pragma once

#include <pthread.h>

#include <cstddef>

namespace kestrom::tests {

/// The stack of a background thread on a phone.
inline constexpr std::size_t kSmallStack = 512 * 1024;

/// Runs `work` on a thread of its own with a small stack and waits for its end. Running over ends the process.
template <class Work>
void onSmallStack(Work work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kSmallStack);
  pthread_t thread;
  pthread_create(
      &thread, &attributes,
      [](void* argument) -> void* {
        (*static_cast<Work*>(argument))();
        return nullptr;
      },
      &work);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace kestrom::tests
