#pragma once
// State of the loaded module as a whole.

#include <atomic>
#include <cstdint>
#include <mutex>

namespace NCom {

class Module {
 public:
  /// One lock per living object and per server lock; the module may be unloaded when none is left.
  void Lock() { mLocks.fetch_add(1, std::memory_order_relaxed); }
  void Unlock() { mLocks.fetch_sub(1, std::memory_order_acq_rel); }
  std::uint32_t LockCount() const { return mLocks.load(std::memory_order_acquire); }

  /// Guards the lazy creation of class factories.
  std::mutex& FactorySection() { return mFactorySection; }

 private:
  std::atomic<std::uint32_t> mLocks{0};
  std::mutex mFactorySection;
};

Module& TheModule();

}  // namespace NCom
