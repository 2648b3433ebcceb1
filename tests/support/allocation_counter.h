#ifndef MDF_TESTS_SUPPORT_ALLOCATION_COUNTER_H_
#define MDF_TESTS_SUPPORT_ALLOCATION_COUNTER_H_

#include <cstddef>

namespace mdf_tests {

/// Counts what the program takes from the heap with `new` from this object's construction on. There
/// is one meter at a time: a new one starts the peak over. Valgrind puts its own `new` in the place
/// of the counting one unless it is told --soname-synonyms=somalloc=nouserintercepts.
class AllocationMeter {
 public:
  AllocationMeter();

  /// Allocations so far.
  std::size_t count() const;

  /// The most bytes held at any one time, on top of those held at the start. A little above what
  /// was asked for, as the heap rounds sizes up.
  std::size_t peakBytes() const;

 private:
  std::size_t count_at_start_;
  std::size_t bytes_at_start_;
};

/// As long as one exists, `new` fails where it would let more than `bytes` be held on top of those
/// held at the start.
class AllocationLimit {
 public:
  explicit AllocationLimit(std::size_t bytes);
  ~AllocationLimit();
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_ALLOCATION_COUNTER_H_
