#ifndef MDF_TOOLS_CHECKING_CHANNEL_CHECK_H_
#define MDF_TOOLS_CHECKING_CHANNEL_CHECK_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "reader/blocks/block_fields.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Checks the channels of a channel group against each other and against the length of its records.
class ChannelCheck {
 public:
  ChannelCheck(const Subject& subject, const BlockFields& group, std::uint32_t index);

  /// Takes a channel, which may be a member of another one.
  void take(const BlockFields& channel, std::uint32_t index);

  /// Takes an array, which may belong to the latest channel or be an element of the latest array.
  void takeArray(const BlockFields& block, std::uint32_t index, std::uint64_t elements);

  /// Checks what shows only when all channels are known.
  void leave();

 private:
  struct Master {
    std::uint32_t index;
    std::uint64_t kind;
    std::uint64_t first_bit;
    std::uint64_t end_bit;
  };

  /// The part of a record that a channel takes, with all elements of its arrays.
  struct Extent {
    std::uint32_t index;  ///< of the channel or the latest array
    std::uint64_t first_byte;
    std::uint64_t end_bit;
    std::optional<std::uint64_t> end_invalidation_bit;
  };

  static Extent extentOf(const BlockFields& channel, std::uint32_t index);
  bool checkBits(const Extent& extent) const;
  bool checkElements(const BlockFields& array, std::uint64_t elements);
  bool checkInvalidationBits(const BlockFields& array, std::uint64_t elements);
  void checkMasters();

  const Subject& subject_;
  std::uint32_t index_;
  std::uint64_t data_bytes_;
  std::uint64_t invalidation_bytes_;
  bool needs_master_;
  bool has_channels_ = false;
  std::vector<Master> masters_;
  std::optional<Extent> extent_;  ///< of what the next array may be made of
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_CHANNEL_CHECK_H_
