#ifndef MDF_READER_BLOCKS_FINDING_H_
#define MDF_READER_BLOCKS_FINDING_H_

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "../bytes/printable.h"
#include "codes.h"

namespace mdf_reader {

/// A problem in a file.
struct Finding {
  Code code;             ///< says how bad it is, see textOf()
  std::uint64_t offset;  ///< of the block that has the problem, or of the first byte that has it
  std::string sentence;  ///< what was expected and what was found
  std::string path{};    ///< how the block is reached from the header block; "" where nobody asked
};

/// Takes findings as they are made: a file may hold more of them than memory does.
using FindingSink = std::function<void(const Finding&)>;

/// A number as people look for it in a dump and in a hex viewer: "64 (0x40)".
std::string decimalAndHex(std::uint64_t number);

/// "found 12 up to the file's end".
std::string upToTheEnd(std::uint64_t bytes);

/// "; 12 bytes were not read"; "" for none.
std::string notRead(std::uint64_t bytes);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_FINDING_H_
