#ifndef MDF_TOOLS_CHANGING_FILE_FRAME_H_
#define MDF_TOOLS_CHANGING_FILE_FRAME_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "block_copy.h"
#include "new_blocks.h"
#include "reader/blocks/finding.h"
#include "reader/bytes/offset_set.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Passes each finding on once: the walk over the blocks and the readers of the description find
/// the same problems.
class EachOnce {
 public:
  /// @param report must outlast this object.
  explicit EachOnce(const FindingSink& report);
  ~EachOnce() = default;
  EachOnce(const EachOnce&) = delete;
  EachOnce& operator=(const EachOnce&) = delete;

  const FindingSink& sink() const { return sink_; }

 private:
  OffsetSet told_;
  FindingSink sink_;
};

/// The identification of a finished file of the same version.
std::string identificationOf(InputFile& file);

/// The blocks of a list of the header block that are copied, in their order.
/// @param link of the header block.
std::vector<std::uint32_t> chainOf(const BlockCopy& blocks, std::size_t link);

/// An entry in a file's history that this program makes.
struct NewHistory {
  std::uint64_t time;   ///< nanoseconds since 1970
  std::string text;     ///< what was done
  std::string version;  ///< of the program
};

/// Writes an entry, and links the last one of a file to it.
void addHistory(BlockCopy& blocks, const NewHistory& entry, NewBlocks& out);

/// Writes an entry; returns its place.
std::uint64_t writeHistory(const NewHistory& entry, NewBlocks& out);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_FILE_FRAME_H_
