#ifndef MDF_READER_DATA_DATA_BLOCK_H_
#define MDF_READER_DATA_DATA_BLOCK_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "../blocks/raw_block.h"

namespace mdf_reader {

class InputFile;

/// Where a data block has its data. A block that makes no sense gives none.
struct DataBlock {
  std::uint64_t at = 0;        ///< offset in the file
  std::uint64_t stored = 0;    ///< bytes there
  std::uint64_t original = 0;  ///< bytes of data, which are more in a zipped block
  std::uint64_t columns = 0;  ///< bytes of a row, for data that was transposed before it was zipped
  bool is_zipped = false;
  std::string problem;  ///< a sentence, "" for none
};

/// Whether a block's type is one with data, zipped or not.
bool isDataBlock(const RawBlock& block);

/// Whether a block's type is a list of data blocks.
bool isDataList(const RawBlock& block);

/// The type of a block's data: for a zipped block, the type that it stands for; "" for no data
/// block.
std::string originalType(InputFile& file, const RawBlock& block);

/// Finds a block's data.
/// @param is_unfinished the block may be the last one of an unfinished file. If its length says
///   that it is empty, its data goes on to the end of the file. An empty block that is followed by
///   another block, or by nothing, is really empty.
DataBlock findData(InputFile& file, const RawBlock& block, bool is_unfinished);

/// The outcome of unzipping.
struct Unzipped {
  std::string bytes;    ///< as far as there are
  std::string problem;  ///< a sentence, "" for none
};

/// The data of a zipped block.
Unzipped unzip(InputFile& file, const DataBlock& block);

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_DATA_BLOCK_H_
