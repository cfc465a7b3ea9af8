#pragma once

#include "Kestrom/Export.hpp"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kestrom::foundation {

/// Names of what happens to the whole application. A host posts them as its system tells it.
inline constexpr std::string_view kApplicationDidEnterBackground = "UIApplicationDidEnterBackgroundNotification";
inline constexpr std::string_view kApplicationDidBecomeActive = "UIApplicationDidBecomeActiveNotification";
inline constexpr std::string_view kApplicationWillTerminate = "UIApplicationWillTerminateNotification";

/// Passes on what is posted under a name to those who observe that name. Any thread.
class KESTROM_API NotificationCenter {
 private:
  struct Observer;
  struct State;

 public:
  /// An observation; ends when dropped. May outlive the center.
  ///
  /// Once the drop has returned, the handler is not called any more and does not run: a drop waits for a call that is
  /// under way on another thread, so nobody may hold a lock that the handler takes. Within its own handler an
  /// observation may be dropped freely.
  class [[nodiscard]] Observation {
   public:
    Observation() = default;
    ~Observation() { end(); }
    Observation(Observation&&) noexcept = default;
    Observation& operator=(Observation&& other) noexcept;

   private:
    friend class NotificationCenter;
    Observation(std::weak_ptr<State> state, std::shared_ptr<Observer> observer);
    void end();

    std::weak_ptr<State> _state;
    std::shared_ptr<Observer> _observer;
  };

  NotificationCenter();
  ~NotificationCenter();
  NotificationCenter(const NotificationCenter&) = delete;
  NotificationCenter& operator=(const NotificationCenter&) = delete;

  /// Calls `handler` for each later post of `name`, on the thread that posts, one call at a time.
  Observation addObserver(std::string_view name, std::function<void()> handler);

  /// Calls the observers of `name` in the order in which they were added and returns when all are done. Observers that
  /// are added meanwhile wait for the next post; those that are removed meanwhile are left out.
  void post(std::string_view name);

 private:
  std::shared_ptr<State> _state;
};

}  // namespace kestrom::foundation
