#include "network_source.h"

#include <algorithm>
#include <array>
#include <optional>

namespace mdf_tools {

using mdf_v4_10::UINT64;

namespace {

struct Counter {
  std::size_t column;
  const char* name;
  const char* unit;
};

/// The columns of /proc/net/dev that are recorded.
constexpr std::array<Counter, 4> counters = {
    {{0, "_rx_bytes", "B"}, {1, "_rx_packets", ""}, {8, "_tx_bytes", "B"}, {9, "_tx_packets", ""}}};

struct InterfaceLine {
  std::string_view name;
  std::array<UINT64, counters.size()> values;
};

/// A line is "name: numbers", except the two heading lines.
std::optional<InterfaceLine> parseLine(std::string_view line) {
  const std::size_t colon = line.rfind(':');
  if (colon == std::string_view::npos) {
    return std::nullopt;
  }
  std::string_view before = line.substr(0, colon);
  InterfaceLine parsed{takeWord(before), {}};
  if (parsed.name.empty()) {
    return std::nullopt;
  }
  line.remove_prefix(colon + 1);
  std::array<UINT64, counters.back().column + 1> columns{};
  for (UINT64& column : columns) {
    const std::optional<UINT64> number = takeUnsigned(line);
    if (!number) {
      return std::nullopt;
    }
    column = *number;
  }
  for (std::size_t i = 0; i < counters.size(); ++i) {
    parsed.values[i] = columns[counters[i].column];
  }
  return parsed;
}

template <class Visit>
void forEachInterface(std::string_view text, Visit visit) {
  while (!text.empty()) {
    if (const std::optional<InterfaceLine> line = parseLine(takeLine(text))) {
      visit(*line);
    }
  }
}

}  // namespace

NetworkSource::NetworkSource(const std::filesystem::path& root) : file_(root / "proc/net/dev") {
  forEachInterface(file_.read(), [this](const InterfaceLine& line) {
    interfaces_.emplace_back(line.name);
    for (std::size_t i = 0; i < counters.size(); ++i) {
      add(uint64Signal("net_" + namePart(line.name) + counters[i].name, counters[i].unit),
          line.values[i]);
    }
  });
}

void NetworkSource::sample(double /*seconds*/) {
  forEachInterface(file_.read(), [this](const InterfaceLine& line) {
    const auto found = std::find(interfaces_.begin(), interfaces_.end(), line.name);
    if (found != interfaces_.end()) {
      const auto first = static_cast<std::size_t>(found - interfaces_.begin()) * counters.size();
      for (std::size_t i = 0; i < counters.size(); ++i) {
        set(first + i, line.values[i]);
      }
    }
  });
}

}  // namespace mdf_tools
