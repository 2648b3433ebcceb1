#ifndef MDF_DATABLOCKS_DZBLOCK_H_
#define MDF_DATABLOCKS_DZBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A zipped data block: stands in place of a data, reduction data or signal data block whose
/// content has been compressed. The library neither compresses nor decompresses: the caller hands
/// in compressed bytes, and states the length that they had before.
class MDF_EXPORT DZBLOCK : public GENERALBLOCK {
 public:
  /// Size without the compressed bytes.
  static constexpr std::size_t DZBLOCK_CONSTANT_SIZE = 48;
  static constexpr std::uint16_t MDF_DZ_ID = 0x5A44;

  enum DZ_ZIPTYPE_t : int {
    DZ_ZIPTYPE_DEFLATE = 0,
    DZ_ZIPTYPE_TRANSPORTION_DEFLATE = 1  ///< transposed first, in rows of the zip parameter's bytes
  };

  /// Takes the replaced block's type letters as a little-endian number, such as
  /// `DTBLOCK::MDF_DT_ID`. Zip parameter and original length are 0 until they are set.
  DZBLOCK(std::uint16_t _org_block_type, DZ_ZIPTYPE_t _zipType, const std::uint8_t* _data,
          std::size_t _ndata);

  /// Reads the block at the stream's position. `dz_data` deliberately gets the bytes that follow
  /// the block in the stream, as many as its compressed length says, and not the block's own; the
  /// stream ends up after them. Where fewer follow, as at the end of a file, the stream becomes
  /// bad, and `dz_data` keeps its stated size with zeros after what came. A stream that ends in
  /// the block keeps its own end-of-file and fail bits and leaves fields of zero.
  /// @throws std::length_error or std::bad_alloc for a compressed length beyond memory.
  explicit DZBLOCK(std::istream& is);

  /// Replaces the compressed bytes; the original length stays.
  void setupZipData(const std::uint8_t* _data, std::size_t _ndata);

  UINT16 getOriginalBlockType() const { return dz_org_block_type; }
  void setOriginalBlockType(UINT16 type) { dz_org_block_type = type; }

  DZ_ZIPTYPE_t getZipType() const { return static_cast<DZ_ZIPTYPE_t>(dz_zip_type); }
  void setZipType(DZ_ZIPTYPE_t type) { dz_zip_type = static_cast<UINT8>(type); }

  UINT32 getZipParameter() const { return dz_zip_parameter; }
  void setZipParameter(UINT32 parameter) { dz_zip_parameter = parameter; }

  UINT64 getOriginalLength() const { return dz_org_data_length; }
  void setOriginalLength(UINT64 length) { dz_org_data_length = length; }

  /// Bytes that the writer writes, fill bytes excluded.
  std::uint64_t getSize() const { return DZBLOCK_CONSTANT_SIZE + std::uint64_t{dz_data.size()}; }

  /// Shows the compressed bytes as the characters they are. With at least one byte the stream is
  /// left in hexadecimal mode.
  void print(std::ostream& os) const;

  UINT16 dz_org_block_type = 0;  ///< the type letters of the replaced block
  UINT8 dz_zip_type = 0;         ///< a DZ_ZIPTYPE_t
  UINT8 dz_reserved = 0;
  UINT32 dz_zip_parameter = 0;    ///< bytes per row of the transposition
  UINT64 dz_org_data_length = 0;  ///< bytes before compression
  std::vector<UINT8> dz_data;
};

/// Writes the block; the length and the compressed length in the file follow from the bytes, and
/// the link count is 0.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const DZBLOCK& dzb);

}  // namespace mdf_v4_10

#endif  // MDF_DATABLOCKS_DZBLOCK_H_
