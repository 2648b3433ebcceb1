#include "growing_places.h"

#include <algorithm>
#include <vector>

namespace mdf_writer {

namespace {

bool clearBytes(Storage& storage, std::uint64_t from, std::uint64_t end) {
  const std::vector<char> zeros(end > from ? static_cast<std::size_t>(end - from) : 0);
  return zeros.empty() || storage.write(from, zeros.data(), zeros.size()) == zeros.size();
}

}  // namespace

GrowingPlaces::Place* GrowingPlaces::find(std::uint64_t at) {
  for (Place& place : places_) {
    if (place.at == at && at != 0) {
      return &place;
    }
  }
  return nullptr;
}

std::uint64_t GrowingPlaces::take(Storage& storage, std::size_t bytes, std::uint64_t shown) {
  Place& place = places_[0].at != 0 && places_[0].at == shown ? places_[1] : places_[0];
  if (place.at == 0) {
    place.at = storage.allocate(bytes);
  }
  return place.at;
}

void GrowingPlaces::wrote(std::uint64_t at, std::size_t bytes) {
  if (Place* const place = find(at)) {
    place->written = std::max(place->written, bytes);
  }
}

bool GrowingPlaces::leaveTo(Storage& storage, std::uint64_t at, std::size_t bytes) {
  Place* const place = find(at);
  if (place == nullptr) {
    return true;
  }
  if (!clearBytes(storage, at + bytes, at + place->written)) {
    return false;
  }
  *place = {};
  return true;
}

bool GrowingPlaces::clear(Storage& storage, std::uint64_t used, std::size_t bytes) {
  return std::all_of(places_.begin(), places_.end(), [&](const Place& place) {
    const std::size_t kept = place.at == used ? bytes : 0;
    if (!clearBytes(storage, place.at + kept, place.at + place.written)) {
      return false;
    }
    if (kept == 0 && place.at != 0) {
      storage.giveBack(place.at);
    }
    return true;
  });
}

}  // namespace mdf_writer
