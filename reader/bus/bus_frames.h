#ifndef MDF_READER_BUS_BUS_FRAMES_H_
#define MDF_READER_BUS_BUS_FRAMES_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "../blocks/finding.h"
#include "../columns/query.h"
#include "../columns/tables.h"
#include "bus_frame.h"
#include "frame_table.h"

namespace mdf_reader {

/// What is said of a file where frames are wanted and none are.
inline constexpr const char* no_frames = "no channel group holds frames of CAN or LIN";

/// The frames of all channel groups of a file that hold such, in the order of their times; those of
/// one group stay in the order of its records. Memory grows with the number of groups alone.
class BusFrames {
 public:
  /// @param from,to limits of the times, in seconds since the measurement was started.
  BusFrames(InputFile& file, std::optional<double> from, std::optional<double> to,
            const FindingSink& report, const NoteSink& note);

  /// The next frame, which lasts until the next call; null after the last one, when notes say what
  /// is not in the list.
  const BusFrame* next();

  /// How many channel groups have frames.
  std::size_t groups() const { return groups_.size(); }

  const Header& header() const { return tables_.header(); }

 private:
  std::set<std::uint64_t> addGroups();
  void noteOtherEvents(const std::set<std::uint64_t>& known);
  void noteLeftOut();
  bool isInRange(const BusFrame& frame) const;
  bool goOn(std::size_t group);
  void push(std::size_t group);
  bool isLater(std::size_t left, std::size_t right) const;

  std::optional<double> from_;
  std::optional<double> to_;
  NoteSink note_;
  Query query_;
  Tables tables_;
  std::vector<std::unique_ptr<FrameTable>> groups_;
  std::vector<std::size_t> heap_;  ///< of groups with a frame to come, the earliest one's first
  bool has_begun_ = false;
  std::optional<std::size_t> last_;  ///< the group of the frame that was given
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_BUS_FRAMES_H_
