#ifndef MDF_TOOLS_CHANGING_FINISHING_H_
#define MDF_TOOLS_CHANGING_FINISHING_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "checking/file_check.h"
#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_writer {
class Output;
}  // namespace mdf_writer

namespace mdf_tools {

using namespace mdf_reader;

/// What an unfinished file needs to be a finished one.
struct Finishing {
  /// A channel group, or a sample reduction, and how many records it has.
  struct Count {
    std::uint64_t block;
    std::string name;  ///< of the channel group, which may have none
    bool is_reduction;
    bool holds_values;                     ///< of a variable-length channel
    std::optional<std::uint64_t> records;  ///< nothing where nobody can tell
    std::uint64_t stated;
  };
  /// A block of data with another length than it states.
  struct Length {
    std::uint64_t block;
    std::uint64_t bytes;
    std::uint64_t stated;
  };
  /// A data list with other entries than it states.
  struct List {
    std::uint64_t block;
    std::uint64_t entries;
    std::uint64_t stated;
  };
  /// Bytes after the last whole record or value of some data.
  struct Cut {
    std::uint64_t offset;
    std::uint64_t bytes;
    bool is_record;
  };
  /// Data with something between its records that is none. It stays as it is, and so do counts of
  /// records after it.
  struct Stuck {
    std::uint64_t data_group;
    std::uint64_t data;     ///< what it leads to
    std::uint64_t link_at;  ///< of the link to that
  };
  /// Bytes that are written over those of the file, or after them.
  struct Change {
    std::uint64_t at;
    std::string bytes;
  };

  /// Bytes that become zeros.
  struct Zeros {
    std::uint64_t at;
    std::uint64_t count;
  };

  std::vector<Count> counts;  ///< of all channel groups, and of the reductions that are set
  std::vector<Length> lengths;
  std::vector<List> lists;
  std::vector<Cut> cuts;
  std::vector<Stuck> stuck;
  std::vector<KnownRecords> known;  ///< as they are when the file is finished

  /// The changes, step by step: each needs those before. After the first one the file gets its size
  /// and the zeros.
  std::vector<std::vector<Change>> steps;
  std::vector<Zeros> zeros;
  std::uint64_t size = 0;
};

/// Finds out what an unfinished file needs, reading its data once. What is wrong with it on the way
/// is reported, and what is not read of its data.
Finishing finishingOf(InputFile& file, const FindingSink& report);

/// Makes the changes in a file of these bytes. Whenever it is interrupted, the file is one that
/// finishingOf() finishes in the same way. False when the file takes no more.
bool apply(const Finishing& finishing, mdf_writer::Output& output);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_FINISHING_H_
