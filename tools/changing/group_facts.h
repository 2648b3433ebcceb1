#ifndef MDF_TOOLS_CHANGING_GROUP_FACTS_H_
#define MDF_TOOLS_CHANGING_GROUP_FACTS_H_

#include <cstdint>
#include <string>

#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Whether a data group has arrays whose elements have records of their own.
bool hasElementsElsewhere(const DataGroup& data_group);

/// Whether a record has one offset of a channel of variable length, which can be changed.
bool hasOffsetInPlace(const ChannelGroup& group, const Channel& channel);

/// Whether a group has channels whose values are made of the numbers of the records.
bool hasVirtual(const ChannelGroup& group);

/// The letters of the blocks with the data that a link leads to; "" where it is not to be written
/// anew: what makes no sense, and what has parts that stand apart.
std::string dataLettersOf(InputFile& file, std::uint64_t target);

/// The bytes of a data group's block whose records have no ids.
std::string dataGroupBlock(std::uint64_t next, std::uint64_t group, std::uint64_t data,
                           std::uint64_t comment);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_GROUP_FACTS_H_
