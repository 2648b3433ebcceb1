#ifndef MDF_READER_DATA_UNZIPPING_H_
#define MDF_READER_DATA_UNZIPPING_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <future>
#include <string>

#include "../blocks/codes.h"
#include "data_block.h"

namespace mdf_reader {

class InputFile;

/// The outcome of unzipping.
struct Unzipped {
  std::string bytes;    ///< as far as there are
  Code code{};          ///< of the problem
  std::string problem;  ///< a sentence, "" for none
};

/// Memory for what is unzipped ahead, shared by all who read a file side by side.
struct RoomAhead {
  std::uint64_t bytes = std::uint64_t{1} << 25U;
};

/// Unzips blocks on other cores while their reader is at work on those before. The file is read by
/// the caller's thread alone.
class UnzipperAhead {
 public:
  /// @param threads how many may be at work; with one, nothing is done ahead.
  /// @param room must outlast it.
  UnzipperAhead(InputFile& file, std::size_t threads, RoomAhead& room)
      : file_(file), threads_(threads), room_(room) {}
  ~UnzipperAhead();
  UnzipperAhead(const UnzipperAhead&) = delete;
  UnzipperAhead& operator=(const UnzipperAhead&) = delete;

  /// Whether one more block may be begun with.
  bool hasRoomFor(const DataBlock& block) const;
  /// Begins with the block that will be asked for after those begun with before.
  void begin(const DataBlock& block);
  /// How many blocks were begun with, and not asked for yet.
  std::size_t pending() const { return pending_.size(); }
  /// The data of a block. Those begun with before it are dropped.
  /// @param room a string that is not needed any more, whose memory may be used.
  Unzipped take(const DataBlock& block, std::string room);

 private:
  struct Pending {
    std::uint64_t at;  ///< offset in the file
    std::uint64_t size;
    std::future<Unzipped> data;
  };

  Pending takeFirst();

  InputFile& file_;
  std::size_t threads_;
  RoomAhead& room_;
  std::deque<Pending> pending_;
  std::string stream_;
  std::string columns_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_UNZIPPING_H_
