#include "element_groups.h"

#include <algorithm>
#include <utility>

#include "../bytes/input_file.h"
#include "../bytes/work_budget.h"
#include "array_elements.h"

namespace mdf_reader {

namespace {

/// Splits the channel groups of one data group.
class Splitter {
 public:
  Splitter(InputFile& file, const FindingSink& report)
      : file_(file),
        report_(report),
        budget_(most_array_elements + file.size() / sizeof(std::uint64_t)) {}

  /// Adds the data group and those of its elements to a list.
  void split(DataGroup&& data_group, std::vector<DataGroup>& result);

 private:
  const Channel* templateOf(const ChannelGroup& group);
  std::vector<ArrayElement> elementsOf(const DataGroup& data_group, const ChannelGroup& group);

  InputFile& file_;
  const FindingSink& report_;
  WorkBudget budget_;                            ///< for the columns of all their tables
  ArrayStorage storage_ = ArrayStorage::record;  ///< of the array that was found last
};

/// The same group for the records of one of its elements.
ChannelGroup groupOf(const ChannelGroup& first, std::size_t number, const ArrayElement& element,
                     ArrayStorage storage) {
  ChannelGroup group = first;
  group.element = number;
  group.cycles = element.cycles;
  group.record_id += storage == ArrayStorage::channel_group ? number : 0;
  return group;
}

/// The array that has its elements elsewhere; null for none, and for several, whose records could
/// not be told apart.
const Channel* Splitter::templateOf(const ChannelGroup& group) {
  const Channel* found = nullptr;
  for (const Channel& channel : group.channels) {
    if (channel.array.dimensions.empty() || channel.array.in_records) {
      continue;
    }
    if (found != nullptr) {
      report_({Code::array_unreadable, channel.offset,
               "expected at most one array in a channel group whose elements have records of their "
               "own, "
               "found another; all of them are left out"});
      return nullptr;
    }
    found = &channel;
  }
  return found;
}

std::vector<ArrayElement> Splitter::elementsOf(const DataGroup& data_group,
                                               const ChannelGroup& group) {
  const Channel* channel = templateOf(group);
  const auto array =
      channel == nullptr ? std::nullopt : readFields(file_, channel->array.offset, "CA");
  if (!array) {
    return {};
  }
  storage_ = arrayStorage(*array);
  ArrayElements read;
  if (storage_ == ArrayStorage::unknown) {
    read.problem =
        "expected a known array storage, found " + std::to_string(array->number("ca_storage"));
  } else if (storage_ == ArrayStorage::data_group && data_group.groups.size() > 1) {
    read.problem =
        "expected an array whose elements have data of their own in a data group with one channel "
        "group, found several";
  } else {
    const std::uint64_t columns = group.channels.size();
    read =
        readArrayElements(file_, *array, std::min(budget_.left() / columns, most_array_elements));
    budget_.spend(read.elements.size() * columns);
  }
  if (!read.problem.empty()) {
    report_({Code::array_unreadable, channel->offset, read.problem + "; the array is left out"});
  }
  return std::move(read.elements);
}

void Splitter::split(DataGroup&& data_group, std::vector<DataGroup>& result) {
  std::vector<ChannelGroup> groups;
  std::vector<DataGroup> following;
  for (ChannelGroup& group : data_group.groups) {
    const auto elements = elementsOf(data_group, group);
    groups.push_back(group);
    if (!elements.empty()) {
      groups.back().element = 0;
    }
    for (std::size_t i = 1; i < elements.size(); ++i) {
      ChannelGroup its_group = groupOf(group, i, elements[i], storage_);
      if (storage_ == ArrayStorage::channel_group) {
        groups.push_back(std::move(its_group));
      } else {
        following.push_back({data_group.offset,
                             data_group.index,
                             data_group.record_id_code,
                             elements[i].data,
                             data_group.comment,
                             {std::move(its_group)}});
      }
    }
  }
  data_group.groups = std::move(groups);
  result.push_back(std::move(data_group));
  for (DataGroup& each : following) {
    result.push_back(std::move(each));
  }
}

}  // namespace

std::vector<DataGroup> splitElements(InputFile& file, std::vector<DataGroup> data_groups,
                                     const FindingSink& report) {
  std::vector<DataGroup> result;
  Splitter splitter(file, report);
  for (DataGroup& data_group : data_groups) {
    splitter.split(std::move(data_group), result);
  }
  return result;
}

}  // namespace mdf_reader
