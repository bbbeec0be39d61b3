#include "benchmarks/allocations.h"

#include <cstdlib>
#include <new>

// In a file of their own: where the compiler sees both sides, it takes them for a mismatch.

namespace {

std::uint64_t gAllocations = 0;

}  // namespace

std::uint64_t Allocations() { return gAllocations; }

void* operator new(std::size_t size) {
  ++gAllocations;
  if (void* memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
