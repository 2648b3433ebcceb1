#ifndef MDF_FILEBLOCKS_MDBLOCK_H_
#define MDF_FILEBLOCKS_MDBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A metadata block: XML, for example a comment, with a terminating zero.
///
/// In the file: the common header without links, then the bytes of `data`.
class MDF_EXPORT MDBLOCK : public GENERALBLOCK {
 public:
  /// Size without the text.
  static constexpr std::size_t MDBLOCK_CONSTANT_SIZE = HeaderSection::HEADER_SIZE;
  static constexpr std::uint16_t MDF_MD_ID = 0x444D;

  /// The empty text: `data` is the terminating zero alone.
  MDBLOCK();

  MDBLOCK(const char* _data, std::size_t _ndata);

  /// Reads the block at the stream's position. The link count field is deliberately not consumed:
  /// `data` gets its 8 bytes and then the text without its last 8 bytes, which stay unread. A short
  /// stream becomes bad; `data` then keeps its stated size with zeros after what came, or stays
  /// empty if the stream ended before it. Any block is read as text.
  explicit MDBLOCK(std::istream& is);

  /// Replaces the text by `_ndata` bytes, taken as they are, and one terminating zero.
  void setup(const char* _data, std::size_t _ndata);

  /// The text's bytes, terminating zero included.
  const std::vector<UINT8>& getData() const { return data; }

  /// Bytes that the writer writes, fill bytes excluded.
  std::uint64_t getSize() const { return MDBLOCK_CONSTANT_SIZE + data.size(); }

  /// Shows the text without its terminating zero; the end banner deliberately follows it on the
  /// same line.
  void print(std::ostream& os) const;

  std::vector<UINT8> data;
};

/// Writes the header, its length following from `data`, and the bytes of `data`.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const MDBLOCK& block);

}  // namespace mdf_v4_10

#endif  // MDF_FILEBLOCKS_MDBLOCK_H_
