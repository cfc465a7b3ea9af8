#include "Platform/Networking/DriverSeat.hpp"

#include <utility>

namespace kestrom::networking {

void DriverSeat::await() {
  std::unique_lock lock(_mutex);
  const auto isTurn = [this] {
    if (_isClosed) return !_isGuestInside || _isClosedByGuest;
    return !_isGuestsTurn && !_isGuestInside;
  };
  while (!isTurn()) {
    // A guest that comes and goes shall not have to wake it each time, so it looks in a moment later instead.
    const std::uint64_t visitCount = _visitCount;
    _changed.wait_for(lock, kPatience, isTurn);
    if (isTurn()) break;
    if (_isGuestInside || !_isNeeded) {
      _isOwnerAsleep = true;
      _changed.wait(lock, [&] { return !_isOwnerAsleep || isTurn(); });
    } else if (visitCount == _visitCount) {
      _isGuestsTurn = false;
    }
  }
}

bool DriverSeat::giveAway() {
  const std::lock_guard lock(_mutex);
  if (!_isGuestCalled || _isClosed) return false;
  _isGuestsTurn = true;
  // For a moment at least: something may have been started since the owner looked.
  _isNeeded = true;
  return true;
}

DriverSeat::Entry DriverSeat::enter() {
  const std::lock_guard lock(_mutex);
  if (std::exchange(_isGuestCalled, false)) return Entry::called;
  if (!_isGuestsTurn || _isClosed) return Entry::refused;
  _isGuestInside = true;
  _wasNeededInside = false;
  ++_visitCount;
  _guest = std::this_thread::get_id();
  return Entry::entered;
}

void DriverSeat::leave(bool isNeeded) {
  const std::lock_guard lock(_mutex);
  _isGuestInside = false;
  _isNeeded = isNeeded || _wasNeededInside;
  if (_isNeeded) wakeOwner();
  // An owner whose turn it is waits for this.
  if (_isClosed || !_isGuestsTurn) _changed.notify_all();
}

void DriverSeat::returnToOwner() {
  const std::lock_guard lock(_mutex);
  _isGuestsTurn = false;
  _changed.notify_all();
}

bool DriverSeat::call() {
  const std::lock_guard lock(_mutex);
  _isGuestCalled = true;
  return _isGuestInside;
}

void DriverSeat::need() {
  const std::lock_guard lock(_mutex);
  _isNeeded = true;
  if (_isGuestInside) {
    _wasNeededInside = true;
  } else {
    wakeOwner();
  }
}

void DriverSeat::close() {
  const std::lock_guard lock(_mutex);
  _isClosed = true;
  _isClosedByGuest = _isGuestInside && _guest == std::this_thread::get_id();
  _changed.notify_all();
}

void DriverSeat::awaitClose() {
  std::unique_lock lock(_mutex);
  _changed.wait(lock, [this] { return _isClosed; });
}

/// To be called with the mutex held.
void DriverSeat::wakeOwner() {
  if (std::exchange(_isOwnerAsleep, false)) _changed.notify_all();
}

}  // namespace kestrom::networking
