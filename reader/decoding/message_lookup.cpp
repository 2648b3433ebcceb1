#include "message_lookup.h"

#include "../bus/bus_frame.h"

namespace mdf_reader {

MessageLookup::MessageLookup(const std::vector<NamedDatabase>& databases, bool is_j1939) {
  for (const NamedDatabase& each : databases) {
    Table& table = tables_.emplace_back();
    table.from = &each;
    for (const BusMessage& message : each.database.messages) {
      if (message.signals.empty()) {
        continue;
      }
      if (message.is_extended && (is_j1939 || message.is_j1939)) {
        table.parameter_groups.try_emplace(parameterGroupOf(message.id), &message);
      } else {
        (message.is_extended ? table.extended : table.standard).try_emplace(message.id, &message);
      }
    }
  }
}

FoundMessage MessageLookup::find(std::string_view bus, std::uint32_t id, bool is_extended) const {
  for (const Table& table : tables_) {
    if (!table.from->bus.empty() && !isBus(table.from->bus, bus)) {
      continue;
    }
    const auto& exact = is_extended ? table.extended : table.standard;
    const auto found = exact.find(id);
    if (found != exact.end()) {
      return {found->second, false};
    }
    const auto group = table.parameter_groups.find(parameterGroupOf(id));
    if (is_extended && group != table.parameter_groups.end()) {
      return {group->second, true};
    }
  }
  return {};
}

std::uint32_t parameterGroupOf(std::uint32_t id) {
  constexpr std::uint32_t first_broadcast = 240;
  const std::uint32_t group = (id >> 8U) & 0x3FFFFU;
  return ((group >> 8U) & 0xFFU) >= first_broadcast ? group : group & 0x3FF00U;
}

}  // namespace mdf_reader
