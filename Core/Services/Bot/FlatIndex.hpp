#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

namespace kestrom::services {

/// Table from keys to small numbers, in one block of memory: a walk looks up every node, and a node container's
/// allocation for each entry would cost more than the rest of the walk. Entries are never removed. Keys are kept as
/// they are given, so what a `std::string_view` points to must outlive the table.
template <class Key, class Hash = std::hash<Key>>
class FlatIndex {
 public:
  static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

  explicit FlatIndex(std::size_t expectedCount = 0) { resize(expectedCount); }

  /// The number stored under `key`, else `kNone`.
  std::uint32_t find(const Key& key) const {
    const auto hash = static_cast<std::uint32_t>(Hash{}(key));
    return _slots[position(key, hash)].value;
  }

  /// Stores `value` under `key` unless something is stored there; gives what is stored.
  std::uint32_t insert(const Key& key, std::uint32_t value) {
    const auto hash = static_cast<std::uint32_t>(Hash{}(key));
    Slot* slot = &_slots[position(key, hash)];
    if (slot->value != kNone) return slot->value;
    if (2 * ++_count > _slots.size()) {
      resize(2 * _count);
      slot = &_slots[position(key, hash)];
    }
    *slot = {key, hash, value};
    return value;
  }

 private:
  struct Slot {
    Key key{};
    std::uint32_t hash = 0;
    std::uint32_t value = kNone;
  };

  /// Slot that holds `key`, else the empty one where it belongs. At least half of the slots are empty.
  std::size_t position(const Key& key, std::uint32_t hash) const {
    const std::size_t mask = _slots.size() - 1;
    std::size_t at = hash & mask;
    while (_slots[at].value != kNone && !(_slots[at].hash == hash && _slots[at].key == key)) at = (at + 1) & mask;
    return at;
  }

  void resize(std::size_t count) {
    std::vector<Slot> old = std::exchange(_slots, std::vector<Slot>(std::bit_ceil(2 * count + 2)));
    for (Slot& slot : old) {
      if (slot.value != kNone) _slots[position(slot.key, slot.hash)] = std::move(slot);
    }
  }

  std::vector<Slot> _slots;
  std::size_t _count = 0;
};

}  // namespace kestrom::services
