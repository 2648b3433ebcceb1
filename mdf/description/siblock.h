#ifndef MDF_DESCRIPTION_SIBLOCK_H_
#define MDF_DESCRIPTION_SIBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "../framework/bits.h"
#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A source information block: where the values of a channel or of a channel group came from, over
/// what kind of bus, and whether the source was simulated.
class MDF_EXPORT SIBLOCK : public GENERALBLOCK {
 public:
  static constexpr std::size_t SIBLOCK_SIZE = 56;
  static constexpr std::uint16_t MDF_SI_ID = 0x4953;

  enum MDF_SI_SOURCETYPE_t : int {
    SI_SOURCETYPE_OTHER = 0,
    SI_SOURCETYPE_ECU = 1,
    SI_SOURCETYPE_BUS = 2,
    SI_SOURCETYPE_IO = 3,
    SI_SOURCETYPE_TOOL = 4,
    SI_SOURCETYPE_USER = 5
  };

  enum MDF_SI_BUSTYPE_t : int {
    SI_BUSTYPE_NONE = 0,
    SI_BUSTYPE_OTHER = 1,
    SI_BUSTYPE_CAN = 2,
    SI_BUSTYPE_LIN = 3,
    SI_BUSTYPE_MOST = 4,
    SI_BUSTYPE_FLEXRAY = 5,
    SI_BUSTYPE_K_LINE = 6,
    SI_BUSTYPE_ETHERNET = 7,
    SI_BUSTYPE_USB = 8
  };

  /// Bits of `si_flags`.
  enum SI_FLAGS_t : int { simulated_source = 1 };

  enum MDF_SI_BLOCK_LINKS {
    si_tx_name = 0,     ///< text block with the source's name
    si_tx_path = 1,     ///< text block with the source's path
    si_md_comment = 2,  ///< comment, a text or metadata block
    SI_BLOCK_LINKS_NUM = 3
  };

  SIBLOCK();

  SIBLOCK(MDF_SI_SOURCETYPE_t _sourceType, MDF_SI_BUSTYPE_t _busType, bool _simulatedSource,
          LINK _txName, LINK _txPath);

  /// Reads the block at the stream's position. The links read stand in `links` from index 3 on,
  /// after three nil links: the link accessors, the dump and the writer see the nil ones. The
  /// flags are taken as they stand, a simulated tool included. A short stream becomes bad and
  /// leaves three nil links and fields of zero.
  explicit SIBLOCK(std::istream& is);

  void setNameTxblock(LINK link) { setLinkAt(si_tx_name, link); }
  LINK getNameTxblock() const { return linkAt(si_tx_name); }
  LINK seekgNameTxblock(std::ifstream& ifs) const { return seekg(ifs, getNameTxblock()); }

  void setPathTxblock(LINK link) { setLinkAt(si_tx_path, link); }
  LINK getPathTxblock() const { return linkAt(si_tx_path); }
  LINK seekgPathTxblock(std::ifstream& ifs) const { return seekg(ifs, getPathTxblock()); }

  void setComment(LINK link) { setLinkAt(si_md_comment, link); }
  LINK getComment() const { return linkAt(si_md_comment); }
  LINK seekgCommentblock(std::ifstream& ifs) const { return seekg(ifs, getComment()); }

  /// A source that becomes a tool keeps its simulated flag.
  void setSourceType(MDF_SI_SOURCETYPE_t type) { si_type = static_cast<UINT8>(type); }
  MDF_SI_SOURCETYPE_t getSourceType() const { return static_cast<MDF_SI_SOURCETYPE_t>(si_type); }

  void setBusType(MDF_SI_BUSTYPE_t type) { si_bus_type = static_cast<UINT8>(type); }
  MDF_SI_BUSTYPE_t getBusType() const { return static_cast<MDF_SI_BUSTYPE_t>(si_bus_type); }

  /// A tool cannot be a simulated source: with the source type tool the flag is cleared, whatever
  /// `set` says. Only this call looks at the source type.
  void setSimulatedSource(bool set) {
    detail::setBit(si_flags, simulated_source, set && si_type != SI_SOURCETYPE_TOOL);
  }
  bool isSimulatedSource() const { return detail::hasBit(si_flags, simulated_source); }

  std::uint64_t getSize() const { return SIBLOCK_SIZE; }

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "si_comment.xsd"; }

  void print(std::ostream& os) const;

  UINT8 si_type = SI_SOURCETYPE_OTHER;  ///< an MDF_SI_SOURCETYPE_t
  UINT8 si_bus_type = SI_BUSTYPE_NONE;  ///< an MDF_SI_BUSTYPE_t
  UINT8 si_flags = 0;
  detail::Array<UINT8, 5> si_reserved{};
};

/// Writes the header and the links as they are stored, then the data section. A block that was
/// read writes its nil links as well.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const SIBLOCK& sib);

}  // namespace mdf_v4_10

#endif  // MDF_DESCRIPTION_SIBLOCK_H_
