#ifndef MDF_DATABLOCKS_RDBLOCK_H_
#define MDF_DATABLOCKS_RDBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A reduction data block: the bytes of a sample reduction's records.
/// The library takes the bytes as they are.
///
/// In the file: the common header, then the bytes. The header's length in memory is not kept in
/// step with the bytes; the writer and the dump compute it.
class MDF_EXPORT RDBLOCK : public GENERALBLOCK {
 public:
  /// Size without the data.
  static constexpr std::size_t RDBLOCK_CONSTANT_SIZE = HeaderSection::HEADER_SIZE;
  static constexpr std::uint16_t MDF_RD_ID = 0x4452;

  RDBLOCK(const std::uint8_t* _data, std::size_t _ndata);

  /// Reads the block at the stream's position, its data straight into `rd_data`. Links are not
  /// read: everything after the header is data. A stream that ends in the header keeps the state
  /// that the read left and gives an empty block; one that ends in the data becomes bad, and
  /// `rd_data` keeps its stated size with zeros after what came.
  /// @throws std::length_error or std::bad_alloc for a length below 24 or beyond memory.
  explicit RDBLOCK(std::istream& is);

  /// Replaces the whole content.
  void setup(const std::uint8_t* _data, std::size_t _ndata);

  const std::vector<UINT8>& getData() const { return rd_data; }

  /// Bytes that the writer writes, fill bytes excluded.
  std::uint64_t getSize() const { return RDBLOCK_CONSTANT_SIZE + std::uint64_t{rd_data.size()}; }

  /// Shows the bytes as the characters they are. With at least one byte the stream is left in
  /// hexadecimal mode.
  void print(std::ostream& os) const;

  std::vector<UINT8> rd_data;
};

/// Writes the header, its length following from the data, and the data.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const RDBLOCK& rdb);

}  // namespace mdf_v4_10

#endif  // MDF_DATABLOCKS_RDBLOCK_H_
