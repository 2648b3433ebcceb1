#include "record_ids.h"

#include <string_view>

#include "reader/blocks/walker.h"
#include "reader/bytes/input_file.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// With more groups or data blocks there is no answer: however many data groups share them, each
/// takes little time.
constexpr std::uint64_t most_blocks = 200;

struct RecordCounts {
  std::uint64_t records = 0;
  std::uint64_t bytes = 0;  ///< of all records without their ids
  bool has_large_id = false;
};

/// The sums over a chain of channel groups. Groups of variable-length values state their total
/// bytes, in a low and a high half, where others state the bytes of one record.
std::optional<RecordCounts> countRecords(InputFile& file, std::uint64_t first) {
  constexpr std::uint64_t is_variable_length = 1;
  RecordCounts counts;
  std::uint64_t groups = 0;
  for (auto group = readFields(file, first, "CG"); group;
       group = readFields(file, group->link(0), "CG")) {
    if (++groups > most_blocks) {
      return std::nullopt;
    }
    const std::uint64_t cycles = group->number("cg_cycle_count");
    const std::uint64_t data = group->number("cg_data_bytes");
    const std::uint64_t invalidation = group->number("cg_inval_bytes");
    counts.records += cycles;
    counts.bytes += group->hasFlag("cg_flags", is_variable_length) ? data + (invalidation << 32U)
                                                                   : cycles * (data + invalidation);
    counts.has_large_id = counts.has_large_id || group->number("cg_record_id") > UINT32_MAX;
  }
  return counts;
}

/// How many bytes of data a block states.
std::uint64_t dataBytes(const BlockFields& block) {
  if (block.raw().letters() == "DZ") {
    return block.number("dz_org_data_length");
  }
  const std::uint64_t end = block.offset() + block.raw().length;
  return end > block.fieldsAt() ? end - block.fieldsAt() : 0;
}

/// How many bytes of data a link leads to.
std::optional<std::uint64_t> countBytes(InputFile& file, std::uint64_t link) {
  if (const auto header = readFields(file, link, "HL")) {
    link = header->link(0);
  }
  std::uint64_t bytes = 0;
  std::uint64_t blocks = 0;
  const auto add = [&](std::uint64_t offset) {
    const auto raw = offset == 0 ? std::nullopt : readRawBlock(file, offset);
    bytes += raw ? dataBytes(BlockFields(file, *raw)) : 0;
  };
  auto list = readFields(file, link, "DL");
  if (!list) {
    add(link);
  }
  while (list) {
    const std::uint64_t links = linksThere(file, list->raw());
    blocks += links;
    if (links == 0 || blocks > most_blocks) {
      return std::nullopt;
    }
    forEachLink(file, list->raw(), [&](std::uint64_t index, std::int64_t target) {
      if (index > 0) {
        add(static_cast<std::uint64_t>(target));
      }
    });
    list = readFields(file, list->link(0), "DL");
  }
  return bytes;
}

}  // namespace

std::optional<std::uint64_t> recordIdBytes(InputFile& file, const BlockFields& data_group) {
  const std::uint64_t code = data_group.number("dg_rec_id_size");
  const auto possible = recordIdBytesFor(code);
  if (possible.size() < 2) {
    return possible.empty() ? code : possible.front();
  }
  const auto counts = countRecords(file, data_group.link(1));
  if (counts && counts->has_large_id) {
    return 8;
  }
  const auto bytes = countBytes(file, data_group.link(2));
  if (!counts || !bytes) {
    return std::nullopt;
  }
  const bool fits_four = *bytes == counts->bytes + 4 * counts->records;
  const bool fits_eight = *bytes == counts->bytes + 8 * counts->records;
  if (fits_four == fits_eight) {
    return std::nullopt;
  }
  return fits_four ? 4 : 8;
}

}  // namespace mdf_tools
