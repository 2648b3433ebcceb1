#ifndef MDF_READER_DATA_DATA_LINKS_H_
#define MDF_READER_DATA_DATA_LINKS_H_

#include <cstdint>
#include <optional>

#include "../blocks/finding.h"
#include "../blocks/raw_block.h"
#include "../bytes/offset_set.h"

namespace mdf_reader {

class InputFile;

/// A link to data.
struct DataLink {
  std::uint64_t from;  ///< the block that has the link
  std::uint64_t to;    ///< 0 for none
};

/// A block with data, and what its list says of it.
struct DataPart {
  std::uint64_t data = 0;           ///< offset of the block
  std::uint64_t invalidation = 0;   ///< of the one with its invalidation bytes, 0 for none
  std::uint64_t list = 0;           ///< of the list; of the block itself where there is no list
  bool lacks_invalidation = false;  ///< the list says that it has such links but lacks this one
};

/// The blocks that a link to data leads to: one, or those of a chain of lists, one by one.
class DataLinks {
 public:
  DataLinks(InputFile& file, DataLink link, const FindingSink& report);

  /// Whether blocks are still to come from lists, which may be many.
  bool isInLists() const { return list_.has_value(); }

  /// Whether they could not be followed to their end.
  bool haveFailed() const { return have_failed_; }

  /// The next block; nothing at the end, or where the chain cannot be followed, which is reported.
  std::optional<DataPart> next();

  /// Ends the sequence.
  void stop();

 private:
  void fail(const Finding& finding);
  void enter(DataLink link);
  void enterList(const RawBlock& block);
  void enterNextList();
  DataPart partAt(std::uint64_t index);

  InputFile& file_;
  const FindingSink& report_;
  std::optional<DataPart> single_;
  std::optional<RawBlock> list_;
  std::uint64_t end_link_ = 0;  ///< after the links to data
  std::uint64_t next_link_ = 0;
  bool has_invalidation_ = false;
  bool have_failed_ = false;
  OffsetSet lists_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_DATA_LINKS_H_
