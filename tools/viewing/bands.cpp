#include "bands.h"

#include <algorithm>

namespace mdf_tools {

std::uint32_t Bands::codeOf(std::string_view text) {
  const std::string shown(text.substr(0, longest_text));
  const auto known = codes_.find(shown);
  if (known != codes_.end()) {
    return known->second;
  }
  if (texts_.size() == most_texts) {
    return several;
  }
  const auto code = static_cast<std::uint32_t>(texts_.size());
  codes_.emplace(shown, code);
  texts_.push_back(shown);
  text_bytes_ += 2 * shown.size();
  return code;
}

Bands Bands::withoutRuns() const {
  Bands bands = *this;
  bands.runs_.clear();
  return bands;
}

void Bands::add(double time, std::uint32_t code) {
  if (!runs_.empty() && (runs_.back().code == code || runs_.size() > most_runs)) {
    return;
  }
  runs_.push_back({time, runs_.size() == most_runs ? several : code});
}

std::size_t Bands::indexAt(double time) const {
  const auto next = std::upper_bound(runs_.begin(), runs_.end(), time,
                                     [](double at, const Run& run) { return at < run.time; });
  const auto index = static_cast<std::size_t>(next - runs_.begin());
  return index == 0 ? 0 : index - 1;
}

std::uint32_t Bands::at(double time) const {
  const bool is_there = !runs_.empty() && runs_.front().time <= time;
  return is_there ? runs_[indexAt(time)].code : no_text;
}

std::vector<Bands::Run> Bands::runs(double from, double to, std::size_t columns) const {
  std::vector<Run> seen;
  const double width = (to - from) / static_cast<double>(columns);
  for (std::size_t i = indexAt(from); i < runs_.size() && runs_[i].time <= to;) {
    const double column_end = std::max(runs_[i].time, from) + width;
    const std::size_t next = std::max(indexAt(column_end), i);
    if (next > i + 1) {
      seen.push_back({runs_[i].time, several});
      i = next;
    } else {
      seen.push_back(runs_[i++]);
    }
  }
  return seen;
}

std::size_t Bands::size() const {
  constexpr std::size_t entry_bytes = 2 * sizeof(std::string) + 32;  // in both tables
  return sizeof(Bands) + runs_.capacity() * sizeof(Run) + texts_.size() * entry_bytes + text_bytes_;
}

}  // namespace mdf_tools
