#ifndef MDF_DATABLOCKS_PLAIN_DATA_H_
#define MDF_DATABLOCKS_PLAIN_DATA_H_

#include <iosfwd>
#include <vector>

#include "../framework/header_section.h"
#include "../framework/types.h"

/// What the blocks that carry raw bytes and nothing else have in common: everything but their type.
namespace mdf_v4_10::detail {

/// Reads `size` bytes. When fewer come, the stream becomes exactly bad, and `data` keeps its stated
/// size with zeros after what came. A size beyond memory raises the allocation's own exception.
void readSizedData(std::istream& is, UINT64 size, std::vector<UINT8>& data);

void readPlainData(std::istream& is, HeaderSection& header, std::vector<UINT8>& data);

std::ostream& writePlainData(std::ostream& os, const HeaderSection& header,
                             const std::vector<UINT8>& data);

void printPlainData(std::ostream& os, const char* name, const std::vector<UINT8>& data);

}  // namespace mdf_v4_10::detail

#endif  // MDF_DATABLOCKS_PLAIN_DATA_H_
