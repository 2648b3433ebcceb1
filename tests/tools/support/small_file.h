#ifndef MDF_TESTS_TOOLS_SUPPORT_SMALL_FILE_H_
#define MDF_TESTS_TOOLS_SUPPORT_SMALL_FILE_H_

#include <cstdint>
#include <string>

#include "file_builder.h"

namespace mdf_tests {

/// A file without a fault, to be broken in one place or added to: a data group with a channel group
/// of two channels, two records of a time and a speed, 9 bytes each. Its blocks stand where the
/// constants say; the file ends at `end`.
class SmallFile : public FileBuilder {
 public:
  explicit SmallFile(const std::string& file_word = "MDF     ", unsigned version = 410);

  static constexpr std::uint64_t data_group = 168;
  static constexpr std::uint64_t group = 232;
  static constexpr std::uint64_t time = 336;   ///< the master channel
  static constexpr std::uint64_t speed = 496;  ///< the other one
  static constexpr std::uint64_t time_name = 656;
  static constexpr std::uint64_t speed_name = 688;
  static constexpr std::uint64_t data = 720;
  static constexpr std::uint64_t end = 762;

  /// Replaces the fields of a channel, or those of the group.
  void setChannel(std::uint64_t channel, const ChannelSpec& spec);
  void setGroup(const GroupSpec& spec);

  /// Makes a block the header's comment.
  void setComment(std::uint64_t block) { link(header, 5, block); }

  /// Makes a block the data group's data, in place of the data block, which goes away.
  void replaceData(std::uint64_t block);
};

/// The small file with a link that leads nowhere, a text that is no UTF-8 and no master channel: an
/// error, a warning and a note.
std::string faultyFile();

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_SMALL_FILE_H_
