#ifndef MDF_TOOLS_CHANGING_DATA_WRITER_H_
#define MDF_TOOLS_CHANGING_DATA_WRITER_H_

#include <mdf_writer_zip/zipper.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "new_blocks.h"
#include "reader/bytes/short_copy.h"

namespace mdf_tools {

enum class Zip { none, deflate, transposed };

/// How data is put into blocks.
struct DataForm {
  Zip zip = Zip::none;
  int level = 6;                                    ///< 1 for the fastest to 12 for the smallest
  std::size_t block_bytes = std::size_t{1} << 20U;  ///< of data, before it is zipped
  std::size_t threads = 0;                          ///< that zip; 0 for one on each core
};

/// A data block that has its place in the file.
struct PlacedBlock {
  std::uint64_t at = 0;
  bool is_zipped = false;
};

/// A full data block without a place.
struct FullBlock {
  std::string bytes;  ///< a header's bytes, then the data
  std::uint32_t row_bytes;
  std::vector<PlacedBlock>* list;  ///< where its place is to be known
  std::size_t index;
};

/// Brings full data blocks of all streams into a file, zipped on all cores if they are.
class BlockWriter {
 public:
  BlockWriter(NewBlocks& out, const DataForm& form);

  const DataForm& form() const { return form_; }
  NewBlocks& out() { return out_; }

  /// Takes a block, and gives back an empty buffer for the next one.
  void put(FullBlock block, std::string& empty);

  /// Returns when all blocks have their places.
  void placeAll() { placeUpTo(0); }

 private:
  void placeUpTo(std::size_t left);
  void place(FullBlock& block, std::string_view packed);

  NewBlocks& out_;
  DataForm form_;
  std::deque<FullBlock> waiting_;                             ///< which outlasts those who read it:
  std::vector<std::unique_ptr<mdf_writer::Zipper>> zippers_;  ///< each has at most one block
  std::size_t given_ = 0;
  std::size_t taken_ = 0;
};

/// The data that a link leads to: a block, or a list of blocks of the same length.
class DataWriter {
 public:
  /// @param letters of the blocks, such as "DT".
  /// @param row_bytes of each record, where all have the same; else 0.
  /// @param block_bytes the most of a block.
  DataWriter(BlockWriter& out, std::string_view letters, std::uint64_t row_bytes,
             std::size_t block_bytes);
  ~DataWriter() = default;
  DataWriter(const DataWriter&) = delete;
  DataWriter& operator=(const DataWriter&) = delete;

  void append(std::string_view bytes) {
    if (bytes.size() <= static_cast<std::size_t>(end_ - next_)) {
      mdf_reader::copyShort(bytes, next_);
      next_ += bytes.size();
      // Where records go to many writers in turn, each would wait for its place from memory.
      __builtin_prefetch(next_ + 128, 1);
    } else {
      appendMore(bytes);
    }
  }

  /// Bytes appended.
  std::uint64_t size() const;

  /// Writes the rest. Returns what is to be linked to; 0 for no data.
  std::uint64_t finish();

 private:
  std::size_t used() const { return static_cast<std::size_t>(next_ - buffer_.data()); }
  void appendMore(std::string_view bytes);
  void reserve(std::size_t bytes);
  void beginBlock();
  void endBlock();
  std::uint64_t writeList();

  char* next_ = nullptr;  ///< where in the buffer more is put
  char* end_ = nullptr;   ///< of the buffer
  BlockWriter& out_;
  std::string head_;
  std::uint32_t row_bytes_;
  std::size_t full_;    ///< bytes of a full block, with its header
  std::string buffer_;  ///< a block that fills, and room for more of it
  std::vector<PlacedBlock> blocks_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_DATA_WRITER_H_
