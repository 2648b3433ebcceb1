#ifndef MDF_READER_BYTES_ALLOWANCE_H_
#define MDF_READER_BYTES_ALLOWANCE_H_

#include <cstdint>

namespace mdf_reader {

/// How much may still be read. Blocks that do not overlap have no more bytes together than their
/// file. Where a hostile file's blocks all cover the same bytes, the excess is not checked, so that
/// the work does not grow with the square of the file's size.
class Allowance {
 public:
  explicit Allowance(std::uint64_t bytes) : left_(bytes) {}

  /// Whether so many bytes may be read. If so, they are deducted.
  bool take(std::uint64_t bytes) {
    if (bytes > left_) {
      return false;
    }
    left_ -= bytes;
    return true;
  }

 private:
  std::uint64_t left_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_ALLOWANCE_H_
