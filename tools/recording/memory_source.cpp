#include "memory_source.h"

#include <algorithm>
#include <array>
#include <optional>

namespace mdf_tools {

using mdf_v4_10::UINT64;

namespace {

struct Entry {
  std::string_view key;
  const char* name;
};

constexpr std::array<Entry, 6> entries = {{{"MemTotal:", "mem_total"},
                                           {"MemFree:", "mem_free"},
                                           {"MemAvailable:", "mem_available"},
                                           {"Buffers:", "mem_buffers"},
                                           {"Cached:", "mem_cached"},
                                           {"SwapFree:", "swap_free"}}};

/// Calls visit(key, KiB) for each line that holds a number.
template <class Visit>
void forEachLine(std::string_view text, Visit visit) {
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    const std::string_view key = takeWord(line);
    if (const std::optional<UINT64> kibibytes = takeUnsigned(line)) {
      visit(key, *kibibytes);
    }
  }
}

}  // namespace

MemorySource::MemorySource(const std::filesystem::path& root) : file_(root / "proc/meminfo") {
  forEachLine(file_.read(), [this](std::string_view key, UINT64 kibibytes) {
    const auto* const entry = std::find_if(entries.begin(), entries.end(),
                                           [&](const Entry& one) { return one.key == key; });
    if (entry != entries.end()) {
      add(uint64Signal(entry->name, "KiB"), kibibytes);
      keys_.push_back(entry->key);
    }
  });
}

void MemorySource::sample(double /*seconds*/) {
  forEachLine(file_.read(), [this](std::string_view key, UINT64 kibibytes) {
    const auto found = std::find(keys_.begin(), keys_.end(), key);
    if (found != keys_.end()) {
      set(static_cast<std::size_t>(found - keys_.begin()), kibibytes);
    }
  });
}

}  // namespace mdf_tools
