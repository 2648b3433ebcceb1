#ifndef MDF_READER_DATA_DATA_BLOCK_H_
#define MDF_READER_DATA_DATA_BLOCK_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "../blocks/finding.h"
#include "../blocks/raw_block.h"

namespace mdf_reader {

class DataFile;
class InputFile;

/// Where a data block has its data. A block that makes no sense gives none.
struct DataBlock {
  std::uint64_t at = 0;        ///< offset in the file
  std::uint64_t stored = 0;    ///< bytes there
  std::uint64_t original = 0;  ///< bytes of data, which are more in a zipped block
  std::uint64_t columns = 0;  ///< bytes of a row, for data that was transposed before it was zipped
  bool is_zipped = false;
  Code code{};          ///< of the problem
  std::string problem;  ///< a sentence, "" for none
};

/// Whether a block's type is one with data, zipped or not.
bool isDataBlock(const RawBlock& block);

/// The same for data that is not zipped.
bool isPlainData(const RawBlock& block);

/// Whether a block's type is a list of data blocks.
bool isDataList(const RawBlock& block);

/// The type of a block's data: for a zipped block, the type that it stands for; "" for no data
/// block.
std::string originalType(InputFile& file, const RawBlock& block);

/// Finds a block's data.
DataBlock findData(DataFile& file, const RawBlock& block);

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_DATA_BLOCK_H_
