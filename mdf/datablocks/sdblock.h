#ifndef MDF_DATABLOCKS_SDBLOCK_H_
#define MDF_DATABLOCKS_SDBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A signal data block: the values of a channel with variable length.
/// The library takes the bytes as they are.
///
/// In the file: the common header, then the bytes. The header's length in memory is not kept in
/// step with the bytes; the writer and the dump compute it.
class MDF_EXPORT SDBLOCK : public GENERALBLOCK {
 public:
  /// Size without the data.
  static constexpr std::size_t SDBLOCK_CONSTANT_SIZE = HeaderSection::HEADER_SIZE;
  static constexpr std::uint16_t MDF_SD_ID = 0x4453;

  SDBLOCK();
  SDBLOCK(const std::uint8_t* _data, std::size_t _ndata);

  /// Reads the block at the stream's position, its data straight into `sd_data`. Links are not
  /// read: everything after the header is data. A stream that ends in the header keeps the state
  /// that the read left and gives an empty block; one that ends in the data becomes bad, and
  /// `sd_data` keeps its stated size with zeros after what came.
  /// @throws std::length_error or std::bad_alloc for a length below 24 or beyond memory.
  explicit SDBLOCK(std::istream& is);

  /// Replaces the whole content.
  void setup(const std::uint8_t* _data, std::size_t _ndata);
  void addData(std::uint8_t byte) { sd_data.push_back(byte); }
  void clearData() { sd_data.clear(); }

  const std::vector<UINT8>& getData() const { return sd_data; }

  /// Bytes that the writer writes, fill bytes excluded.
  std::uint64_t getSize() const { return SDBLOCK_CONSTANT_SIZE + std::uint64_t{sd_data.size()}; }

  /// Shows the bytes as the characters they are. With at least one byte the stream is left in
  /// hexadecimal mode.
  void print(std::ostream& os) const;

  std::vector<UINT8> sd_data;
};

/// Writes the header, its length following from the data, and the data.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const SDBLOCK& sdb);

}  // namespace mdf_v4_10

#endif  // MDF_DATABLOCKS_SDBLOCK_H_
