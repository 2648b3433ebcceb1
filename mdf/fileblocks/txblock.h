#ifndef MDF_FILEBLOCKS_TXBLOCK_H_
#define MDF_FILEBLOCKS_TXBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A text block: a name, a unit, a comment or another string, with a terminating zero.
///
/// In the file: the common header without links, then the bytes of `data`.
class MDF_EXPORT TXBLOCK : public GENERALBLOCK {
 public:
  /// Size without the text.
  static constexpr std::size_t TXBLOCK_CONSTANT_SIZE = HeaderSection::HEADER_SIZE;
  static constexpr std::uint16_t MDF_TX_ID = 0x5854;

  /// The empty text: `data` is the terminating zero alone.
  TXBLOCK();

  TXBLOCK(const char* _data, std::size_t _ndata);

  /// Reads the block at the stream's position. The link count field is deliberately not consumed:
  /// `data` gets its 8 bytes and then the text without its last 8 bytes, which stay unread. A short
  /// stream becomes bad; `data` then keeps its stated size with zeros after what came, or stays
  /// empty if the stream ended before it. Any block is read as text.
  explicit TXBLOCK(std::istream& is);

  /// Replaces the text by `_ndata` bytes, taken as they are, and one terminating zero.
  void setup(const char* _data, std::size_t _ndata);

  /// The text's bytes, terminating zero included.
  const std::vector<UINT8>& getData() const { return data; }

  /// Bytes that the writer writes, fill bytes excluded.
  std::uint64_t getSize() const { return TXBLOCK_CONSTANT_SIZE + data.size(); }

  /// Shows the text without its terminating zero; a text that ends in no line feed gets a line end.
  void print(std::ostream& os) const;

  std::vector<UINT8> data;
};

/// Writes the header, its length following from `data`, and the bytes of `data`.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const TXBLOCK& block);

}  // namespace mdf_v4_10

#endif  // MDF_FILEBLOCKS_TXBLOCK_H_
