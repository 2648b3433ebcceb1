#ifndef MDF_READER_DATA_DATA_STREAM_H_
#define MDF_READER_DATA_DATA_STREAM_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../blocks/finding.h"
#include "../blocks/raw_block.h"
#include "../bytes/work_budget.h"
#include "data_block.h"
#include "data_file.h"
#include "data_links.h"
#include "unzipping.h"

namespace mdf_reader {

/// The bytes that a link to data leads to, as if they stood in one piece: in one block, or in those
/// of data lists, zipped or not. Blocks are looked up only as far as they are needed.
///
/// It holds a window of the data or the last unzipped block in memory, blocks that are unzipped
/// ahead, up to 32 MiB of all streams of the file, and 16 bytes for each block. What is wrong is
/// reported, and the stream ends where it cannot go on.
class DataStream {
 public:
  enum class Access {
    forward,    ///< from the first to the last, any number of times
    scattered,  ///< anywhere; there is a limit to unzipping the same blocks again and again
  };

  DataStream(DataFile& file, DataLink link, Access access, const FindingSink& report);

  /// Bytes from an offset on: as many as wanted, or as there are. They last until the next call.
  std::string_view at(std::uint64_t offset, std::size_t count) {
    if (offset >= window_begin_ && offset - window_begin_ <= window_.size()) {
      const auto skipped = static_cast<std::size_t>(offset - window_begin_);
      if (count <= window_.size() - skipped) {
        return window_.substr(skipped, count);
      }
    }
    return outsideTheWindow(offset, count);
  }

  /// The same, with up to `most` bytes where they stand in memory anyway.
  std::string_view from(std::uint64_t offset, std::size_t least, std::size_t most) {
    const std::string_view bytes = at(offset, least);
    const std::uint64_t skipped = offset - window_begin_;
    const bool is_in_window = bytes.size() == least && offset >= window_begin_ &&
                              skipped < window_.size() && bytes.data() == window_.data() + skipped;
    return is_in_window ? window_.substr(static_cast<std::size_t>(skipped), most) : bytes;
  }

  /// Whether there are bytes up to an offset.
  bool reaches(std::uint64_t end);

  /// How many bytes there are. It looks for all blocks.
  std::uint64_t size();

  /// Whether the first block is zipped.
  bool isZipped();

  /// Whether something was wrong with the blocks or the links to them, which was reported, so that
  /// there is less data than there should be.
  bool isDamaged() const { return is_damaged_ || links_.haveFailed(); }

  /// Where a byte stands in the file, or the zipped block that it is in; of the stream's end where
  /// its last block ends.
  std::uint64_t placeOf(std::uint64_t offset);

  /// Bytes of the file that the blocks found so far take.
  std::uint64_t storedBytes() const { return budget_.spent(); }

 private:
  /// A block of the stream: what it holds of data ends where the next one begins.
  struct Piece {
    std::uint64_t begin;  ///< in the stream
    std::uint64_t block;  ///< offset in the file
  };

  bool extend();
  void append(const RawBlock& block);
  std::uint64_t endOf(std::size_t piece) const;
  std::size_t pieceWith(std::uint64_t offset) const;
  std::string_view outsideTheWindow(std::uint64_t offset, std::size_t count);
  std::string_view joined(std::uint64_t offset, std::size_t count);
  bool show(std::uint64_t offset, std::size_t count);
  bool showPlain(const DataBlock& block, std::uint64_t begin, std::uint64_t offset,
                 std::size_t count);
  bool showZipped(const DataBlock& block, const Piece& piece, std::uint64_t offset);
  bool mayUnzip(const DataBlock& block, const Piece& piece);
  void unzipAhead();
  void endAt(std::uint64_t end, const Finding& why);
  std::uint64_t bytesToCome();

  DataFile& file_;
  const FindingSink& report_;
  DataLink link_;
  Access access_;

  DataLinks links_;
  std::vector<Piece> pieces_;
  bool is_damaged_ = false;
  std::uint64_t size_ = 0;  ///< of the pieces together
  WorkBudget budget_;       ///< for the bytes of the file that they take

  std::string_view window_;
  std::uint64_t window_begin_ = 0;
  std::size_t last_piece_ = 0;
  std::string plain_;     ///< what the window looks into, or
  std::string unzipped_;  ///< a whole block
  std::uint64_t unzipped_block_ = 0;
  std::uint64_t unzipped_bytes_ = 0;  ///< of all blocks until now
  std::size_t unzipped_piece_ = 0;
  std::size_t pieces_in_row_ = 0;  ///< that were unzipped one after another
  UnzipperAhead unzipper_;
  std::string joined_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_DATA_STREAM_H_
