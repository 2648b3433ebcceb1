#include "channel_json.h"

#include "../blocks/block_fields.h"
#include "json.h"
#include "names.h"

namespace mdf_reader {

Json channelAsJson(const ChannelFacts& facts) {
  const Channel& channel = facts.channel;
  const auto conversion = facts.conversion;
  return {{"group", facts.group.index},
          {"name", facts.name},
          {"unit", channel.unit},
          {"type", channelTypeName(channel.type)},
          {"type_number", channel.type},
          {"sync_type", syncTypeName(channel.sync_type)},
          {"sync_type_number", channel.sync_type},
          {"data_type", dataTypeName(channel.data_type)},
          {"data_type_number", channel.data_type},
          {"bit_offset", channel.bit_offset},
          {"byte_offset", channel.byte_offset},
          {"bit_count", channel.bit_count},
          {"flags", channel.flags},
          {"dimensions", allDimensions(channel.array)},
          {"depth", channel.depth},
          {"records", facts.records.records ? Json(*facts.records.records) : Json()},
          {"records_counted", facts.records.is_counted},
          {"conversion", conversion ? Json(conversionTypeName(*conversion)) : Json()},
          {"conversion_number", conversion ? Json(*conversion) : Json()},
          {"source", facts.source},
          {"comment", channel.comment},
          {"offset", channel.offset}};
}

std::optional<unsigned> conversionTypeOf(InputFile& file, const Channel& channel) {
  const auto block = readFields(file, channel.conversion, "CC");
  return block ? std::optional(static_cast<unsigned>(block->number("cc_type"))) : std::nullopt;
}

std::vector<std::uint64_t> allDimensions(const ArrayShape& array) {
  std::vector<std::uint64_t> dimensions = array.dimensions;
  for (const ArrayShape& inner : array.inner) {
    dimensions.insert(dimensions.end(), inner.dimensions.begin(), inner.dimensions.end());
  }
  return dimensions;
}

}  // namespace mdf_reader
