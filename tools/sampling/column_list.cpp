#include "column_list.h"

#include <algorithm>
#include <cstdlib>
#include <unordered_map>
#include <unordered_set>

#include "reading/array_elements.h"
#include "text_encoding.h"

namespace mdf_tools {

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
/// arrays that lie by columns.
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

/// Makes each name different from the ones before.
class Names {
 public:
  std::string unique(const std::string& name) {
    if (taken_.insert(name).second) {
      return name;
    }
    std::size_t& number = numbers_.try_emplace(name, 1).first->second;
    std::string numbered;
    do {
      ++number;
      numbered = name + " (" + std::to_string(number) + ')';
    } while (!taken_.insert(numbered).second);
    return numbered;
  }

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, std::size_t> numbers_;
};

/// Adds the columns of one channel group.
class Planner {
 public:
  Planner(const ChannelGroup& group, const FindingSink& report, const std::string& taken)
      : group_(group), report_(report) {
    names_.unique(taken);
  }

  std::vector<ColumnPlan> plan();

 private:
  void addChannel(const ColumnPlan& plan);
  void addElements(const ColumnPlan& plan);
  bool areElementsInside(const Channel& channel, std::uint64_t count) const;
  void add(ColumnPlan plan, const std::string& name);

  const ChannelGroup& group_;
  const FindingSink& report_;
  std::vector<ColumnPlan> columns_;
  std::size_t elements_ = 0;  ///< of arrays among the columns
  Names names_;
};

std::vector<ColumnPlan> Planner::plan() {
  // What channels of a bit each would need, each stored eight times.
  const std::uint64_t most = 256 + 64 * group_.recordBytes();
  std::vector<std::string> parents;
  for (const Channel& channel : group_.channels) {
    parents.resize(std::min(parents.size(), channel.depth));
    std::string own = fromUtf8(channel.name.substr(0, longest_name));
    if (own.empty()) {
      own = "unnamed";
    }
    const std::string path = shortened(parents.empty() ? own : parents.back() + '.' + own);
    if (channel.is_structure) {
      parents.push_back(path);
    } else if (columns_.size() - elements_ < most) {
      addChannel({&channel, "", own, path, 0, 0});
    } else {
      report_({group_.offset, "expected no more channels than records of " +
                                  std::to_string(group_.recordBytes()) + " bytes can hold, found " +
                                  std::to_string(group_.channels.size())});
      break;
    }
  }
  return std::move(columns_);
}

/// What is not to be had of arrays with their elements elsewhere was told when these were looked
/// for.
void Planner::addChannel(const ColumnPlan& plan) {
  const ArrayShape& array = plan.channel->array;
  if (array.dimensions.empty()) {
    add(plan, plan.path);
  } else if (array.in_records) {
    addElements(plan);
  } else if (group_.element) {
    add(plan, plan.path + indicesOf(array, *group_.element));
  }
}

/// Whether the elements of an array find room in a record, which limits their number.
bool Planner::areElementsInside(const Channel& channel, std::uint64_t count) const {
  const std::int64_t step = channel.array.byte_step;
  const std::uint64_t width = static_cast<std::uint64_t>(std::abs(step));
  return count <= 1 || (step != 0 && (count - 1) * width <= group_.data_bytes);
}

/// How many elements an array has; too many are just that.
std::uint64_t countOf(const std::vector<std::uint64_t>& dimensions) {
  std::uint64_t count = 1;
  for (const std::uint64_t dimension : dimensions) {
    count = std::min(count * std::min(dimension, most_elements + 1), most_elements + 1);
  }
  return count;
}

void Planner::addElements(const ColumnPlan& plan) {
  const ArrayShape& array = plan.channel->array;
  const std::uint64_t count = countOf(array.dimensions);
  if (elements_ + count > most_elements || array.dimensions.size() > most_array_dimensions ||
      !areElementsInside(*plan.channel, count)) {
    report_({plan.channel->offset, "expected an array that fits into records of " +
                                       std::to_string(group_.data_bytes) + " bytes and " +
                                       std::to_string(most_elements) + " columns, found none"});
    return;
  }
  elements_ += static_cast<std::size_t>(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    ColumnPlan element = plan;
    element.byte_shift = static_cast<std::int64_t>(i) * array.byte_step;
    element.invalidation_shift = i * array.invalidation_step;
    add(std::move(element), plan.path + indicesOf(array, i));
  }
}

void Planner::add(ColumnPlan plan, const std::string& name) {
  plan.name = names_.unique(name);
  columns_.push_back(std::move(plan));
}

}  // namespace

std::vector<ColumnPlan> columnsOf(const ChannelGroup& group, const FindingSink& report,
                                  const std::string& taken) {
  return Planner(group, report, taken).plan();
}

}  // namespace mdf_tools
