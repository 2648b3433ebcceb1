#ifndef MDF_FILEBLOCKS_IDBLOCK_H_
#define MDF_FILEBLOCKS_IDBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// The identification block: the first 64 bytes of every file. They name the file format, its
/// version and the program that wrote the file. Alone among the blocks it has no "##" header and no
/// links in the file; the inherited header is neither written nor read.
class MDF_EXPORT IDBLOCK : public GENERALBLOCK {
 public:
  static constexpr std::size_t IDBLOCK_SIZE = 64;
  static constexpr const char* MDF_ID_FILE_STRING = "MDF     ";
  static constexpr const char* MDF_ID_VERS_STRING = "4.10    ";
  static constexpr std::uint16_t MDF_ID_VERS_NO = 410;
  /// Widths of the three text fields.
  static constexpr std::size_t MDF_ID_FILE = 8;
  static constexpr std::size_t MDF_ID_VERS = 8;
  static constexpr std::size_t MDF_ID_PROG = 8;
  /// The code for little-endian byte order; the 4.10 layout has no field for it.
  static constexpr std::uint16_t MDF_ID_ORDER_INTEL = 0;
  static constexpr std::uint16_t MDF_ID_ID = 0x4449;

  /// A block for writing. `_prog` names the writing program: its first 8 characters, or fewer,
  /// which are padded with blanks.
  explicit IDBLOCK(const char* _prog);

  /// Reads the block at the stream's position. Nothing is verified: a file of another format or
  /// version is read as it stands. A short stream becomes bad and leaves the fields zero.
  explicit IDBLOCK(std::istream& is);

  void print(std::ostream& os) const;

  /// The file identifier, format identifier and program identifier, 8 characters each as stored.
  std::string getKenn() const;
  std::string getVers() const;
  std::string getProg() const;
  std::uint16_t getVersionNumber() const { return id_ver; }

  std::uint64_t getSize() const { return IDBLOCK_SIZE; }

  detail::Array<char, MDF_ID_FILE> id_file{};
  detail::Array<char, MDF_ID_VERS> id_vers{};
  detail::Array<char, MDF_ID_PROG> id_prog{};
  /// Deliberately not taken from a file.
  detail::Array<UINT8, 4> id_reserved1{};
  UINT16 id_ver = 0;
  detail::Array<UINT8, 34> id_reserved2{};

 private:
  IDBLOCK();
};

/// Writes the 64 bytes of the block, without a header.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const IDBLOCK& idb);

}  // namespace mdf_v4_10

#endif  // MDF_FILEBLOCKS_IDBLOCK_H_
