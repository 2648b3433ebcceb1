#ifndef MDF_READER_BLOCKS_IDENTIFICATION_H_
#define MDF_READER_BLOCKS_IDENTIFICATION_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "finding.h"
#include "unreadable.h"

namespace mdf_reader {

class InputFile;

/// Where every file has its header block, right after the identification.
inline constexpr std::uint64_t header_block_offset = 64;

/// What the first 64 bytes of a file say of it.
struct Identification {
  std::string file_word;        ///< 8 bytes: "MDF     ", or "UnFinMF " for an unfinished file
  std::string version_text;     ///< 8 bytes up to a zero byte, such as "4.10    "
  std::string program;          ///< 8 bytes up to a zero byte
  unsigned version = 0;         ///< such as 410
  unsigned standard_flags = 0;  ///< what an unfinished file leaves open, bit by bit
  unsigned custom_flags = 0;    ///< the same by rules of the writing program

  enum StandardFlag : unsigned {
    cycle_counters_open = 1,            ///< cycle counts of channel groups are not final
    reduction_counters_open = 2,        ///< cycle counts of sample reductions
    last_data_open = 4,                 ///< length of the last data block
    last_reduction_open = 8,            ///< length of the last reduction data block
    last_list_open = 16,                ///< the last data list
    variable_length_sizes_open = 32,    ///< data bytes of groups for variable-length data
    variable_length_offsets_open = 64,  ///< offsets of channels with such a group
  };

  bool isFinished() const;
  /// Whether the number is one of MDF 4.
  bool isVersion4() const { return version >= 400 && version < 500; }
  bool isUnfinished() const;

  /// What an unfinished file leaves open by its flags, in words.
  std::vector<std::string> openParts() const;
};

Identification readIdentification(InputFile& file);

/// Why a file cannot be read at all: it cannot be opened, is no MDF file or one of another version.
/// Nothing for a file of MDF 4, whatever is wrong with it, and for any that has a header block
/// where it should be.
std::optional<Unreadable> refusalOf(InputFile& file);

/// What is wrong in the first 64 bytes of a file that is read.
std::optional<Finding> identificationFinding(InputFile& file);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_IDENTIFICATION_H_
