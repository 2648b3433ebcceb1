#ifndef MDF_FUZZ_FILE_BLOCK_H_
#define MDF_FUZZ_FILE_BLOCK_H_

#include <cstddef>
#include <ios>
#include <string_view>
#include <vector>

#include "layout.h"

namespace mdf_fuzz {

/// What stands in a stream from its first byte on, and what a reader must make of it.
struct FileBlock {
  std::ios_base::iostate state = state_good;  ///< of the stream afterwards
  std::size_t end = 0;                        ///< where a stream that is still good stands

  bool has_header = false;  ///< length and link count were read
  UINT64 length = 0;
  UINT64 link_count = 0;

  bool is_whole = false;  ///< links and fields were taken
  std::vector<LINK> links;
  std::string_view fields;
  std::string_view rest;  ///< what follows the fields; of text and data, all that came
  UINT64 sized = 0;       ///< bytes that the reader makes room for without looking
};

FileBlock inspect(const Layout& layout, std::string_view bytes);

/// A little-endian number; the bytes must be there.
UINT64 number(std::string_view bytes, std::size_t offset, std::size_t width);

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_FILE_BLOCK_H_
