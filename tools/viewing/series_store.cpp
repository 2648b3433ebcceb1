#include "series_store.h"

#include <algorithm>
#include <numeric>

namespace mdf_tools {

std::shared_ptr<KeptSeries> SeriesStore::find(const SeriesKey& key) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.key == key; });
  if (found == entries_.end()) {
    return nullptr;
  }
  entries_.splice(entries_.begin(), entries_, found);
  return found->series;
}

void SeriesStore::add(const SeriesKey& key, const std::shared_ptr<KeptSeries>& series) {
  const std::lock_guard<std::mutex> lock(mutex_);
  entries_.push_front({key, series});
  std::size_t all = sizeOfAll();
  while (all > most_ && entries_.size() > 1) {
    all -= entries_.back().series->series.size();
    entries_.pop_back();
  }
}

void SeriesStore::forget(const SeriesKey& key) {
  const std::lock_guard<std::mutex> lock(mutex_);
  entries_.remove_if([&](const Entry& entry) { return entry.key == key; });
}

void SeriesStore::forget(std::size_t file) {
  const std::lock_guard<std::mutex> lock(mutex_);
  entries_.remove_if([&](const Entry& entry) { return entry.key.file == file; });
}

std::size_t SeriesStore::sizeOfAll() const {
  return std::accumulate(
      entries_.begin(), entries_.end(), std::size_t{0},
      [](std::size_t sum, const Entry& entry) { return sum + entry.series->series.size(); });
}

std::size_t SeriesStore::size() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return sizeOfAll();
}

}  // namespace mdf_tools
