#ifndef MDF_TOOLS_CHANGING_VALUE_OFFSETS_H_
#define MDF_TOOLS_CHANGING_VALUE_OFFSETS_H_

#include <mdf_writer/files/output.h>

#include <cstdint>
#include <vector>

#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// A channel whose records got the offsets of their values.
struct OffsetsSet {
  std::uint64_t channel;
  std::uint64_t records;
};

/// Where an unfinished file says that records do not tell where their values of variable length
/// are: gives each record that has the offset 0 that of the next value, as one value was written
/// for each record. A record with another offset than that ends this: then its channel has values
/// in another order. What is not set is reported. Data is gone through once for each such channel,
/// and its values once; memory is bounded. It can be interrupted and done again.
/// @param output the same file, or a copy of it.
/// @throws CopyFailure where it takes no more.
std::vector<OffsetsSet> setValueOffsets(InputFile& file, mdf_writer::Output& output,
                                        const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_VALUE_OFFSETS_H_
