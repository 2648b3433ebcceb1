#ifndef MDF_WRITER_STREAM_DATA_STREAM_H_
#define MDF_WRITER_STREAM_DATA_STREAM_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "growing_places.h"
#include "packing.h"
#include "storage.h"

namespace mdf_writer {

/// What a link leads to: a list of data blocks that grows as data comes. Each block has a list
/// block of its own before it, so that one link of eight bytes makes it a part of the file.
///
///     link -> [list block | data block ] -> [list block | data block ] -> ...
///
/// Data gets to the file in two steps. writeOut() writes it where no link or length covers it yet;
/// the shows make it a part of the file, by numbers of eight bytes each. Whoever syncs in between
/// never has a file that shows what the medium does not hold.
///
/// A block that is not full when it is written gets a place to grow, in which the next data goes.
///
/// Where blocks are packed, a header list block comes before the list. Full blocks get places when
/// they are packed; the link to one that grew meanwhile is changed. Blocks that are no smaller then
/// stay as they are.
///
/// Where an output cannot go back, there are no blocks to link to: data follows on what was
/// written.
class DataStream {
 public:
  enum class Kind { records, signal_data, reductions };

  /// `link_at` is where the link to the data stands, `block_bytes` how much data a block holds.
  DataStream(Storage& storage, std::uint64_t link_at, Kind kind, std::size_t block_bytes);

  /// From the beginning on, packs full blocks; their records are of so many bytes, or 0.
  void pack(Packing& packing, std::uint32_t record_bytes);

  /// What a buffer of so many bytes of data takes.
  static constexpr std::size_t bufferBytes(std::size_t block_bytes) {
    return head_bytes + block_bytes;
  }

  /// Room for so many bytes in the block, which then belong to the data; nullptr where the block
  /// has none.
  char* tryAppend(std::size_t bytes) {
    if (!hasRoom(bytes)) {
      return nullptr;
    }
    char* const at = &buffer_[head_bytes + used_];
    used_ += bytes;
    return at;
  }

  bool hasRoom(std::size_t bytes) const { return bytes <= limit_ - used_; }

  /// Appends the bytes of two pieces, in one block. False when the file takes no more; what comes
  /// afterwards is refused.
  bool append(std::string_view first, std::string_view second);

  /// Bytes appended and not dropped.
  std::uint64_t size() const { return block_begins_ + used_; }

  /// Writes what is not in the file yet.
  bool writeOut();

  /// The same when nothing will follow: packs the last block, too, unless it grows in its place.
  bool writeLast();

  /// Writes a block that was handed on.
  bool place(FullBlock& block, std::string_view packed);

  /// Takes a block back that was handed on, before all that came after it. No more will follow.
  void takeBack(FullBlock& block);

  /// Clears the places that blocks have left, when no link leads to them any more.
  bool clearPlaces();

  /// The lengths first, then the links, with a sync before each where the medium is to hold the
  /// data; true when there was nothing to show.
  bool hasLengthToShow() const { return shown_length_.at != 0; }
  bool hasLinkToShow() const { return shown_link_.at != 0; }
  bool showLength() { return show(shown_length_); }
  bool showLink();

  /// The data of the last block, for who must find the ends of records in it, and how many of its
  /// bytes the file has taken.
  std::string_view block() const { return {&buffer_[head_bytes], used_}; }
  std::size_t taken() const { return written_; }

  /// Drops all but the first bytes of the last block, after the file took no more: what it took of
  /// the others becomes zeros. From now on it takes nothing.
  bool cutBlock(std::size_t bytes);

 private:
  /// A number to be written when it is time.
  struct Pending {
    std::uint64_t at = 0;  ///< 0 for none
    std::uint64_t number = 0;
  };

  static constexpr std::size_t list_bytes = 56;
  static constexpr std::size_t head_bytes = list_bytes + 24;
  static constexpr std::size_t zip_header_bytes = 48;

  bool show(Pending& pending);
  bool writeOn();
  void reserveHeaderList();
  std::uint64_t allocate(std::uint64_t bytes);
  void giveBack(std::uint64_t at);
  bool begin(std::size_t limit);
  bool begin(std::uint64_t at, std::size_t limit);
  bool grow();
  bool endFullBlock();
  bool handOn();
  void swapWith(FullBlock& block);
  bool writePlain();
  bool writePacked(std::string_view packed);
  bool writeHeaderList(std::uint64_t first);
  Pending lengthOf(std::uint64_t bytes) const;
  void endBlock();
  bool appendLarge(std::string_view first, std::string_view second);
  void putList(char* list, std::uint64_t at) const;
  void putHead(char* head, std::uint64_t at, std::uint64_t bytes) const;
  bool linkTo(std::uint64_t block);

  Storage& storage_;
  std::array<char, head_bytes> head_;  ///< a list block and a data block's header
  std::size_t capacity_;
  std::vector<char> buffer_;        ///< the list block, the data block's header, the data
  std::size_t used_ = 0;            ///< bytes of data in the block
  std::size_t written_ = 0;         ///< of those in the file
  std::size_t limit_;               ///< what the block can hold
  std::uint64_t block_at_ = 0;      ///< of its list block; 0 as long as it has no place
  std::uint64_t block_begins_ = 0;  ///< bytes of data in the blocks before
  std::uint64_t link_at_;           ///< where the link to the next block stands
  bool is_linked_ = false;          ///< whether the link to it is written, or pending
  bool is_shown_ = false;           ///< whether the file's links lead to the block
  bool is_link_shown_ = true;       ///< and to where that link stands
  Pending shown_length_;
  Pending shown_link_;

  Packing* packing_ = nullptr;
  std::uint32_t row_bytes_ = 0;       ///< of what is transposed; else 0
  std::uint64_t header_list_at_ = 0;  ///< 0 as long as it has no place
  bool needs_header_list_ = false;    ///< nothing is linked yet
  std::array<char, zip_header_bytes> zip_header_{};
  GrowingPlaces places_;
  std::uint64_t shown_block_ = 0;  ///< the last one to which the file's links lead
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_DATA_STREAM_H_
