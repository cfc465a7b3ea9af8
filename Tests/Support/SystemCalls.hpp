#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// Stands between the kit and the system's file calls, in a program that is linked with --wrap for
/// each of them.
namespace kestrom::tests {

struct SystemCall {
  enum class Kind : std::uint8_t {
    open,
    makeTemporary,
    read,
    write,
    synchronize,
    rename,
    unlink,
    makeDirectory,
    status,
  };

  Kind kind;
  /// Of the file that is read, written or synchronized.
  int descriptor = -1;
  /// Of the file that is opened, made, removed, looked at or given another name.
  std::string path = {};
  /// The other name.
  std::string newPath = {};
  /// What is written.
  std::span<const std::uint8_t> bytes = {};
};

/// What comes of a call that does not just go to the system.
struct Interference {
  /// The error that the call gives, without having done anything; 0 for none.
  int error = 0;
  /// So many bytes at most are written.
  std::optional<std::size_t> limit = {};
};

/// Sees the calls of the thread that made it, as long as it lives. One at a time.
class SystemCallWatch {
 public:
  SystemCallWatch();
  virtual ~SystemCallWatch();
  SystemCallWatch(const SystemCallWatch&) = delete;
  SystemCallWatch& operator=(const SystemCallWatch&) = delete;

  virtual Interference before(const SystemCall&) { return {}; }
  /// `result` is what the system gave: a descriptor, a number of bytes, 0; negative for a failure. A file that was made
  /// with a name of the system's choice has its name in `call`.
  virtual void after(const SystemCall& /*call*/, long /*result*/) {}
};

/// Lets the n-th call fail, or the n-th and all that follow.
class FaultySystemCalls : public SystemCallWatch {
 public:
  enum class Fault : std::uint8_t {
    noSpace,
    noPermission,
    /// Half of what is to be written is written, and the rest finds no space. Only writing counts.
    shortWrite,
  };

  /// `n` counts from 1; 0 lets nothing fail.
  FaultySystemCalls(Fault fault, int n, bool isForGood) : _fault(fault), _n(n), _isForGood(isForGood) {}

  Interference before(const SystemCall& call) override;

  /// So many calls were made that could have failed.
  int count() const { return _count; }

 private:
  Fault _fault;
  int _n;
  bool _isForGood;
  int _count = 0;
  bool _wasCutShort = false;
};

}  // namespace kestrom::tests
