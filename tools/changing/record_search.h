#ifndef MDF_TOOLS_CHANGING_RECORD_SEARCH_H_
#define MDF_TOOLS_CHANGING_RECORD_SEARCH_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "reader/data/data_stream.h"
#include "reader/data/record_format.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Finds the place where records go on after one that is damaged. Nobody marks where a record
/// begins: a place is taken for a beginning where records fit together from there on, each with an
/// id that is known, and right after the one before.
///
/// They must fit up to the end of the data, three of them or more, of which a last one may be torn.
/// After a record with an unknown id one is enough that ends with the data; after one whose length
/// leads outside, the bytes to come may be those of its value. Where there are more than 2 MiB to
/// come, three must fit that far. And 32 in a row are enough, so that the records between two
/// damaged ones are found. Of these places the first one is taken, but of all the one where the
/// damaged record would end by the length of a group's records comes before others, as most often
/// just the id is damaged.
///
/// Time is in proportion to the data when it asked for one place after the other; it takes 8 MiB.
class RecordSearch {
 public:
  RecordSearch(const DataGroup& data_group, const RecordFormat& format, DataStream& data);

  /// Where records go on after a position at which there is no record; nothing where they do not.
  std::optional<std::uint64_t> after(std::uint64_t position);

 private:
  /// What is known of the places of a part of the data, and of as many after it.
  struct Part {
    std::uint64_t begin = UINT64_MAX;
    std::vector<std::uint8_t> runs;  ///< of each place
  };

  bool isBeginning(std::uint64_t position, bool is_id_unknown);
  const Part& partWith(std::uint64_t position);
  void look(Part& part);

  const RecordFormat& format_;
  DataStream& data_;
  std::vector<std::uint64_t> sizes_;  ///< of records of fixed length, ascending
  std::array<Part, 2> parts_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_RECORD_SEARCH_H_
