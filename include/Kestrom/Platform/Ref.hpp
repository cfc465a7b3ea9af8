#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/SingleThreaded.hpp"

#include <atomic>
#include <concepts>
#include <cstddef>
#include <utility>

namespace kestrom::reactive {

/// Base of objects that live as long as a `Ref` points to them. The count is safe across threads.
class KESTROM_API RefCounted {
 public:
  RefCounted(const RefCounted&) = delete;
  RefCounted& operator=(const RefCounted&) = delete;

 protected:
  RefCounted() = default;
  virtual ~RefCounted() = default;

 private:
  template <class T>
  friend class Ref;

  void retain() const noexcept {
    // A new object is not known to others yet, so its first reference needs no exchange with them either.
    const std::size_t count = _count.load(std::memory_order_relaxed);
    if (count == 0 || isSingleThreaded()) {
      _count.store(count + 1, std::memory_order_relaxed);
    } else {
      _count.fetch_add(1, std::memory_order_relaxed);
    }
  }
  void release() const noexcept {
    // Whoever holds the only reference needs no exchange with others to know it.
    const std::size_t count = _count.load(std::memory_order_acquire);
    if (count == 1) {
      delete this;
    } else if (isSingleThreaded()) {
      _count.store(count - 1, std::memory_order_relaxed);
    } else if (_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      delete this;
    }
  }

  mutable std::atomic<std::size_t> _count = 0;
};

/// A counted pointer whose count lies in the object, so that a stage of a chain costs one allocation.
template <class T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}  // NOLINT(google-explicit-constructor): null is a pointer of every type
  explicit Ref(T* object) : _object(object) {
    if (_object) _object->retain();
  }
  Ref(const Ref& other) : Ref(other._object) {}
  Ref(Ref&& other) noexcept : _object(std::exchange(other._object, nullptr)) {}
  template <class Derived>
    requires std::convertible_to<Derived*, T*>
  Ref(const Ref<Derived>& other) : Ref(static_cast<T*>(other.get())) {}  // NOLINT(google-explicit-constructor)
  template <class Derived>
    requires std::convertible_to<Derived*, T*>
  Ref(Ref<Derived>&& other) noexcept : _object(other.detach()) {}  // NOLINT(google-explicit-constructor)
  ~Ref() {
    if (_object) _object->release();
  }

  Ref& operator=(Ref other) noexcept {
    std::swap(_object, other._object);
    return *this;
  }

  T* get() const { return _object; }
  T* operator->() const { return _object; }
  T& operator*() const { return *_object; }
  explicit operator bool() const { return _object != nullptr; }

  /// Gives the object up without counting down.
  T* detach() { return std::exchange(_object, nullptr); }

 private:
  T* _object = nullptr;
};

template <class T, class... Arguments>
Ref<T> makeRef(Arguments&&... arguments) {
  return Ref<T>(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace kestrom::reactive
