#include "allocation_limit.h"

#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::int64_t no_limit = std::numeric_limits<std::int64_t>::max();

std::int64_t limit = no_limit;
std::int64_t in_use = 0;
std::int64_t most_in_use = 0;

bool isWithinLimit(std::size_t size) {
  return limit == no_limit ||
         size <= static_cast<std::uint64_t>(std::max<std::int64_t>(limit - in_use, 0));
}

void count(void* memory, std::int64_t sign) {
  if (limit != no_limit && memory != nullptr) {
    in_use += sign * static_cast<std::int64_t>(malloc_usable_size(memory));
    most_in_use = std::max(most_in_use, in_use);
  }
}

}  // namespace

void* operator new(std::size_t size) {
  void* memory = isWithinLimit(size) ? std::malloc(std::max<std::size_t>(size, 1)) : nullptr;
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  count(memory, 1);
  return memory;
}

void* operator new[](std::size_t size) { return operator new(size); }

void operator delete(void* memory) noexcept {
  count(memory, -1);
  std::free(memory);
}

void operator delete[](void* memory) noexcept { operator delete(memory); }

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

void operator delete[](void* memory, std::size_t) noexcept { operator delete(memory); }

namespace mdf_tests {

AllocationLimit::AllocationLimit(std::size_t bytes) {
  in_use = 0;
  most_in_use = 0;
  limit = static_cast<std::int64_t>(bytes);
}

AllocationLimit::~AllocationLimit() { limit = no_limit; }

std::size_t AllocationLimit::peak() const { return static_cast<std::size_t>(most_in_use); }

}  // namespace mdf_tests
