#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "base/KELXDynamicArray.h"
#include "base/KELXHashOption.h"

/// Maps 32-bit unsigned keys to values; the first value added for a key stays. Entries cannot be
/// removed.
///
/// A map works in one of two modes, fixed when it is made. In its own mode it is an open table with
/// linear probing over three arrays of equal length, the slots, of which at most three quarters are
/// taken. In the standard mode it is the standard library's unordered map. Both modes hash as
/// KELXHashOption says at the moment, so the switch must not change while a map holds entries.
///
/// Keys can be chosen so that they all meet in one place; then each operation takes time in
/// proportion to the number of entries. Bound that number where keys come from outside.
///
/// `V` obeys the rule of KELXDynamicArray for elements. One map is for one thread at a time.
template <typename K, typename V>
class KELXHashMap {
  static_assert(std::is_same_v<K, unsigned int>, "the hash is one of 32-bit keys");

 public:
  /// A hash of keys, and whether two keys are equal, for SetKeyFunctions. Equal keys need equal
  /// hashes.
  /// @{
  using KeyHash = unsigned int (*)(const K& key);
  using KeyEqual = bool (*)(const K& a, const K& b);
  /// @}

  /// The default hash: the key itself while the switch is on, else its bits well mixed.
  struct keyHasher {
    /// The hash of `key`.
    std::size_t operator()(const K& key) const noexcept { return DefaultHash(key); }
  };

  /// The default equality.
  using keyEqual = std::equal_to<K>;

  /// An empty map with room for `initialSize` entries, in standard mode when `allowStd` is true and
  /// the switch is on. A negative size, or one of 1,610,612,736 and more, gives a table without
  /// slots, which accepts nothing.
  KELXHashMap(int initialSize, bool allowStd)
      : keys_(SlotsFor(initialSize), K{}),
        values_(SlotsFor(initialSize), V{}),
        used_(SlotsFor(initialSize), false) {
    if (allowStd && KELXHashOption::GetUseStdHash()) {
      standard_ = std::make_unique<KELXHashMapData>(std::max(initialSize, 0));
    }
  }
  KELXHashMap(const KELXHashMap&) = delete;
  KELXHashMap& operator=(const KELXHashMap&) = delete;

  /// Replaces hash and equality of keys in own mode; null stands for the default. Only for a map
  /// that has no entries yet.
  void SetKeyFunctions(KeyHash hash, KeyEqual equal) {
    hash_ = hash;
    equal_ = equal;
  }

  /// Adds `key` with `value` and returns true; false, with nothing changed, when the key is there.
  /// The own table doubles first when one entry more would fill over three quarters of it, also for
  /// a key that is there.
  bool Add(const K& key, const V& value) {
    if (standard_) return standard_->map.try_emplace(key, value).second;
    const int slots = keys_.Count();
    if (static_cast<float>(count_ + 1) > static_cast<float>(slots) * kLoadFactor) {
      Rehash(static_cast<int>(2U * static_cast<unsigned int>(slots)));
    }
    if (!Add(keys_, values_, used_, key, value)) return false;
    ++count_;
    return true;
  }

  /// The insertion of the own mode into the slots given, three arrays of equal length. False, with
  /// nothing changed, when the key is there or no slot is free.
  bool Add(KELXDynamicArray<K>& keys, KELXDynamicArray<V>& values, KELXDynamicArray<bool>& used,
           const K& key, const V& value) {
    const int slot = Probe(keys, used, key);
    if (slot < 0 || used.begin()[slot]) return false;
    *keys.At(slot) = key;
    *values.At(slot) = value;
    *used.At(slot) = true;
    return true;
  }

  /// Moves the entries of the own table to one of `size` slots; ignored when they are not more than
  /// the entries that there are. An empty map takes any size: below 1 it has no slots and accepts
  /// nothing from then on. In standard mode asks for `size` buckets.
  void Rehash(int size) {
    if (standard_) return standard_->map.rehash(static_cast<std::size_t>(std::max(size, 0)));
    if (count_ > 0 && size <= static_cast<int>(count_)) return;
    KELXDynamicArray<K> keys(size, K{});
    KELXDynamicArray<V> values(size, V{});
    KELXDynamicArray<bool> used(size, false);
    for (int slot = 0; slot < keys_.Count(); ++slot) {
      if (!used_.begin()[slot]) continue;
      Add(keys, values, used, keys_.begin()[slot], values_.begin()[slot]);
    }
    keys_ = keys;
    values_ = values;
    used_ = used;
  }

  /// In own mode the slot of `key`, in standard mode the number of the bucket that holds it; -1
  /// when it is not there.
  [[nodiscard]] int FindKey(const K& key) const {
    if (standard_) {
      const auto& map = standard_->map;
      return map.contains(key) ? static_cast<int>(map.bucket(key)) : -1;
    }
    const int slot = Probe(keys_, used_, key);
    return slot >= 0 && used_.begin()[slot] ? slot : -1;
  }

  /// The number of entries.
  [[nodiscard]] int Count() const {
    return static_cast<int>(standard_ ? standard_->map.size() : count_);
  }

  /// Copies the value of `key` to `value`; false, with `value` untouched, when there is none.
  bool Lookup(const K& key, V& value) const {
    if (standard_) {
      const auto entry = standard_->map.find(key);
      if (entry == standard_->map.end()) return false;
      value = entry->second;
      return true;
    }
    const int slot = FindKey(key);
    if (slot < 0) return false;
    value = values_.begin()[slot];
    return true;
  }

 private:
  static constexpr float kLoadFactor = 0.75F;

  struct KELXHashMapData {
    explicit KELXHashMapData(int buckets) : map(static_cast<std::size_t>(buckets)) {}
    std::unordered_map<K, V, keyHasher, keyEqual> map;
  };

  /// Four thirds of `entries` and one more; 0 when that is no positive 32-bit number.
  static int SlotsFor(int entries) {
    constexpr double kSlotsAnEntry = 1.3333333333333333;
    const auto slots = static_cast<std::int64_t>(entries * kSlotsAnEntry) + 1;
    return slots > 0 && slots <= INT_MAX ? static_cast<int>(slots) : 0;
  }

  static unsigned int ShiftSigned(unsigned int x, int bits) {
    return static_cast<unsigned int>(static_cast<int>(x) >> bits);
  }

  /// Thomas Wang's integer hash, with shifts to the right that keep the sign.
  static unsigned int DefaultHash(K key) {
    if (KELXHashOption::GetUseStdHash()) return key;
    unsigned int x = key;
    x = ~(x << 15) + x;
    x ^= ShiftSigned(x, 10);
    x *= 9;
    x ^= ShiftSigned(x, 6);
    x = ~(x << 11) + x;
    return x ^ ShiftSigned(x, 16);
  }

  /// The slot that holds `key`, or else the free one where the search for it ends; -1 when all
  /// slots are taken by others.
  int Probe(const KELXDynamicArray<K>& keys, const KELXDynamicArray<bool>& used,
            const K& key) const {
    const int slots = keys.Count();
    if (slots == 0) return -1;
    const unsigned int hash = hash_ != nullptr ? hash_(key) : DefaultHash(key);
    int slot = static_cast<int>(hash % static_cast<unsigned int>(slots));
    for (int probes = 0; probes < slots; ++probes) {
      const K& present = keys.begin()[slot];
      if (!used.begin()[slot]) return slot;
      if (equal_ != nullptr ? equal_(present, key) : present == key) return slot;
      slot = slot + 1 == slots ? 0 : slot + 1;
    }
    return -1;
  }

  KELXDynamicArray<K> keys_;
  KELXDynamicArray<V> values_;
  KELXDynamicArray<bool> used_;
  KeyHash hash_ = nullptr;
  KeyEqual equal_ = nullptr;
  std::unique_ptr<KELXHashMapData> standard_;  // null in own mode
  unsigned int count_ = 0;                     // of the own table
};
