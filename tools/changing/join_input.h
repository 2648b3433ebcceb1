#ifndef MDF_TOOLS_CHANGING_JOIN_INPUT_H_
#define MDF_TOOLS_CHANGING_JOIN_INPUT_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "block_copy.h"
#include "reader/data/data_file.h"
#include "reader/model/description.h"
#include "reader/values/conversion.h"

namespace mdf_tools {

using namespace mdf_reader;

class FileDescriber;

/// One of the files that become one. What it is given must outlast it.
struct JoinInput {
  JoinInput(InputFile& input, std::string called, const FindingSink& sink);
  ~JoinInput();
  JoinInput(const JoinInput&) = delete;
  JoinInput& operator=(const JoinInput&) = delete;

  InputFile& file;
  std::string name;
  const FindingSink& report;
  BlockCopy blocks;
  Description description;
  DataFile data;
  Conversions conversions;
  std::unique_ptr<FileDescriber> describer;
  std::int64_t later = 0;  ///< than the joined file begins, in nanoseconds
  /// Which of the joined groups the records of a channel group go to, by the group's offset.
  std::unordered_map<std::uint64_t, std::size_t> joined{};

  double secondsLater() const { return static_cast<double>(later) / 1e9; }
  std::uint32_t indexOf(std::uint64_t offset) const { return blocks.table().find(offset); }
};

/// The files in their order.
using JoinInputs = std::deque<JoinInput>;

/// A channel group of a file.
struct GroupSource {
  std::size_t file;  ///< its number
  const DataGroup* data_group;
  const ChannelGroup* group;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_JOIN_INPUT_H_
