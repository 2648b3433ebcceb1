#ifndef MDF_READER_BLOCKS_SURVEY_H_
#define MDF_READER_BLOCKS_SURVEY_H_

#include <cstdint>
#include <functional>

#include "block_table.h"

namespace mdf_reader {

class InputFile;
struct RawBlock;

/// Whether the bytes begin like a block: "##" and two capital letters.
bool looksLikeBlock(const RawBlock& block);

/// Finds all blocks that links lead to from the header block, which must be there, each once. Lists
/// and trees are followed first, and references after them, so that each block is found in its
/// place.
///
/// Memory and time are proportional to the file, whatever its links and lengths say.
BlockTable surveyBlocks(InputFile& file);

/// Visits the links of a block that the survey has followed; nil ones too.
void forEachSurveyedLink(InputFile& file, const RawBlock& block, const BlockEntry& entry,
                         const std::function<void(std::uint64_t index, std::uint64_t link)>& visit);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_SURVEY_H_
