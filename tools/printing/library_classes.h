#ifndef MDF_TOOLS_PRINTING_LIBRARY_CLASSES_H_
#define MDF_TOOLS_PRINTING_LIBRARY_CLASSES_H_

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>

#include "reader/blocks/raw_block.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Constructs a block of the library's class from a stream and writes its dump. Returns nothing;
/// or, without having written anything, what was expected of the block and what was found.
using DumpFromStream = std::string (*)(const RawBlock& block, std::istream& is, std::ostream& os);

/// The library's class for a block type, which dumps blocks of it.
struct LibraryClass {
  /// Stands for the size of a class that reads as many bytes as its length says.
  static constexpr std::uint64_t by_length = 0;

  std::string_view letters;
  /// The bytes that the class reads whatever the block's length says, or by_length.
  std::uint64_t fixed_size;
  DumpFromStream dump;
};

/// The class for the type with these two letters; null for one that the library has none for.
const LibraryClass* findLibraryClass(std::string_view letters);

/// What to say of a block whose length does not hold its links and fields.
std::string misfit(const RawBlock& block);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_LIBRARY_CLASSES_H_
