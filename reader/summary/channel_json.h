#ifndef MDF_READER_SUMMARY_CHANNEL_JSON_H_
#define MDF_READER_SUMMARY_CHANNEL_JSON_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../data/record_count.h"
#include "../model/description.h"
#include "json_type.h"

namespace mdf_reader {

class InputFile;

/// What is said of a channel.
struct ChannelFacts {
  const ChannelGroup& group;
  const Channel& channel;
  const std::string& name;  ///< with those of the structures that it is a member of
  RecordCount records;
  std::optional<unsigned> conversion;  ///< its type
  std::string_view source;
};

/// A channel as an object for programs.
Json channelAsJson(const ChannelFacts& facts);

/// The type of a channel's conversion; nothing where it has none.
std::optional<unsigned> conversionTypeOf(InputFile& file, const Channel& channel);

/// The dimensions of an array, and of the arrays that its elements are.
std::vector<std::uint64_t> allDimensions(const ArrayShape& array);

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_CHANNEL_JSON_H_
