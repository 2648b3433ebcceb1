#include "cpu_source.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace mdf_tools {

using mdf_v4_10::UINT64;

namespace {

constexpr std::size_t idle = 3;
constexpr std::size_t iowait = 4;

/// The shortest span in jiffies that a CPU's utilisation is taken from: 10 % is the finest step.
constexpr UINT64 shortest_span = 10;

/// How often the counters are read, in seconds: a fraction of that span.
constexpr double reading_interval = 0.02;

/// A floating-point number, so that no counters make it overflow.
double sum(const CpuUsage::Counters& counters) {
  return std::accumulate(counters.begin(), counters.end(), 0.0);
}

struct CpuLine {
  std::string_view label;  ///< "cpu" for the whole machine, "cpu0" and so on for one CPU
  CpuUsage::Counters counters;
};

/// A kernel may give fewer counters, but it gives the first four.
std::optional<CpuLine> parseLine(std::string_view line) {
  CpuLine cpu{takeWord(line), {}};
  if (cpu.label.substr(0, 3) != "cpu") {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < cpu.counters.size(); ++i) {
    const std::optional<UINT64> counter = takeUnsigned(line);
    if (!counter) {
      return i > idle ? std::optional<CpuLine>(cpu) : std::nullopt;
    }
    cpu.counters[i] = *counter;
  }
  return cpu;
}

std::vector<CpuLine> parseLines(std::string_view text) {
  std::vector<CpuLine> lines;
  while (text.substr(0, 3) == "cpu") {
    if (const std::optional<CpuLine> line = parseLine(takeLine(text))) {
      lines.push_back(*line);
    }
  }
  return lines;
}

std::string signalName(std::string_view label) {
  return label == "cpu" ? "cpu_total" : namePart(label);
}

}  // namespace

CpuUsage::CpuUsage(const Counters& counters, UINT64 span)
    : reference_(counters), shortest_span_(span) {}

void CpuUsage::update(const Counters& counters) {
  if (sum(counters) < sum(reference_)) {
    reference_ = counters;
    return;
  }
  Counters passed{};
  for (std::size_t i = 0; i < counters.size(); ++i) {
    passed[i] = counters[i] > reference_[i] ? counters[i] - reference_[i] : 0;
  }
  const double span = sum(passed);
  if (span < static_cast<double>(shortest_span_)) {
    return;
  }
  const double idle_share =
      (static_cast<double>(passed[idle]) + static_cast<double>(passed[iowait])) / span;
  percent_ = static_cast<float>(std::clamp(100.0 * (1.0 - idle_share), 0.0, 100.0));
  reference_ = counters;
}

CpuSource::CpuSource(const std::filesystem::path& root)
    : file_(root / "proc/stat"), pace_(reading_interval) {
  const std::vector<CpuLine> lines = parseLines(file_.read());
  const UINT64 cpus = lines.size() > 1 ? lines.size() - 1 : 1;
  for (const CpuLine& line : lines) {
    const bool whole_machine = line.label == "cpu";
    add(float32Signal(signalName(line.label), "%"), bitsOf(0.0F));
    labels_.emplace_back(line.label);
    usages_.emplace_back(line.counters, whole_machine ? cpus * shortest_span : shortest_span);
  }
}

void CpuSource::sample(double seconds) {
  if (!pace_.isDue(seconds)) {
    return;
  }
  std::string_view text = file_.read();
  while (text.substr(0, 3) == "cpu") {
    const std::optional<CpuLine> line = parseLine(takeLine(text));
    const std::size_t index = line ? find(line->label) : labels_.size();
    if (index < labels_.size()) {
      usages_[index].update(line->counters);
      set(index, bitsOf(usages_[index].percent()));
    }
  }
}

/// The lines come in the same order each time, so the search starts after the last one found.
std::size_t CpuSource::find(std::string_view label) {
  for (std::size_t tried = 0; tried < labels_.size(); ++tried) {
    const std::size_t index = next_;
    next_ = (next_ + 1) % labels_.size();
    if (labels_[index] == label) {
      return index;
    }
  }
  return labels_.size();
}

}  // namespace mdf_tools
