#ifndef MDF_TOOLS_CHANGING_COPY_CHECK_H_
#define MDF_TOOLS_CHANGING_COPY_CHECK_H_

#include <cstdint>
#include <vector>

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Checks a copy, and the original if the copy has problems. Returns how many errors the copy has,
/// all of a kind that the original has, too.
/// @throws CopyFailure where the copy has a problem of another kind.
std::uint64_t checkCopy(InputFile& copy, InputFile& original);

/// The same of a file that was made of several.
std::uint64_t checkCopy(InputFile& copy, const std::vector<InputFile*>& originals);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_COPY_CHECK_H_
