#include "allocation_counter.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

struct Heap {
  std::size_t allocations;
  std::size_t bytes;
  std::size_t peak_bytes;
  std::size_t limit;          ///< of `bytes`; 0 for none
  std::size_t until_failure;  ///< allocations up to the one that fails, itself included; 0 for none
};

// Without a constructor, so that it is there before anything allocates.
Heap heap;

bool isWithinLimit(std::size_t size) {
  return heap.limit == 0 || (heap.bytes <= heap.limit && size <= heap.limit - heap.bytes);
}

bool isToFail() { return heap.until_failure != 0 && --heap.until_failure == 0; }

void* allocate(std::size_t size) noexcept {
  if (isToFail() || !isWithinLimit(size)) {
    return nullptr;
  }
  void* memory = std::malloc(size);
  if (memory != nullptr) {
    ++heap.allocations;
    heap.bytes += malloc_usable_size(memory);
    heap.peak_bytes = std::max(heap.peak_bytes, heap.bytes);
  }
  return memory;
}

void* allocateOrThrow(std::size_t size) {
  void* memory = allocate(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void release(void* memory) noexcept {
  heap.bytes -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

// All of them: a sanitizer brings its own set, and memory must be released by the set that it came
// from.
void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }

namespace mdf_tests {

AllocationMeter::AllocationMeter()
    : count_at_start_(heap.allocations), bytes_at_start_(heap.bytes) {
  heap.peak_bytes = heap.bytes;
}

std::size_t AllocationMeter::count() const { return heap.allocations - count_at_start_; }

std::size_t AllocationMeter::peakBytes() const { return heap.peak_bytes - bytes_at_start_; }

std::size_t AllocationMeter::heldBytes() const { return heap.bytes - bytes_at_start_; }

AllocationLimit::AllocationLimit(std::size_t bytes) { heap.limit = heap.bytes + bytes; }

AllocationLimit::~AllocationLimit() { heap.limit = 0; }

AllocationFailure::AllocationFailure(std::size_t successes) { heap.until_failure = successes + 1; }

AllocationFailure::~AllocationFailure() { heap.until_failure = 0; }

bool AllocationFailure::hasHappened() const { return heap.until_failure == 0; }

}  // namespace mdf_tests
