#ifndef MDF_TOOLS_BUS_BUS_GROUP_H_
#define MDF_TOOLS_BUS_BUS_GROUP_H_

#include <mdf_writer/mdf_writer.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "reader/bus/bus_frame.h"

namespace mdf_tools {

using namespace mdf_reader;

/// What the frames of a channel group have in common.
struct BusGroupKind {
  std::string bus;
  std::uint8_t channel = 0;  ///< the bus's number
  BusFrame::Kind kind = BusFrame::Kind::data;
  bool is_fd = false;

  bool holds(const BusFrame& frame) const {
    return kind == frame.kind && is_fd == frame.is_fd && bus == frame.bus;
  }
};

/// The channel group of the frames of one bus that are of one kind: CAN_DataFrame, CAN_RemoteFrame
/// or CAN_ErrorFrame, of CAN or of CAN FD. The 8 bytes of a classic frame stand in its record,
/// which takes less than where they are otherwise would; those of CAN FD, mostly fewer than 64,
/// stand apart.
class BusGroup {
 public:
  /// Adds the group to a plan.
  BusGroup(mdf_writer::Plan& plan, const BusGroupKind& kind);

  /// Puts a frame that the group's kind holds into the group's record.
  /// @param number which one it is in its log, modulo 65536.
  void set(const BusFrame& frame, std::uint16_t number);

  mdf_writer::Group& group() { return group_; }

 private:
  using Bits = mdf_writer::BitsChannel<std::uint32_t>;

  Bits addBits(const char* member, std::uint32_t bits);
  void addIdentifier();
  void addErrorClass();
  void addData();

  mdf_writer::Group& group_;
  BusGroupKind kind_;
  std::string name_;  ///< of the structure
  mdf_writer::Channel<std::uint16_t> number_;
  mdf_writer::Channel<std::uint8_t> channel_;
  std::optional<Bits> id_, is_extended_;
  std::optional<Bits> error_class_, error_type_;
  Bits direction_;
  Bits is_fd_, bit_rate_switch_, error_state_, length_code_;
  mdf_writer::Channel<std::uint8_t> length_;
  std::optional<mdf_writer::FixedChannel> data_;
  std::optional<mdf_writer::VariableChannel> fd_data_;
};

/// When the measurement was started that has a log whose first frame came at this time, both in
/// nanoseconds since 1970: then, or in 1970 where the log's clock had not been set. As a file's
/// start, its first seconds would mean seconds, and later years.
std::int64_t startOfLog(std::int64_t first);

/// Finds out which channel groups the frames of a log need, one after another.
class BusGroupKinds {
 public:
  /// The index of the kind that holds a frame, a new one where none does; none for a frame of more
  /// buses than a file can number.
  std::optional<std::size_t> indexOf(const BusFrame& frame);

  const std::deque<BusGroupKind>& all() const { return kinds_; }
  std::size_t buses() const { return channels_.size(); }

 private:
  std::optional<std::uint8_t> channelOf(std::string_view bus);

  std::deque<BusGroupKind> kinds_;
  std::size_t last_ = 0;  ///< the kind of the frame before
  std::set<std::uint8_t> channels_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_BUS_GROUP_H_
