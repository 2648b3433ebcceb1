#ifndef MDF_TESTS_TOOLS_SUPPORT_ALLOCATION_LIMIT_H_
#define MDF_TESTS_TOOLS_SUPPORT_ALLOCATION_LIMIT_H_

#include <cstddef>

namespace mdf_tests {

/// As long as one exists, operator new throws std::bad_alloc rather than let more than `bytes` be
/// in use that were not in use before. For one thread.
class AllocationLimit {
 public:
  explicit AllocationLimit(std::size_t bytes);
  ~AllocationLimit();
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;

  /// The most that was in use at any time.
  std::size_t peak() const;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_ALLOCATION_LIMIT_H_
