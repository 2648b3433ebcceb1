#ifndef MDF_FUZZ_LISTS_H_
#define MDF_FUZZ_LISTS_H_

#include <vector>

#include "file_block.h"
#include "layout.h"

/// The lists of a block: what a reader makes of a file's links and bytes, and what the writer makes
/// of the lists. The readers' oddities are deliberate.
namespace mdf_fuzz {

/// Expects what a class keeps beside `links` and its fields to be what the file has for it.
inline void expectLists(const GENERALBLOCK& /*block*/, const FileBlock& /*file*/) {}
void expectLists(const TXBLOCK& block, const FileBlock& file);
void expectLists(const MDBLOCK& block, const FileBlock& file);
void expectLists(const DTBLOCK& block, const FileBlock& file);
void expectLists(const RDBLOCK& block, const FileBlock& file);
void expectLists(const SDBLOCK& block, const FileBlock& file);
void expectLists(const DZBLOCK& block, const FileBlock& file);
void expectLists(const ATBLOCK& block, const FileBlock& file);
void expectLists(const CHBLOCK& block, const FileBlock& file);
void expectLists(const EVBLOCK& block, const FileBlock& file);
void expectLists(const CNBLOCK& block, const FileBlock& file);
void expectLists(const CCBLOCK& block, const FileBlock& file);
void expectLists(const DLBLOCK& block, const FileBlock& file);

/// What the writer makes of a block, but for the data section's fixed fields.
struct Written {
  UINT64 length;
  UINT64 link_count;
  std::vector<LINK> links;
  std::vector<UINT8> rest;  ///< behind the fields
};

/// Blocks of fixed size are written as they are stored.
inline Written written(const GENERALBLOCK& block) {
  return {block.header.length, block.header.link_count, block.links, {}};
}
Written written(const TXBLOCK& block);
Written written(const MDBLOCK& block);
Written written(const DTBLOCK& block);
Written written(const RDBLOCK& block);
Written written(const SDBLOCK& block);
Written written(const DZBLOCK& block);
Written written(const HLBLOCK& block);
Written written(const ATBLOCK& block);
Written written(const CHBLOCK& block);
Written written(const EVBLOCK& block);
Written written(const CNBLOCK& block);
Written written(const CCBLOCK& block);
Written written(const DLBLOCK& block);

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_LISTS_H_
