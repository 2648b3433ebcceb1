#ifndef MDF_READER_BUS_FRAME_TABLE_H_
#define MDF_READER_BUS_FRAME_TABLE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../columns/tables.h"
#include "bus_frame.h"

namespace mdf_reader {

/// The frames of one channel group in the order of its records. The group's columns are members of
/// a structure that is called as the kind of its frames.
class FrameTable {
 public:
  explicit FrameTable(std::unique_ptr<Table> table);
  ~FrameTable() = default;
  FrameTable(const FrameTable&) = delete;  // frames point into it
  FrameTable& operator=(const FrameTable&) = delete;

  /// A pattern that all channels match that it understands.
  static constexpr const char* channel_pattern = "[CL][AI]N_*.*";

  /// Whether its columns are called as those of frames are.
  bool holdsFrames() const { return holds_frames_; }
  /// Whether its columns tell when a frame came, and which.
  bool isUsable() const { return is_usable_; }
  const ChannelGroup& group() const { return table_->group(); }

  /// Goes on to the next frame; false after the last one.
  bool next();
  /// The frame; its texts last until the next call of next().
  const BusFrame& frame() const { return frame_; }

  /// Records that are no frames: their time or their identifier is invalid or none.
  std::uint64_t leftOut() const { return left_out_; }
  /// Frames whose time is before that of the one before.
  std::uint64_t backwards() const { return backwards_; }
  /// Frames with fewer bytes of data than they state.
  std::uint64_t shortened() const { return shortened_; }

 private:
  /// What the members of the structure mean.
  enum Role : std::size_t {
    channel,
    identifier,
    is_extended,
    direction,
    length_code,
    length,
    is_fd,
    bit_rate_switch,
    error_state,
    error_type,
    error_class,
    frame_number,
    role_count,
  };

  static constexpr std::uint64_t none = UINT64_MAX;

  void takeColumns();
  void readBatch();
  void nameBus();
  bool take();
  /// The member of the row; none where there is no number from 0 on.
  std::uint64_t number(Role role) const { return columns_[role] ? members_[role][row_] : none; }
  std::uint64_t numberOr0(Role role) const {
    const std::uint64_t stored = number(role);
    return stored == none ? 0 : stored;
  }
  bool isSet(Role role) const { return numberOr0(role) != 0; }
  BusFrame::Direction directionOf() const;
  void takeId();
  void takeBus();
  void takeData();
  void takeLogged();
  std::string_view bytes();

  std::unique_ptr<Table> table_;
  std::array<std::optional<std::size_t>, role_count> columns_{};
  std::array<std::vector<std::uint64_t>, role_count> members_;  ///< in the rows of the batch
  std::vector<std::size_t> data_columns_;  ///< one of bytes, or one for each byte
  std::string name_;                       ///< of the frames' kind
  std::string family_;                     ///< what the names of its buses begin with
  std::string bus_;
  bool is_one_bus_ = false;  ///< all frames are of the one that the group is named after
  std::uint64_t bus_number_ = none;
  std::string data_;
  bool holds_frames_ = false;
  bool is_usable_ = false;
  const Batch* batch_ = nullptr;
  std::vector<double> times_;             ///< of its rows
  const ColumnData* recorded_ = nullptr;  ///< its data, where that is one column of bytes
  std::size_t row_ = 0;
  BusFrame frame_;
  std::uint64_t left_out_ = 0;
  std::uint64_t backwards_ = 0;
  std::uint64_t shortened_ = 0;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_FRAME_TABLE_H_
