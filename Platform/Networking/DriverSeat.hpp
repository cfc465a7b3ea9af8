#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace kestrom::networking {

/// Who waits for the exchanges of a session: the owner, which is the session's own thread, or a guest, which is the
/// main queue's while it has nothing else to do. To whom answers come is where they go next, which saves waking a
/// thread for each. The owner gives the seat away when it has woken the guest anyhow, and takes it back when the guest,
/// busy elsewhere, stays away for longer than a moment. At any time one of them at most is in the seat.
class DriverSeat {
 public:
  /// How long exchanges may be left alone by a guest that is busy.
  static constexpr std::chrono::milliseconds kPatience{5};

  /// Owner: returns once the seat is its own, or closed.
  void await();
  /// Owner: gives the seat away if the guest is about to come. False when it keeps it.
  bool giveAway();

  enum class Entry : std::uint8_t {
    refused,
    /// It was called and must look at its own work first.
    called,
    entered,
  };
  /// Guest.
  Entry enter();
  /// Guest: `isNeeded` says whether somebody must wait on.
  void leave(bool isNeeded);

  /// What is to be done from now on is the owner's, though the guest may still be inside. Any thread.
  void returnToOwner();
  /// The guest has work of its own and will come by. True when it has to be woken inside. Any thread.
  bool call();
  /// There is something to wait for. Any thread.
  void need();
  /// The seat is the owner's for good, once the guest has left. When it is the guest who closes, the owner does not
  /// wait for that. Any thread.
  void close();
  /// Owner: returns once the seat is closed.
  void awaitClose();

 private:
  void wakeOwner();

  mutable std::mutex _mutex;
  std::condition_variable _changed;
  bool _isGuestsTurn = false;
  bool _isGuestInside = false;
  /// It was called and has not come since.
  bool _isGuestCalled = false;
  bool _isNeeded = false;
  bool _wasNeededInside = false;
  bool _isOwnerAsleep = false;
  bool _isClosed = false;
  bool _isClosedByGuest = false;
  std::uint64_t _visitCount = 0;
  /// While it is inside.
  std::thread::id _guest;
};

}  // namespace kestrom::networking
