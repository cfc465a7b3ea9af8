#include "Platform/Reactive/WorkQueue.hpp"

#include <utility>

namespace kestrom::reactive {

class WorkQueue::Token final : public CancelTarget {
 public:
  Token(Ref<WorkQueue> queue, Position position) : _queue(std::move(queue)), _position(position) {}

  void cancel() override { const Work dropped = _queue->remove(_position); }
  bool isDone() const override {
    const std::lock_guard lock(_queue->_mutex);
    return !_queue->_work.contains(_position);
  }

 private:
  Ref<WorkQueue> _queue;
  Position _position;
};

WorkQueue::Position WorkQueue::insert(TimePoint due, Work work) {
  const std::lock_guard lock(_mutex);
  const Position position(due, _nextNumber++);
  _work.emplace(position, std::move(work));
  return position;
}

void WorkQueue::add(TimePoint due, Work work) {
  insert(due, std::move(work));
}

AnyCancellable WorkQueue::addCancellable(TimePoint due, Work work) {
  return AnyCancellable(makeRef<Token>(Ref<WorkQueue>(this), insert(due, std::move(work))));
}

std::optional<std::pair<TimePoint, Work>> WorkQueue::takeDue(TimePoint time, std::uint64_t end) {
  const std::lock_guard lock(_mutex);
  for (auto next = _work.begin(); next != _work.end() && next->first.first <= time; ++next) {
    if (next->first.second >= end) continue;
    auto taken = _work.extract(next);
    return std::pair(taken.key().first, std::move(taken.mapped()));
  }
  return std::nullopt;
}

std::optional<TimePoint> WorkQueue::nextDue() const {
  const std::lock_guard lock(_mutex);
  if (_work.empty()) return std::nullopt;
  return _work.begin()->first.first;
}

std::size_t WorkQueue::size() const {
  const std::lock_guard lock(_mutex);
  return _work.size();
}

std::uint64_t WorkQueue::nextNumber() const {
  const std::lock_guard lock(_mutex);
  return _nextNumber;
}

void WorkQueue::clear() {
  std::map<Position, Work> dropped;
  const std::lock_guard lock(_mutex);
  dropped.swap(_work);
}

Work WorkQueue::remove(Position position) {
  const std::lock_guard lock(_mutex);
  auto removed = _work.extract(position);
  return removed.empty() ? Work() : std::move(removed.mapped());
}

}  // namespace kestrom::reactive
