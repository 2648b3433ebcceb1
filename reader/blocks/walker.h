#ifndef MDF_READER_BLOCKS_WALKER_H_
#define MDF_READER_BLOCKS_WALKER_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "finding.h"
#include "identification.h"
#include "raw_block.h"

namespace mdf_reader {

class InputFile;

/// Finds every block that can be reached from the header block, or from another one, through any
/// link of any block, each once, and returns their offsets in file order. What is wrong with the
/// file is reported on the way; what can still be read is among the blocks. Overlapping blocks are
/// followed as long as ReadingLimit allows.
///
/// It needs memory for the blocks' offsets alone, however many links and findings there are:
/// headers and links are read again where they are needed, which costs less than keeping them.
std::vector<std::uint64_t> walkBlocks(InputFile& file, const FindingSink& report,
                                      std::uint64_t from = header_block_offset);

/// The block at an offset from outside; reports when there is none.
std::optional<RawBlock> findBlock(InputFile& file, std::uint64_t offset, const FindingSink& report);

/// Reports a length that does not hold the block's links or reaches beyond the file.
void checkExtent(const InputFile& file, const RawBlock& block, const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_WALKER_H_
