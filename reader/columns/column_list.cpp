#include "column_list.h"

#include <algorithm>
#include <cstdlib>

#include "../model/array_elements.h"
#include "../model/channel_names.h"
#include "../values/text_encoding.h"
#include "unique_names.h"

namespace mdf_reader {

namespace {

constexpr std::size_t longest_name = 1024;
constexpr std::uint64_t most_elements = most_array_elements;

/// The end of a long text, from a character on.
std::string shortened(std::string text) {
  if (text.size() > longest_name) {
    text = fromUtf8(text.substr(text.size() - longest_name));
  }
  return text;
}

/// "[1][0]" for an element counted from 0 on. The last index counts fastest, or the first one in
/// arrays stored by columns.
std::string indicesOf(const ArrayShape& array, std::uint64_t element) {
  const std::size_t count = array.dimensions.size();
  std::vector<std::uint64_t> indices(count);
  for (std::size_t k = 0; k < count; ++k) {
    const std::size_t at = array.is_column_oriented ? k : count - 1 - k;
    indices[at] = element % array.dimensions[at];
    element /= array.dimensions[at];
  }
  std::string text;
  for (const std::uint64_t index : indices) {
    text += '[' + std::to_string(index) + ']';
  }
  return text;
}

/// Where a channel stands: in structures, and in elements of arrays.
struct Place {
  StructureName plain;  ///< without the indices of elements
  std::string name;     ///< the path with them
  std::int64_t byte_shift = 0;
  std::uint64_t invalidation_shift = 0;  ///< bits

  Place member(const std::string& own_name) const {
    const std::string part(memberPart(own_name, plain));
    const auto in = [&](const std::string& around) {
      return shortened(around.empty() ? own_name : around + '.' + part);
    };
    return {{in(plain.path), part}, in(name), byte_shift, invalidation_shift};
  }
};

/// A range of a group's channels. Those at the least depth are members of one structure, or of
/// none.
struct Members {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t depth = 0;
};

/// Adds the columns of one channel group.
class Planner {
 public:
  Planner(const ChannelGroup& group, const FindingSink& report, const std::string& taken)
      : group_(group), report_(report) {
    names_.unique(taken);
  }

  std::vector<ColumnPlan> plan() {
    addMembers({0, group_.channels.size(), 0}, {});
    return std::move(columns_);
  }

 private:
  void addMembers(const Members& members, const Place& around);
  void addArray(const Channel& channel, const Members& members, const Place& place);
  bool fits(const Channel& channel, std::uint64_t members) const;
  std::uint64_t countOf(const ArrayShape& array) const;
  std::vector<Place> elementsOf(const ArrayShape& array, const std::vector<Place>& places) const;
  void add(const Channel& channel, const Place& place);
  bool hasRoom();

  const ChannelGroup& group_;
  const FindingSink& report_;
  std::vector<ColumnPlan> columns_;
  std::uint64_t elements_ = 0;  ///< of arrays, and members of each, visited so far
  std::size_t arrays_around_ = 0;
  std::size_t others_ = 0;  ///< columns outside arrays
  bool is_full_ = false;
  UniqueNames names_;
};

void Planner::addMembers(const Members& members, const Place& around) {
  std::vector<Place> parents;
  for (std::size_t i = members.begin; i < members.end && !is_full_; ++i) {
    const Channel& channel = group_.channels[i];
    parents.resize(std::min(parents.size(), channel.depth - members.depth));
    const Place place = (parents.empty() ? around : parents.back()).member(ownNameOf(channel));
    if (!channel.array.dimensions.empty()) {
      Members its{i + 1, i + 1, channel.depth + 1};
      while (its.end < members.end && group_.channels[its.end].depth > channel.depth) {
        ++its.end;
      }
      addArray(channel, its, place);
      i = its.end - 1;
    } else if (channel.is_structure) {
      parents.push_back(place);
    } else if (arrays_around_ > 0 || hasRoom()) {
      add(channel, place);
    }
  }
}

/// Whether there may be one more column outside arrays. The limit is eight channels for each bit of
/// the record, and 256 more.
bool Planner::hasRoom() {
  if (others_ < 256 + 64 * group_.recordBytes()) {
    ++others_;
    return true;
  }
  is_full_ = true;
  report_({Code::work_limited, group_.offset,
           "expected no more channels than records of " + std::to_string(group_.recordBytes()) +
               " bytes can hold, found " + std::to_string(group_.channels.size())});
  return false;
}

/// How many elements of one array are in a record; too many are just that.
std::uint64_t Planner::countOf(const ArrayShape& array) const {
  std::uint64_t count = 1;
  for (const std::uint64_t dimension : array.dimensions) {
    count = std::min(count * std::min(dimension, most_elements + 1), most_elements + 1);
  }
  return array.in_records ? count : 1;
}

/// Whether the elements of an array fit in a record, which limits their number, and in a table.
bool Planner::fits(const Channel& channel, std::uint64_t members) const {
  std::size_t dimensions = 0;
  std::uint64_t all = std::max<std::uint64_t>(members, 1);
  const auto fits_one = [&](const ArrayShape& array) {
    const std::uint64_t count = countOf(array);
    const auto width = static_cast<std::uint64_t>(std::abs(array.byte_step));
    dimensions += array.dimensions.size();
    all *= count;
    return count <= most_elements && all <= most_elements - elements_ &&
           dimensions <= most_array_dimensions &&
           (count <= 1 || (width > 0 && (count - 1) * width <= group_.data_bytes));
  };
  const auto& inner = channel.array.inner;
  return members <= most_elements && arrays_around_ < most_array_dimensions &&
         fits_one(channel.array) &&
         std::all_of(inner.begin(), inner.end(),
                     [&](const ArrayShape& each) { return each.in_records && fits_one(each); });
}

/// The elements of an array in each of several places.
std::vector<Place> Planner::elementsOf(const ArrayShape& array,
                                       const std::vector<Place>& places) const {
  std::vector<Place> elements;
  const std::uint64_t count = countOf(array);
  for (const Place& place : places) {
    for (std::uint64_t i = 0; i < count; ++i) {
      Place element = place;
      element.name += indicesOf(array, array.in_records ? i : group_.element.value_or(0));
      element.byte_shift += static_cast<std::int64_t>(i) * array.byte_step;
      element.invalidation_shift += i * array.invalidation_step;
      elements.push_back(std::move(element));
    }
  }
  return elements;
}

/// Problems of arrays whose elements have records of their own were reported when these were looked
/// for.
void Planner::addArray(const Channel& channel, const Members& members, const Place& place) {
  if (!channel.array.in_records && !group_.element) {
    return;
  }
  if (!fits(channel, members.end - members.begin)) {
    report_({Code::channel_outside_record, channel.offset,
             "expected the array to fit into records of " + std::to_string(group_.data_bytes) +
                 " bytes and " + std::to_string(most_elements) + " columns, found it larger"});
    return;
  }
  std::vector<Place> elements = elementsOf(channel.array, {place});
  for (const ArrayShape& inner : channel.array.inner) {
    elements = elementsOf(inner, elements);
  }
  elements_ += elements.size() * std::max<std::uint64_t>(members.end - members.begin, 1);
  ++arrays_around_;
  for (const Place& element : elements) {
    if (channel.is_structure) {
      addMembers(members, element);
    } else {
      add(channel, element);
    }
  }
  --arrays_around_;
}

void Planner::add(const Channel& channel, const Place& place) {
  columns_.push_back({&channel, names_.unique(place.name), ownNameOf(channel), place.plain.path,
                      place.byte_shift, place.invalidation_shift});
}

}  // namespace

std::string ownNameOf(const Channel& channel) {
  std::string own = fromUtf8(channel.name.substr(0, longest_name));
  return own.empty() ? "unnamed" : own;
}

std::vector<ColumnPlan> columnsOf(const ChannelGroup& group, const FindingSink& report,
                                  const std::string& taken) {
  return Planner(group, report, taken).plan();
}

}  // namespace mdf_reader
