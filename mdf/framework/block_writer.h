#ifndef MDF_FRAMEWORK_BLOCK_WRITER_H_
#define MDF_FRAMEWORK_BLOCK_WRITER_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <ostream>
#include <vector>

#include "general_block.h"
#include "header_section.h"
#include "types.h"
#include "wire.h"

namespace mdf_v4_10::detail {

/// Puts the 24 bytes of a header, with this length and link count in them.
inline void putHeader(char* at, const HeaderSection& header, UINT64 length, UINT64 link_count) {
  Encoder out(at);
  out.put(header.mdfID.idInternal);
  out.put(header.reserved);
  out.put(length);
  out.put(link_count);
}

/// Memory on the stack for a writer. It is not part of the writer, so that compilers can keep the
/// writer in registers while they store into the frame.
using Frame = std::array<char, 1024>;

/// Encodes a block into a frame and hands it to the stream in one write. What does not fit goes in
/// pieces, long lists straight from their vector. Nothing is allocated, and the stream's state is
/// left for the caller to look at.
///
/// `Stream` is always std::ostream. A class template can be instantiated in one source, explicitly,
/// and still be inlined elsewhere: where compilers optimise for speed they do, and where they
/// optimise for size all blocks share the one copy. A plain class takes 982 bytes more of ARM code
/// with its functions inline, and without that 213 instructions in place of 133 to write a data
/// group block. The shorter ways to a header pay, too: one for all takes 86 bytes more.
template <class Stream>
class BlockWriterTo {
 public:
  BlockWriterTo(Stream& os, Frame& frame) : os_(os), frame_(frame), at_(frame.data()) {}

  /// The header with another length, for blocks whose length follows their contents.
  void header(const HeaderSection& header, UINT64 length) {
    put(header, length, header.link_count);
  }

  /// The header with another length and link count.
  void header(const HeaderSection& header, UINT64 length, std::size_t link_count) {
    put(header, length, link_count);
  }

  /// The header and the links as they are stored.
  void headerAndLinks(const GENERALBLOCK& block) {
    put(block.header, block.header.length, block.header.link_count);
    numbers(block.links);
  }

  template <class Number>
  void number(Number value) {
    storeLe(room(sizeof value), value);
  }

  template <class Number>
  void numbers(const std::vector<Number>& values) {
    static_assert(sizeof(Number) == 8, "links and reals come in lists");
    if constexpr (host_is_big_endian) {
      for (const Number value : values) {
        number(value);
      }
    } else {
      eights(values.data(), values.size() * sizeof(Number));
    }
  }

  /// One number of each entry of a list.
  template <class Entry, class Number>
  void column(const std::vector<Entry>& entries, Number Entry::*member) {
    static_assert(sizeof(Number) == 8, "links and offsets come in lists");
    if (!entries.empty()) {
      column(reinterpret_cast<const char*>(&(entries.front().*member)), entries.size(),
             sizeof(Entry));
    }
  }

  /// Entries that are links and nothing else, in the order of the fields.
  template <class Fields, class Entry>
  void entries(const Fields& fields, const std::vector<Entry>& entries) {
    static_assert(Fields::width() == sizeof(Entry) && sizeof(Entry) % 8 == 0);
    if constexpr (host_is_big_endian) {
      for (const Entry& entry : entries) {
        this->fields(fields, entry);
      }
    } else {
      eights(entries.data(), entries.size() * sizeof(Entry));
    }
  }

  template <class Fields, class Block>
  void fields(const Fields& fields, const Block& block) {
    static_assert(Fields::width() <= std::tuple_size_v<Frame>, "a data section fits a frame");
    fields.put(room(fields.width()), block);
  }

  void bytes(const std::vector<UINT8>& bytes) {
    if (bytes.size() > left()) {
      straight(bytes.data(), bytes.size());
    } else if (!bytes.empty()) {
      std::memcpy(at_, bytes.data(), bytes.size());
      at_ += bytes.size();
    }
  }

  /// Hands what is left to the stream.
  Stream& finish() {
    if (at_ != frame_.data()) {
      flush();
    }
    return os_;
  }

 private:
  std::size_t left() const { return static_cast<std::size_t>(frame_.data() + frame_.size() - at_); }

  void flush() {
    os_.write(frame_.data(), at_ - frame_.data());
    at_ = frame_.data();
  }

  void put(const HeaderSection& header, UINT64 length, UINT64 link_count) {
    putHeader(room(HeaderSection::HEADER_SIZE), header, length, link_count);
  }

  /// Where so many bytes are to be put.
  char* room(std::size_t count) {
    if (count > left()) {
      flush();
    }
    char* const at = at_;
    at_ += count;
    return at;
  }

  /// Numbers of 8 bytes as they stand in memory.
  void eights(const void* from, std::size_t count) {
    if (count > left()) {
      straight(from, count);
    } else if (count != 0) {
      at_ = copyEights(at_, from, count);
    }
  }

  /// Numbers of 8 bytes that stand so many bytes apart.
  void column(const char* first, std::size_t count, std::size_t stride) {
    for (std::size_t i = 0; i < count;) {
      const std::size_t end = i + std::min(count - i, left() / sizeof(UINT64));
      for (; i < end; ++i) {
        UINT64 bits = 0;
        std::memcpy(&bits, first + i * stride, sizeof bits);
        storeLe(at_, bits);
        at_ += sizeof bits;
      }
      if (i < count) {
        flush();
      }
    }
  }

  /// For what does not fit the rest of the frame.
  void straight(const void* from, std::size_t count) {
    finish();
    os_.write(static_cast<const char*>(from), static_cast<std::streamsize>(count));
  }

  Stream& os_;
  Frame& frame_;
  char* at_;
};

extern template class BlockWriterTo<std::ostream>;
using BlockWriter = BlockWriterTo<std::ostream>;

/// Writes a fixed-size block: the header and the links as they are stored, then the data section.
/// The number of links written is the list's size, not the header's link count.
template <class Block, class Fields>
std::ostream& writeStoredBlock(std::ostream& os, const Block& block, const Fields& fields) {
  Frame frame;
  BlockWriter out(os, frame);
  out.headerAndLinks(block);
  out.fields(fields, block);
  return out.finish();
}

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_BLOCK_WRITER_H_
