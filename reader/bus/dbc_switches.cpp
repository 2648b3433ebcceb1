#include "dbc_switches.h"

#include <cstddef>
#include <string>
#include <utility>

namespace mdf_reader {

namespace {

class Switches {
 public:
  Switches(std::vector<BusSignal>& signals, std::vector<DbcSignalNotes>& notes, TextFaults& faults)
      : signals_(signals), notes_(notes), faults_(faults), states_(signals.size()) {}

  void resolve() {
    setSimple();
    for (std::size_t i = 0; i < signals_.size(); ++i) {
      follow(i);
    }
    removeLeftOut();
  }

 private:
  enum class State : std::uint8_t { unknown, on_path, there, left_out };

  void leaveOut(std::size_t signal, const char* sentence) {
    notes_[signal].is_left_out = true;
    faults_.add({notes_[signal].line, notes_[signal].column, sentence});
  }

  /// Which signals have a switch that its value alone is stated for. It is the message's only one
  /// that is always there.
  void setSimple() {
    std::size_t count = 0;
    std::size_t only = 0;
    for (std::size_t i = 0; i < signals_.size(); ++i) {
      if (signals_[i].is_switch && !isMultiplexed(i) && !notes_[i].is_left_out) {
        ++count;
        only = i;
      }
    }
    for (std::size_t i = 0; i < signals_.size(); ++i) {
      if (notes_[i].is_left_out || signals_[i].multiplexing || !notes_[i].switch_value) {
        continue;
      }
      const std::uint64_t value = *notes_[i].switch_value;
      if (count == 1) {
        signals_[i].multiplexing = {only, {{value, value}}};
      } else {
        leaveOut(i, count == 0 ? "expected a switch for the multiplexed signal, found none"
                               : "expected one switch for the multiplexed signal, found several");
      }
    }
  }

  bool isMultiplexed(std::size_t signal) const {
    return signals_[signal].multiplexing || notes_[signal].switch_value;
  }

  State stateOf(std::size_t signal) const {
    if (notes_[signal].is_left_out) {
      return State::left_out;
    }
    return signals_[signal].multiplexing ? states_[signal] : State::there;
  }

  /// From switch to switch until one is always there.
  void follow(std::size_t signal) {
    std::vector<std::size_t> path;
    while (stateOf(signal) == State::unknown) {
      states_[signal] = State::on_path;
      path.push_back(signal);
      signal = signals_[signal].multiplexing->by;
    }
    const State end = stateOf(signal);
    for (const std::size_t each : path) {
      if (end == State::there) {
        states_[each] = State::there;
      } else {
        leaveOut(each,
                 end == State::on_path
                     ? "expected switches that end at one that is always there, found a circle"
                     : "expected a switch that is understood, found one that is left out");
      }
    }
  }

  void removeLeftOut() {
    std::vector<std::size_t> places(signals_.size());
    std::size_t kept = 0;
    for (std::size_t i = 0; i < signals_.size(); ++i) {
      places[i] = kept;
      kept += notes_[i].is_left_out ? 0U : 1U;
    }
    std::vector<BusSignal> all = std::exchange(signals_, {});
    signals_.reserve(kept);
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (notes_[i].is_left_out) {
        continue;
      }
      if (all[i].multiplexing) {
        all[i].multiplexing->by = places[all[i].multiplexing->by];
      }
      signals_.push_back(std::move(all[i]));
    }
  }

  std::vector<BusSignal>& signals_;
  std::vector<DbcSignalNotes>& notes_;
  TextFaults& faults_;
  std::vector<State> states_;
};

}  // namespace

void resolveSwitches(std::vector<BusSignal>& signals, std::vector<DbcSignalNotes>& notes,
                     TextFaults& faults) {
  Switches(signals, notes, faults).resolve();
}

}  // namespace mdf_reader
