#ifndef MDF_READER_DECODING_MESSAGE_GROUP_H_
#define MDF_READER_DECODING_MESSAGE_GROUP_H_

#include <mdf_writer/mdf_writer.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../bus/bus_database.h"

namespace mdf_reader {

/// The frames of a message, as there are in a file.
struct MessageFrames {
  const BusMessage* message = nullptr;
  std::string group;  ///< what its channel group is called
  std::string bus;
  std::size_t least_bytes = 0;  ///< of data, in the shortest frame
  bool has_senders = false;     ///< the identifiers name different ones, as those of SAE J1939
};

/// A channel group of a message: a record has the time and the data of a frame, in which each
/// signal is a channel where it stands. Signals that are not in each frame have invalidation bits.
class MessageGroup {
 public:
  MessageGroup(mdf_writer::Plan& plan, const MessageFrames& frames);

  mdf_writer::Group& group() { return group_; }

  /// The record of a frame, which lasts until the next call.
  std::string_view record(std::uint32_t id, std::string_view data, double time);

 private:
  /// Bits of integers in bytes of either order.
  struct Bits {
    std::uint32_t first_byte;
    std::uint32_t end_byte;
    std::uint32_t lowest_bit;
    std::uint32_t count;
    bool is_big_endian;
  };
  /// A signal that no channel can show where it stands, and where a copy of it is.
  struct Moved {
    Bits bits;
    bool is_signed;
    std::size_t at;
  };
  /// A signal that may not be there.
  struct Optional {
    std::size_t signal;
    std::uint32_t end_byte;
    std::uint32_t invalidation_bit;
  };

  /// A signal that is there for some values of another one.
  struct Multiplexed {
    std::size_t signal;
    std::size_t by;
    Bits bits;  ///< of that
  };

  void addTime();
  void addSignal(std::size_t index, std::size_t least_bytes);
  void addMoved(const BusSignal& signal, mdf_writer::ChannelPlan& plan);
  void orderMultiplexing();
  void findMultiplexed(std::size_t bytes);
  void setInvalid(std::size_t bytes);
  void move();
  std::uint64_t valueOf(const Bits& bits) const;
  static Bits bitsOf(const BusSignal& signal);

  const BusMessage& message_;
  mdf_writer::Group& group_;
  std::size_t payload_bytes_;
  std::size_t sender_at_ = 0;  ///< of the sender's address; 0 for none
  std::size_t invalidation_at_ = 0;
  std::vector<Moved> moved_;
  std::vector<Optional> optional_;
  std::vector<Multiplexed> multiplexed_;  ///< each after the switch that it depends on
  std::vector<char> is_there_;            ///< of each signal, in the frame at hand
  std::string record_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DECODING_MESSAGE_GROUP_H_
