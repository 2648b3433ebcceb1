#include "dbc_messages.h"

#include "dbc_switches.h"

namespace mdf_reader {

namespace {

void setKind(BusMessage& message, const DbcMessageNotes& notes, const DbcDefaults& defaults) {
  constexpr std::uint32_t most_without_fd = 8;
  const auto usual = defaults.is_j1939 ? DbcFrameKind::j1939 : defaults.kind;
  const auto kind = notes.kind ? notes.kind : usual;
  message.is_j1939 = message.is_extended && kind == DbcFrameKind::j1939;
  message.is_fd =
      kind == DbcFrameKind::can_fd || (!message.is_j1939 && message.length > most_without_fd);
}

void setCycleTime(BusMessage& message, const DbcMessageNotes& notes, const DbcDefaults& defaults) {
  constexpr double milliseconds = 1000;
  const double time = notes.cycle_time.value_or(defaults.cycle_time.value_or(0));
  if (time > 0) {
    message.cycle_time = time / milliseconds;
  }
}

}  // namespace

std::optional<std::size_t> DbcMessages::find(std::uint64_t id) const {
  const auto found = by_id_.find(id);
  return found == by_id_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> DbcMessages::findSignal(std::size_t message,
                                                   std::string_view name) const {
  const auto found = signals_by_name_.find({message, name});
  return found == signals_by_name_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> DbcMessages::add(std::uint64_t id, BusMessage message) {
  if (!by_id_.emplace(id, messages_.size()).second) {
    return std::nullopt;
  }
  messages_.push_back(std::move(message));
  notes_.emplace_back();
  return messages_.size() - 1;
}

bool DbcMessages::addSignal(std::size_t message, std::string_view name, BusSignal signal,
                            const DbcSignalNotes& notes) {
  std::vector<BusSignal>& signals = messages_[message].signals;
  if (!signals_by_name_.emplace(std::pair(message, name), signals.size()).second) {
    return false;
  }
  signals.push_back(std::move(signal));
  notes_[message].signals.push_back(notes);
  return true;
}

void DbcMessages::leaveOutSignal(std::size_t message, std::string_view name) {
  const auto [found, is_new] = signals_by_name_.emplace(std::pair(message, name), left_out);
  if (!is_new && found->second != left_out) {
    notes_[message].signals[found->second].is_left_out = true;
    found->second = left_out;
  }
}

bool DbcMessages::addSignalName(std::size_t message, std::size_t signal, std::string_view name) {
  return signals_by_name_.emplace(std::pair(message, name), signal).first->second == signal;
}

std::vector<BusMessage> DbcMessages::finish(const DbcDefaults& defaults, TextFaults& faults) && {
  for (std::size_t i = 0; i < messages_.size(); ++i) {
    setKind(messages_[i], notes_[i], defaults);
    setCycleTime(messages_[i], notes_[i], defaults);
    resolveSwitches(messages_[i].signals, notes_[i].signals, faults);
  }
  return std::move(messages_);
}

}  // namespace mdf_reader
