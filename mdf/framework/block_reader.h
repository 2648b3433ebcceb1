#ifndef MDF_FRAMEWORK_BLOCK_READER_H_
#define MDF_FRAMEWORK_BLOCK_READER_H_

#include <array>
#include <cstddef>
#include <istream>
#include <memory>

#include "general_block.h"
#include "types.h"
#include "wire.h"

/// The bytes of a block are read first, then taken from a bounded decoder. A link count or a length
/// that lies is met here, and nowhere else: a block whose links and fixed fields do not fit in its
/// bytes is unreadable; its header's length and link count stay as read, nothing else is taken, and
/// the stream becomes exactly bad.
namespace mdf_v4_10::detail {

/// Extracts `n` bytes. When fewer come, the stream's state becomes exactly bad.
void readOrBad(std::istream& is, char* bytes, std::size_t n);

/// What a fixed-size reader makes of a stream that ends too early.
enum class ShortRead {
  makes_bad,    ///< the count is compared, and the state becomes exactly bad
  left_as_read  ///< the stream's own end-of-file and fail bits stay
};

/// Reads a fixed-size block's bytes, its length, link count and links. Leaves `in` at the data
/// section; false when there is nothing to take from it.
bool readFixedBytes(std::istream& is, char* bytes, Decoder& in, ShortRead rule, GENERALBLOCK& block,
                    std::size_t fields_width);

/// Reads a whole fixed-size block. The links read are appended to those that the block has.
template <std::size_t Size, class Block, class Fields>
void readFixedBlock(std::istream& is, Block& block, const Fields& fields, ShortRead rule) {
  std::array<char, Size> bytes;
  Decoder in(bytes.data(), bytes.size());
  if (readFixedBytes(is, bytes.data(), in, rule, block, fields.width())) {
    fields.take(in, block);
  }
}

/// How much of the length field says how many bytes a block has.
enum class LengthBits { low_32, all_64 };

/// The bytes of a variable-size block behind its header, read whole before anything is taken.
class BlockBody {
 public:
  /// Reads a block's header and body, and appends its links to those that the block has. Leaves
  /// `in` at the data section; false when there is nothing to take from it.
  bool read(std::istream& is, GENERALBLOCK& block, std::size_t fields_width, LengthBits bits);

  /// The same for a block whose data section follows its header, whatever its link count says.
  bool readWithoutLinks(std::istream& is, GENERALBLOCK& block, std::size_t fields_width,
                        LengthBits bits);

  /// What has not been taken yet. It points into this object.
  Decoder in{nullptr, 0};

 private:
  bool readWhole(std::istream& is, GENERALBLOCK& block, LengthBits bits);
  bool readBytes(std::istream& is, UINT64 count);
  bool readPieces(std::istream& is, UINT64 count);

  /// Bodies of fixed fields and a few links need no memory from the heap.
  std::array<char, 512> small_;
  std::unique_ptr<char[]> large_;
};

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_BLOCK_READER_H_
