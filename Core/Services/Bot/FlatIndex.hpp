#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrom::services {

/// A hash of a text for tables that live for one walk: cheap on short texts, of no meaning outside the process.
inline std::uint32_t hashOf(std::string_view text) {
  constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15U;
  std::uint64_t hash = text.size() * kMultiplier;
  const auto mix = [&](std::size_t length) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data(), length);
    hash = (hash ^ word) * kMultiplier;
    hash ^= hash >> 32U;
    text.remove_prefix(length);
  };
  while (text.size() >= sizeof(std::uint64_t)) mix(sizeof(std::uint64_t));
  if (!text.empty()) mix(text.size());
  return static_cast<std::uint32_t>(hash);
}

/// Hash table of small numbers, each standing for a key that its owner keeps: `keyOf(number)` gives that key, `hash` is
/// always the same function of it. Numbers are never removed. One block of eight bytes a slot, because a walk makes a
/// table of all answers and pays for each cache line.
class FlatIndex {
 public:
  static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

  explicit FlatIndex(std::size_t expectedCount = 0) { resize(expectedCount); }

  /// The number that stands for `key`, else `kNone`.
  template <class Key, class KeyOf>
  std::uint32_t find(const Key& key, std::uint32_t hash, const KeyOf& keyOf) const {
    return _slots[position(key, hash, keyOf)].number;
  }

  /// The number that stands for `key`: `number` unless there is one already.
  template <class Key, class KeyOf>
  std::uint32_t insert(const Key& key, std::uint32_t hash, std::uint32_t number, const KeyOf& keyOf) {
    Slot& slot = _slots[position(key, hash, keyOf)];
    if (slot.number != kNone) return slot.number;
    slot = {hash, number};
    if (2 * ++_count > _slots.size()) resize(2 * _count);
    return number;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number = kNone;
  };

  /// Where `key` stands, else the empty slot where it belongs. At least half of the slots are empty.
  template <class Key, class KeyOf>
  std::size_t position(const Key& key, std::uint32_t hash, const KeyOf& keyOf) const {
    const std::size_t mask = _slots.size() - 1;
    std::size_t at = hash & mask;
    while (_slots[at].number != kNone && !(_slots[at].hash == hash && keyOf(_slots[at].number) == key)) {
      at = (at + 1) & mask;
    }
    return at;
  }

  void resize(std::size_t count) {
    const std::vector<Slot> old = std::exchange(_slots, std::vector<Slot>(std::bit_ceil(2 * count + 2)));
    const std::size_t mask = _slots.size() - 1;
    for (const Slot& slot : old) {
      std::size_t at = slot.hash & mask;
      while (_slots[at].number != kNone) at = (at + 1) & mask;
      if (slot.number != kNone) _slots[at] = slot;
    }
  }

  std::vector<Slot> _slots;
  std::size_t _count = 0;
};

}  // namespace kestrom::services
