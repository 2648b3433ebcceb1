#include "series_store.h"

#include <algorithm>
#include <numeric>

namespace mdf_tools {

std::shared_ptr<Series> SeriesStore::find(const SeriesKey& key) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.key == key; });
  if (found == entries_.end()) {
    return nullptr;
  }
  entries_.splice(entries_.begin(), entries_, found);
  return found->series;
}

void SeriesStore::add(const SeriesKey& key, const std::shared_ptr<Series>& series) {
  const std::lock_guard<std::mutex> lock(mutex_);
  entries_.push_front({key, series});
  std::size_t all = sizeOfAll();
  while (all > most_ && entries_.size() > 1) {
    all -= entries_.back().series->size();
    entries_.pop_back();
  }
}

std::shared_ptr<Series> SeriesStore::get(const SeriesKey& key,
                                         const std::function<std::shared_ptr<Series>()>& build) {
  std::shared_ptr<Series> series = find(key);
  if (series == nullptr) {
    series = build();
    add(key, series);
  }
  return series;
}

void SeriesStore::forget(std::size_t file) {
  const std::lock_guard<std::mutex> lock(mutex_);
  entries_.remove_if([&](const Entry& entry) { return entry.key.file == file; });
}

std::size_t SeriesStore::sizeOfAll() const {
  return std::accumulate(
      entries_.begin(), entries_.end(), std::size_t{0},
      [](std::size_t sum, const Entry& entry) { return sum + entry.series->size(); });
}

std::size_t SeriesStore::size() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return sizeOfAll();
}

}  // namespace mdf_tools
