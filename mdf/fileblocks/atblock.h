#ifndef MDF_FILEBLOCKS_ATBLOCK_H_
#define MDF_FILEBLOCKS_ATBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <iterator>
#include <string>
#include <vector>

#include "../framework/bits.h"
#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// An attachment block: a file that belongs to the measurement, either embedded with its bytes,
/// which the caller may have compressed, or external and named by a file name.
///
/// The block is constructed without links. The first link setter gives it the format's four, which
/// a block in a file must have: a block whose links are all to be nil needs one setter call, too.
class MDF_EXPORT ATBLOCK : public GENERALBLOCK {
 public:
  /// Size without embedded bytes.
  static constexpr std::size_t ATBLOCK_CONSTANT_SIZE = 96;
  static constexpr std::uint16_t MDF_AT_ID = 0x5441;
  /// Bytes of an MD5 digest.
  static constexpr std::size_t MDF_AT_MD5 = 16;

  enum MDF_AT_BLOCK_LINKS {
    at_at_next = 0,      ///< next attachment
    at_tx_filename = 1,  ///< text block with the file name
    at_tx_mimetype = 2,  ///< text block with the MIME type
    at_md_comment = 3,   ///< comment, a metadata block
    AT_BLOCK_LINKS_NUM = 4
  };

  /// Bits of `at_flags`.
  enum AT_FLAGS_t : int {
    embedded_data = 1,             ///< the content is embedded in the block
    compressed_embedded_data = 2,  ///< the embedded content is compressed
    md5_checksum = 4               ///< `at_md5_checksum` is valid
  };

  /// A block without embedded bytes, all flags clear.
  ATBLOCK();

  /// A block with these bytes embedded, flagged so.
  ATBLOCK(const char* _data, std::size_t _ndata);

  /// Reads the block at the stream's position. Embedded bytes that the block is too short for are
  /// missing. A short stream keeps its own end-of-file and fail bits and leaves the block without
  /// links and embedded bytes, its fields zero.
  explicit ATBLOCK(std::istream& is);

  /// Replaces the embedded bytes. The flags stay.
  void setup(const char* _data, std::size_t _ndata);

  void setEmbeddedDataFlag(bool set) { detail::setBit(at_flags, embedded_data, set); }
  bool isEmbeddedData() const { return detail::hasBit(at_flags, embedded_data); }

  /// Compressed content must be embedded: without the `embedded_data` flag this clears the flag,
  /// whatever `set` says.
  void setCompressedEmbeddedDataFlag(bool set) {
    detail::setBit(at_flags, compressed_embedded_data, set && isEmbeddedData());
  }
  bool isCompressedEmbeddedData() const {
    return detail::hasBit(at_flags, compressed_embedded_data);
  }

  void setMD5ChecksumFlag(bool set) { detail::setBit(at_flags, md5_checksum, set); }
  bool isMD5Checksum() const { return detail::hasBit(at_flags, md5_checksum); }

  /// Deliberately puts the 16 characters over the first 16 embedded bytes, not into
  /// `at_md5_checksum`; the flag stays as well. A string of another length is ignored, and so is
  /// any string as long as fewer than 16 bytes are embedded.
  void setMD5Checksum(const char* checksum);

  /// The 16 bytes of `at_md5_checksum`.
  std::string getMD5Checksum() const {
    return {std::begin(at_md5_checksum), std::end(at_md5_checksum)};
  }

  UINT16 getCreatorIndex() const { return at_creator_index; }
  void setCreatorIndex(UINT16 index) { at_creator_index = index; }

  UINT64 getOriginalSize() const { return at_original_size; }
  void setOriginalSize(UINT64 size) { at_original_size = size; }

  void setNextATBlock(LINK link) { storeLink(at_at_next, link); }
  LINK getNextATBlock() const { return linkAt(at_at_next); }
  LINK seekgNextATBlock(std::ifstream& ifs) const { return seekg(ifs, getNextATBlock()); }

  void setTXFilenameBlock(LINK link) { storeLink(at_tx_filename, link); }
  LINK getTXFilenameBlock() const { return linkAt(at_tx_filename); }
  LINK seekgTXFilenameBlock(std::ifstream& ifs) const { return seekg(ifs, getTXFilenameBlock()); }

  void setTXMimetypeBlock(LINK link) { storeLink(at_tx_mimetype, link); }
  LINK getTXMimetypeBlock() const { return linkAt(at_tx_mimetype); }
  LINK seekgTXMimetypeBlock(std::ifstream& ifs) const { return seekg(ifs, getTXMimetypeBlock()); }

  void setMDBlock(LINK link) { storeLink(at_md_comment, link); }
  LINK getMDBlock() const { return linkAt(at_md_comment); }
  LINK seekgMDBlock(std::ifstream& ifs) const { return seekg(ifs, getMDBlock()); }

  /// The length that the writer stores; it assumes that the block has four links.
  std::uint64_t getSize() const {
    return ATBLOCK_CONSTANT_SIZE + std::uint64_t{at_embedded_data.size()};
  }

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "at_comment.xsd"; }

  /// Shows the embedded bytes as the characters they are; the end banner deliberately follows the
  /// last of them on the same line.
  void print(std::ostream& os) const;

  UINT16 at_flags = 0;
  UINT16 at_creator_index = 0;  ///< of the file history entry that made the attachment
  detail::Array<UINT8, 4> at_reserved{};
  detail::Array<UINT8, MDF_AT_MD5> at_md5_checksum{};  ///< of the attached content
  UINT64 at_original_size = 0;                         ///< of the content, before compression
  std::vector<UINT8> at_embedded_data;

 private:
  void storeLink(MDF_AT_BLOCK_LINKS index, LINK link);
};

/// Writes the block, its length following from the embedded bytes. Links and link count are written
/// as they are stored, whether there are four or not.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const ATBLOCK& atb);

}  // namespace mdf_v4_10

#endif  // MDF_FILEBLOCKS_ATBLOCK_H_
