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

  /// The bytes held on top of those held at the start; 0 when all has been given back.
  std::size_t heldBytes() const;

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

/// As long as one exists, one `new` fails: the one that comes after `successes` others.
class AllocationFailure {
 public:
  explicit AllocationFailure(std::size_t successes);
  ~AllocationFailure();
  AllocationFailure(const AllocationFailure&) = delete;
  AllocationFailure& operator=(const AllocationFailure&) = delete;

  bool hasHappened() const;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_ALLOCATION_COUNTER_H_
