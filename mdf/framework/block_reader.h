#ifndef MDF_FRAMEWORK_BLOCK_READER_H_
#define MDF_FRAMEWORK_BLOCK_READER_H_

#include <array>
#include <cstddef>
#include <istream>
#include <memory>
#include <vector>

#include "general_block.h"
#include "types.h"
#include "wire.h"

/// The bytes of a block are read first, then taken from a bounded decoder. A link count or a length
/// that lies is caught here, and nowhere else: a block whose links and fixed fields do not fit in
/// its bytes is unreadable; its header's length and link count stay as read, nothing else is taken,
/// and the stream becomes exactly bad.
namespace mdf_v4_10::detail {

/// Extracts `n` bytes. When fewer come, the stream's state becomes exactly bad.
void readOrBad(std::istream& is, char* bytes, std::size_t n);

/// What a fixed-size reader makes of a stream that ends too early.
enum class ShortRead {
  makes_bad,    ///< the count is compared, and the state becomes exactly bad
  left_as_read  ///< the stream's own end-of-file and fail bits stay
};

/// Reads a fixed-size block's bytes, its length, link count and links. Returns where its data
/// section is, or null when there is nothing to take from it.
const char* readFixedBytes(std::istream& is, char* bytes, std::size_t size, ShortRead rule,
                           GENERALBLOCK& block, std::size_t fields_width);

/// Reads a whole fixed-size block. The links that the block has stay, as many nil links as its link
/// count says follow, whether the block can be read or not, and then the links read.
template <std::size_t Size, class Block, class Fields>
void readFixedBlock(std::istream& is, Block& block, const Fields& fields, ShortRead rule) {
  std::array<char, Size> bytes;
  if (const char* at = readFixedBytes(is, bytes.data(), Size, rule, block, fields.takenWidth())) {
    fields.take(at, block);
  }
}

/// Links as they stand in the bytes of a block.
class FileLinks {
 public:
  FileLinks() = default;
  FileLinks(const char* bytes, std::size_t count) : bytes_(bytes), count_(count) {}

  std::size_t size() const { return count_; }
  const char* bytes() const { return bytes_; }
  LINK operator[](std::size_t index) const { return loadLe<LINK>(bytes_ + index * sizeof(LINK)); }

  /// The link at a place counted from the end, where 1 is the last one; nil where there are fewer.
  LINK fromEnd(std::size_t place) const;

  /// Appends that many nil links to a list, and then these. Takes memory once.
  void appendTo(std::vector<LINK>& list, std::size_t nil_links) const;

  /// Appends up to `count` links to a list, from the link at `first` on.
  void appendPartTo(std::vector<LINK>& list, std::size_t first, std::size_t count) const;

  /// Makes a list hold the first `count` links, nil where there are fewer.
  void fill(std::vector<LINK>& list, std::size_t count) const;

 private:
  const char* bytes_ = nullptr;
  std::size_t count_ = 0;
};

/// How many bits of its length a block's reader goes by, and what its body begins with.
enum class BodyForm {
  low_32,         ///< the low 32 bits, and the links
  all_64,         ///< the whole length, and the links
  without_links,  ///< the whole length, and the data section, whatever the link count says
};

/// The bytes of a variable-size block after its header, read whole before anything is taken.
class BlockBody {
 public:
  /// Reads a block's header and body.
  BlockBody(std::istream& is, GENERALBLOCK& block, std::size_t fields_width, BodyForm form);
  ~BlockBody();
  BlockBody(const BlockBody&) = delete;
  BlockBody& operator=(const BlockBody&) = delete;

  /// Whether there is something to take. If so `in` is at the data section.
  bool isReadable() const { return readable_; }

  /// Takes a list of bytes or reals: as many as `count` says or as there are.
  template <class Number>
  void takeList(std::size_t count, std::vector<Number>& list);

  /// What has not been taken yet. It points into this object.
  Decoder in{nullptr, 0};

  /// The links that the block says it has. They point into this object, too.
  FileLinks links;

 private:
  bool readWhole(std::istream& is, GENERALBLOCK& block, BodyForm form);
  bool readBytes(std::istream& is, UINT64 count);
  bool readPieces(std::istream& is, UINT64 count);

  bool readable_ = false;
  std::unique_ptr<char[]> large_;
  /// Bodies of fixed fields and a few links need no memory from the heap.
  std::array<char, 512> small_;
};

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_BLOCK_READER_H_
