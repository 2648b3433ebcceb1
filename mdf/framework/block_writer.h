#ifndef MDF_FRAMEWORK_BLOCK_WRITER_H_
#define MDF_FRAMEWORK_BLOCK_WRITER_H_

#include <array>
#include <cstddef>
#include <iosfwd>
#include <vector>

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

  void header(const HeaderSection& header) {
    Encoder out = room(HeaderSection::HEADER_SIZE);
    header.encode(out);
  }

  /// The header with another length, for blocks whose length follows their contents.
  void header(HeaderSection header, UINT64 length) {
    header.setLength(length);
    this->header(header);
  }

  /// The header with another length and link count.
  void header(HeaderSection header, UINT64 length, UINT64 link_count) {
    header.setLinkCount(link_count);
    this->header(header, length);
  }

  template <class Number>
  void number(Number value) {
    room(sizeof value).put(value);
  }

  template <class Number>
  void numbers(const std::vector<Number>& values) {
    for (const Number value : values) {
      number(value);
    }
  }

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

  Encoder room(std::size_t count) {
    if (count > frame_size - used_) {
      finish();
    }
    Encoder out(frame_.data() + used_);
    used_ += count;
    return out;
  }

  std::ostream& os_;
  std::size_t used_ = 0;
  std::array<char, frame_size> frame_;
};

/// Writes a fixed-size block: the header and the links as they are stored, then the data section.
/// The number of links written is the list's size, not the header's link count.
template <class Block, class Fields>
std::ostream& writeStoredBlock(std::ostream& os, const Block& block, const Fields& fields) {
  BlockWriter out(os);
  out.header(block.header);
  out.numbers(block.links);
  out.fields(fields, block);
  return out.finish();
}

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_BLOCK_WRITER_H_
