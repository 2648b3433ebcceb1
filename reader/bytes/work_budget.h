#ifndef MDF_READER_BYTES_WORK_BUDGET_H_
#define MDF_READER_BYTES_WORK_BUDGET_H_

#include <algorithm>
#include <cstdint>

namespace mdf_reader {

/// Keeps work in proportion to the file, whatever the file says. This is the one rule against
/// hostile files: who follows links, lengths and counts takes the bytes that this costs from a
/// budget, which is so many times the size of what is worked on, and at least so much.
///
/// Blocks that do not overlap have no more bytes together than their file, so that a sound file
/// never comes to the end of a budget. Where blocks cover the same bytes again and again, the
/// excess is left out, and where users would miss it, they are told (Code::work_limited).
class WorkBudget {
 public:
  explicit WorkBudget(std::uint64_t size, std::uint64_t times = 1, std::uint64_t at_least = 0)
      : limit_(std::max(at_least, times * std::min(size, UINT64_MAX / times))) {}

  /// Whether there is so much left. If so, it is taken; a refusal costs nothing.
  bool take(std::uint64_t bytes) {
    const bool is_enough = bytes <= left();
    spent_ += is_enough ? bytes : 0;
    return is_enough;
  }

  /// Takes what work has cost already; false, from then on, when that was too much.
  bool spend(std::uint64_t bytes) {
    spent_ += std::min(bytes, UINT64_MAX - spent_);
    return !isOverspent();
  }

  bool isOverspent() const { return spent_ > limit_; }
  std::uint64_t left() const { return isOverspent() ? 0 : limit_ - spent_; }
  std::uint64_t spent() const { return spent_; }

 private:
  std::uint64_t limit_;
  std::uint64_t spent_ = 0;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_WORK_BUDGET_H_
