#include "event_marks.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <unordered_map>

#include "fileblocks/evblock.h"
#include "reader/summary/names.h"
#include "reader/values/text_encoding.h"

namespace mdf_tools {

namespace {

using mdf_v4_10::EVBLOCK;

bool hasPosition(const Event& event) {
  constexpr double most = 1e300;
  return std::abs(event.position()) <= most;
}

std::string nameOf(const Event& event) {
  constexpr std::size_t longest = 200;
  return event.name.empty() ? eventTypeName(event.type) : fromUtf8(event.name.substr(0, longest));
}

/// A name with its pole.
struct Name {
  double pole;
  double begin;
  double end;
  Flag flag;

  bool isAcross(double x) const { return begin < x && x < end; }
};

bool areInTheWay(const Name& a, const Name& b) {
  if (a.flag.row == b.flag.row) {
    return a.begin < b.end && b.begin < a.end;
  }
  return a.flag.row < b.flag.row ? a.isAcross(b.pole) : b.isAcross(a.pole);
}

/// The order in which poles become longer from one to the next: with names on their left from left
/// to right, and then the others from right to left.
std::vector<std::size_t> orderOf(const std::vector<Name>& names) {
  std::vector<std::size_t> order(names.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    const Name& first = names[a];
    const Name& second = names[b];
    if (first.flag.is_left_of_pole != second.flag.is_left_of_pole) {
      return first.flag.is_left_of_pole;
    }
    return first.flag.is_left_of_pole ? first.pole < second.pole : first.pole > second.pole;
  });
  return order;
}

}  // namespace

std::vector<EventMark> marksOf(const std::vector<Event>& events, const std::string& prefix) {
  std::unordered_map<std::uint64_t, std::size_t> begins;  // of ranges, by their offsets
  std::vector<EventMark> marks;
  for (const Event& event : events) {
    if (hasPosition(event) && event.range_type != EVBLOCK::EV_RANGETYPE_END) {
      const bool is_range = event.range_type == EVBLOCK::EV_RANGETYPE_BEGIN;
      const double to = is_range ? std::numeric_limits<double>::infinity() : event.position();
      if (is_range) {
        begins[event.offset] = marks.size();
      }
      marks.push_back({prefix + nameOf(event), event.sync_type, event.position(), to});
    }
  }
  for (const Event& event : events) {
    if (hasPosition(event) && event.range_type == EVBLOCK::EV_RANGETYPE_END) {
      const auto begin = begins.find(event.range_begin);
      if (begin != begins.end()) {
        marks[begin->second].to = event.position();
      } else {
        marks.push_back(
            {prefix + nameOf(event), event.sync_type, event.position(), event.position()});
      }
    }
  }
  return marks;
}

std::vector<std::optional<Flag>> placeFlags(const std::vector<double>& poles,
                                            const std::vector<double>& widths, double right,
                                            std::size_t most_rows) {
  std::vector<Name> names(poles.size());
  for (std::size_t i = 0; i < poles.size(); ++i) {
    const bool is_left = poles[i] + widths[i] > right && widths[i] <= poles[i];
    const double begin = is_left ? poles[i] - widths[i] : poles[i];
    names[i] = {poles[i], begin, begin + widths[i], {0, is_left}};
  }
  std::vector<std::optional<Flag>> flags(poles.size());
  std::vector<Name> placed;
  for (const std::size_t i : orderOf(names)) {
    Name& name = names[i];
    const auto isInTheWay = [&](const Name& other) { return areInTheWay(name, other); };
    while (name.flag.row < most_rows && std::any_of(placed.begin(), placed.end(), isInTheWay)) {
      ++name.flag.row;
    }
    if (name.flag.row < most_rows) {
      placed.push_back(name);
      flags[i] = name.flag;
    }
  }
  return flags;
}

}  // namespace mdf_tools
