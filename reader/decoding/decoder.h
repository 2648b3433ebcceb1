#ifndef MDF_READER_DECODING_DECODER_H_
#define MDF_READER_DECODING_DECODER_H_

#include <mdf_writer/mdf_writer.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "../bus/bus_frame.h"
#include "message_group.h"
#include "message_lookup.h"

namespace mdf_reader {

/// Frames with one identifier on one bus.
struct IdFrames {
  std::string_view bus;  ///< lasts as long as the decoder
  std::uint32_t id = 0;
  bool is_extended = false;
  std::uint64_t frames = 0;
  std::size_t least_bytes = 0;  ///< of data, in the shortest frame
  FoundMessage found;
};

/// Turns frames into records of their messages. All frames are counted first, so that it is known
/// which groups there are; then they are recorded.
class Decoder {
 public:
  /// @param lookup must last as long as the decoder.
  explicit Decoder(const MessageLookup& lookup) : lookup_(lookup) {}
  ~Decoder() = default;
  Decoder(const Decoder&) = delete;  // names of buses point into it
  Decoder& operator=(const Decoder&) = delete;

  static constexpr std::uint32_t none = UINT32_MAX;

  /// Counts a frame, and returns the number of its identifier; none for a frame without a message.
  std::uint32_t count(const BusFrame& frame);

  /// Adds a group for each message and bus to a plan, in the order of their first frames.
  void plan(mdf_writer::Plan& plan);

  /// The number of the identifier of a frame that was counted; none as above.
  std::uint32_t find(const BusFrame& frame);

  /// Appends the record of a frame.
  /// @param id the number of its identifier.
  /// @return false when the recording takes no more.
  bool record(std::uint32_t id, std::string_view data, double time,
              mdf_writer::Recording& recording);

  const std::vector<IdFrames>& ids() const { return ids_; }
  /// Frames of CAN with other identifiers than those, of which there are too many.
  std::uint64_t moreFrames() const { return more_frames_; }
  /// Frames of other buses, and those without data.
  std::uint64_t otherFrames() const { return other_frames_; }
  std::size_t messages() const { return groups_.size(); }

 private:
  struct Known {
    std::uint64_t key = UINT64_MAX;
    std::uint32_t index = 0;
  };

  static constexpr std::size_t most_ids = std::size_t{1} << 16U;

  std::uint64_t keyOf(const BusFrame& frame);
  std::uint32_t indexOf(std::uint64_t key);
  std::uint32_t add(const BusFrame& frame, std::uint64_t key);

  const MessageLookup& lookup_;
  std::map<std::string, std::uint64_t, std::less<>> buses_;
  std::pair<std::string_view, std::uint64_t> last_bus_;
  std::unordered_map<std::uint64_t, std::uint32_t> indices_;
  std::array<Known, 4096> recent_;
  std::vector<IdFrames> ids_;
  std::vector<MessageGroup*> groups_of_ids_;
  std::vector<std::unique_ptr<MessageGroup>> groups_;
  std::uint64_t more_frames_ = 0;
  std::uint64_t other_frames_ = 0;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DECODING_DECODER_H_
