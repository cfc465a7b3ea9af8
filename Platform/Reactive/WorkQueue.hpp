#pragma once

#include "Kestrom/Platform/Scheduler.hpp"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>

namespace kestrom::reactive {

/// What schedulers have in common: work in the order of due times, of equal ones in that of their scheduling. Any
/// thread.
class WorkQueue : public RefCounted {
 public:
  using Position = std::pair<TimePoint, std::uint64_t>;

  void add(TimePoint due, Work work);
  AnyCancellable addCancellable(TimePoint due, Work work);

  /// Takes the first work that is due at `time` and was scheduled before `end`; also tells when it was due.
  std::optional<std::pair<TimePoint, Work>> takeDue(TimePoint time, std::uint64_t end = UINT64_MAX);

  std::optional<TimePoint> nextDue() const;
  std::size_t size() const;
  /// What is scheduled from now on comes at or behind this number.
  std::uint64_t nextNumber() const;
  /// Drops all.
  void clear();

 private:
  class Token;

  Position insert(TimePoint due, Work work);
  Work remove(Position position);

  mutable std::mutex _mutex;
  std::map<Position, Work> _work;
  std::uint64_t _nextNumber = 0;
};

}  // namespace kestrom::reactive
