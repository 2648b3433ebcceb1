#ifndef MDF_READER_BLOCKS_WALK_H_
#define MDF_READER_BLOCKS_WALK_H_

#include <cstdint>
#include <functional>
#include <optional>

#include "block_table.h"
#include "finding.h"
#include "identification.h"
#include "raw_block.h"

namespace mdf_reader {

class InputFile;

/// Finds all blocks that can be reached through links from the header block, or from another one,
/// each once. Lists and trees are followed first, and references after them, so that each block is
/// found in its place. What is wrong with links and lengths is reported on the way; what can still
/// be read is among the blocks.
///
/// Time is proportional to the file, whatever its links and lengths say, and memory to the number
/// of its blocks: links are read again where they are needed, which costs less than keeping them.
/// @param report an empty function where nobody wants to know
BlockTable walkBlocks(InputFile& file, const FindingSink& report,
                      std::uint64_t from = header_block_offset);

/// Visits the links of a block that the walk has followed; nil ones too.
void forEachWalkedLink(InputFile& file, const RawBlock& block, const BlockEntry& entry,
                       const std::function<void(std::uint64_t index, std::uint64_t link)>& visit);

/// Whether the bytes begin like a block: "##" and two capital letters.
bool looksLikeBlock(const RawBlock& block);

/// The block at an offset from outside; reports when there is none.
std::optional<RawBlock> findBlock(InputFile& file, std::uint64_t offset, const FindingSink& report);

/// Reports a length that does not hold the block's links or reaches beyond the file.
void checkExtent(const InputFile& file, const RawBlock& block, const FindingSink& report);

/// Reports that blocks overlap so much that not all of them, or of their links, are looked at.
void reportOverlap(std::uint64_t offset, const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_WALK_H_
