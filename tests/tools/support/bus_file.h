#ifndef MDF_TESTS_TOOLS_SUPPORT_BUS_FILE_H_
#define MDF_TESTS_TOOLS_SUPPORT_BUS_FILE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "file_builder.h"

namespace mdf_tests {

/// What the flags of a frame's record are, and the flag in an identifier of 29 bits.
enum FrameFlag : unsigned { sent = 1, fd = 2, rate_switch = 4, error_state = 8 };
constexpr std::uint32_t extended = 0x80000000;

/// A structure over the bytes 8 to 29 of a record, after a time.
ChannelSpec structureOf(FileBuilder& file, const std::string& name,
                        const std::vector<ChannelSpec>& members);

ChannelSpec bitOf(const std::string& name, std::uint32_t byte, unsigned bit, std::uint32_t bits);

/// Bus at byte 8, identifier at 9, flags at 13, length at 14, data from 15 on.
std::vector<ChannelSpec> canMembers();

/// A record of 30 bytes.
std::string frameRecord(double time, unsigned bus, std::uint32_t id, unsigned flags,
                        unsigned length, const std::string& data);

/// Adds a data group of such records.
void addFrames(FileBuilder& file, const std::string& name, const std::vector<ChannelSpec>& members,
               const std::string& records);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_BUS_FILE_H_
