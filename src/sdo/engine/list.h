#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

namespace NSdo {

/// Dynamic array that stays sorted by the number KeyOf gives for an entry; keys are unique. It grows by 32
/// entries when full and never throws.
template <class T, auto KeyOf>
class SdoList {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  /// Empties the list and makes room for `capacity` entries. false: no memory.
  bool Create(std::uint32_t capacity = 1) {
    mCount = 0;
    return mCapacity >= capacity || Grow(capacity);
  }

  /// false: no memory; the list is as it was.
  bool Insert(const T& entry) {
    if (mCount == mCapacity && !Grow(mCapacity + kGrowth)) return false;
    T* place = LowerBound(KeyOf(entry));
    std::copy_backward(place, end(), end() + 1);
    *place = entry;
    ++mCount;
    return true;
  }

  /// The entry with this key, or null. Valid until the next change of the list.
  T* Find(std::uint32_t key) const {
    if (mCount == 0) return nullptr;
    T* first = mEntries.get();
    T* last = first + mCount - 1;
    if (KeyOf(*first) == key) return first;
    if (key < KeyOf(*first) || key > KeyOf(*last)) return nullptr;
    T* place = LowerBound(key);
    return KeyOf(*place) == key ? place : nullptr;
  }

  /// `entry` is one that Find gave.
  void Remove(T* entry) {
    std::copy(entry + 1, end(), entry);
    --mCount;
  }

  T* begin() const { return mEntries.get(); }
  T* end() const { return mEntries.get() + mCount; }
  std::uint32_t Count() const { return mCount; }
  std::uint32_t Capacity() const { return mCapacity; }

 private:
  static constexpr std::uint32_t kGrowth = 32;

  bool Grow(std::uint32_t capacity) {
    std::unique_ptr<T[]> larger(new (std::nothrow) T[capacity]);
    if (!larger) return false;
    std::copy(begin(), end(), larger.get());
    mEntries = std::move(larger);
    mCapacity = capacity;
    return true;
  }

  T* LowerBound(std::uint32_t key) const {
    return std::partition_point(begin(), end(), [key](const T& entry) { return KeyOf(entry) < key; });
  }

  std::unique_ptr<T[]> mEntries;
  std::uint32_t mCount = 0;
  std::uint32_t mCapacity = 0;
};

}  // namespace NSdo
