#ifndef MDF_READER_BYTES_OFFSET_SET_H_
#define MDF_READER_BYTES_OFFSET_SET_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace mdf_reader {

/// A set of offsets in a file, other than 0. It takes 11 to 22 bytes for each, up to 32 while it
/// grows; a set with a node for each takes more than twice as much.
class OffsetSet {
 public:
  bool contains(std::uint64_t offset) const { return slots_[slotFor(offset)] == offset; }
  void insert(std::uint64_t offset);

 private:
  std::size_t slotFor(std::uint64_t offset) const;
  void grow();

  std::vector<std::uint64_t> slots_ = std::vector<std::uint64_t>(8);  ///< 0 is an empty one
  unsigned shift_ = 61;  ///< from a hash of 64 bits to a slot's index
  std::size_t count_ = 0;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_OFFSET_SET_H_
