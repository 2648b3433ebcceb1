#ifndef MDF_TOOLS_PICTURES_BLOCK_MAP_H_
#define MDF_TOOLS_PICTURES_BLOCK_MAP_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "reader/blocks/finding.h"
#include "reader/summary/json_type.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Neighbouring cells in a row of the map with the same content.
struct MapRun {
  enum Kind { blocks, gap, overlap };
  Kind kind;
  std::size_t row;
  std::size_t first;  ///< cells, the last one included
  std::size_t last;
  std::string type;      ///< letters of the block, or of most bytes where there are several
  std::uint64_t offset;  ///< of the block that fills them; 0 for several blocks, and gaps
};

/// The blocks of one type.
struct TypeShare {
  std::string type;
  std::uint64_t blocks = 0;
  std::uint64_t bytes = 0;
};

/// Which bytes of a file belong to which blocks, in rows of cells from the file's beginning to its
/// end, and the sums.
struct BlockMap {
  std::uint64_t file_size = 0;
  std::size_t columns = 0;  ///< cells of a row
  std::uint64_t bytes_per_cell = 0;
  std::vector<MapRun> runs;
  std::vector<TypeShare> types;     ///< the one with most bytes first
  std::uint64_t gap_bytes = 0;      ///< bytes that belong to no block that the header leads to
  std::uint64_t gaps = 0;           ///< how many such places there are
  std::uint64_t overlap_bytes = 0;  ///< bytes that belong to more than one
};

/// The map takes the same memory for every file, apart from the walk through its blocks.
BlockMap makeMap(InputFile& file, const FindingSink& report);

/// The map as a part of a picture in the DOT language, with the positions of all that it shows,
/// from a height in points downwards; returns the height where it ends.
std::string mapPart(const BlockMap& map, const std::string& title, const std::string& prefix,
                    double& height);

/// A whole picture of such parts, for Graphviz's program neato with the option -n2.
std::string mapPicture(const std::string& parts);

/// The sums as an object for programs.
mdf_reader::Json mapAsJson(const BlockMap& map);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_BLOCK_MAP_H_
