#ifndef MDF_FRAMEWORK_BLOCK_WRITER_H_
#define MDF_FRAMEWORK_BLOCK_WRITER_H_

#include <array>
#include <cstddef>
#include <iosfwd>
#include <vector>

#include "general_block.h"
#include "header_section.h"
#include "types.h"
#include "wire.h"

namespace mdf_v4_10::detail {

/// Encodes a block into a frame on the stack and hands it to the stream in one write. What does not
/// fit goes in pieces: long lists frame by frame, long byte sections straight from their vector.
/// Nothing is allocated, and the stream's state is left for the caller to look at.
class BlockWriter {
 public:
  explicit BlockWriter(std::ostream& os) : os_(os) {}

  /// The header as it is stored.
  void header(const HeaderSection& header) {
    this->header(header, header.length, header.link_count);
  }

  /// The header with another length, for blocks whose length follows their contents.
  void header(const HeaderSection& header, UINT64 length) {
    this->header(header, length, header.link_count);
  }

  /// The header with another length and link count.
  void header(const HeaderSection& header, UINT64 length, UINT64 link_count);

  /// The header and the links as they are stored.
  void headerAndLinks(const GENERALBLOCK& block);

  template <class Number>
  void number(Number value) {
    storeLe(room(sizeof value), value);
  }

  /// Links or reals.
  template <class Number>
  void numbers(const std::vector<Number>& values);

  template <class Fields, class Block>
  void fields(const Fields& fields, const Block& block) {
    static_assert(Fields::width() <= frame_size, "a data section goes into one frame");
    fields.put(room(fields.width()), block);
  }

  void bytes(const std::vector<UINT8>& bytes);

  /// Hands what is left to the stream.
  std::ostream& finish();

 private:
  static constexpr std::size_t frame_size = 1024;

  /// Where so many bytes are to be put.
  char* room(std::size_t count);

  std::ostream& os_;
  std::size_t used_ = 0;
  std::array<char, frame_size> frame_;
};

/// Writes a fixed-size block: the header and the links as they are stored, then the data section.
/// The number of links written is the list's size, not the header's link count.
template <class Block, class Fields>
std::ostream& writeStoredBlock(std::ostream& os, const Block& block, const Fields& fields) {
  BlockWriter out(os);
  out.headerAndLinks(block);
  out.fields(fields, block);
  return out.finish();
}

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_BLOCK_WRITER_H_
