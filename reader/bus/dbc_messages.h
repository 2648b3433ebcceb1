#ifndef MDF_READER_BUS_DBC_MESSAGES_H_
#define MDF_READER_BUS_DBC_MESSAGES_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "bus_database.h"
#include "text_faults.h"

namespace mdf_reader {

/// The frames that a message comes in, as far as it matters.
enum class DbcFrameKind : std::uint8_t { can, can_fd, j1939 };

/// What a DBC says of a signal besides what becomes of it.
struct DbcSignalNotes {
  std::size_t line = 0;  ///< where it is named
  std::size_t column = 0;
  std::optional<std::uint64_t> switch_value;  ///< m5
  bool is_left_out = false;
};

struct DbcMessageNotes {
  std::optional<DbcFrameKind> kind;
  std::optional<double> cycle_time;     ///< in milliseconds
  std::vector<DbcSignalNotes> signals;  ///< as many as the message has
};

/// What holds for messages that say nothing else.
struct DbcDefaults {
  std::optional<DbcFrameKind> kind;
  std::optional<double> cycle_time;  ///< in milliseconds
  bool is_j1939 = false;             ///< the network is one of J1939
};

/// The messages of a DBC while it is read. What is left out because of a fault is known, too, so
/// that statements about it are no faults besides.
class DbcMessages {
 public:
  static constexpr std::size_t left_out = SIZE_MAX;

  /// The message with an identifier as the DBC has it; none where there is none.
  std::optional<std::size_t> find(std::uint64_t id) const;
  std::optional<std::size_t> findSignal(std::size_t message, std::string_view name) const;

  /// @returns which message it is; none when there is one with the identifier.
  std::optional<std::size_t> add(std::uint64_t id, BusMessage message);
  void leaveOut(std::uint64_t id) { by_id_.emplace(id, left_out); }

  /// @returns whether the message had no signal with this name.
  bool addSignal(std::size_t message, std::string_view name, BusSignal signal,
                 const DbcSignalNotes& notes);
  void leaveOutSignal(std::size_t message, std::string_view name);
  /// A second name, by which it is found, too.
  /// @returns whether no other signal of the message has it.
  bool addSignalName(std::size_t message, std::size_t signal, std::string_view name);

  BusMessage& message(std::size_t index) { return messages_[index]; }
  BusSignal& signal(std::size_t message, std::size_t index) {
    return messages_[message].signals[index];
  }
  DbcMessageNotes& notes(std::size_t message) { return notes_[message]; }

  /// The messages as they are meant. Signals whose switch is not known are reported and left out.
  std::vector<BusMessage> finish(const DbcDefaults& defaults, TextFaults& faults) &&;

 private:
  std::vector<BusMessage> messages_;
  std::vector<DbcMessageNotes> notes_;
  std::map<std::uint64_t, std::size_t> by_id_;
  std::map<std::pair<std::size_t, std::string_view>, std::size_t> signals_by_name_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_MESSAGES_H_
