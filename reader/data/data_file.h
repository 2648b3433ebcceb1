#ifndef MDF_READER_DATA_DATA_FILE_H_
#define MDF_READER_DATA_DATA_FILE_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "../blocks/identification.h"
#include "../blocks/raw_block.h"
#include "../bytes/work_budget.h"
#include "../model/description.h"
#include "unzipping.h"

namespace mdf_reader {

class InputFile;

/// A file as far as its data is concerned. What an unfinished one has left open is decided here and
/// nowhere else: whether counts are final, and where a block ends whose length was never written.
class DataFile {
 public:
  /// @param threads how many may unzip data ahead of its reader; 0 for one on each core.
  explicit DataFile(InputFile& file, std::size_t threads = 0);

  InputFile& bytes() { return file_; }
  std::size_t threads() const { return threads_; }
  RoomAhead& roomAhead() { return room_ahead_; }
  const Identification& identification() const { return id_; }
  bool isUnfinished() const { return id_.isUnfinished(); }

  /// Whether the counts of channel groups say how many records there are.
  bool areCountsFinal() const;
  /// The same of one group: in an unfinished file 0 is what its writer began with.
  bool isCountFinal(const ChannelGroup& group) const;

  /// Whether a data block's length says nothing. That is so in an unfinished file for the last
  /// block of its type, when its length leads neither to another block nor to the file's end, and
  /// the flags call it open or it states that it is empty.
  bool isOpen(const RawBlock& block);

  /// Where a block ends: by its length, as far as the file reaches; an open one at the next block
  /// that a link leads to, or at the file's end.
  std::uint64_t endOf(const RawBlock& block);

  /// Adds what the data of a group takes of the file. False once groups have the same blocks for
  /// data again and again, so that going on would cost more than the file is worth.
  bool mayGoOnAfter(std::uint64_t stored_bytes);

 private:
  bool isCalledOpen(const RawBlock& block) const;
  bool leadsOn(std::uint64_t end);
  bool isLastOfItsType(const RawBlock& block);
  void lookForBlocks();

  InputFile& file_;
  std::size_t threads_;
  RoomAhead room_ahead_;
  Identification id_;
  std::vector<std::uint64_t> blocks_;          ///< once they were looked for, ascending
  std::map<std::string, std::uint64_t> last_;  ///< of the types of data, by their letters
  WorkBudget budget_;                          ///< for the data of all groups
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_DATA_FILE_H_
