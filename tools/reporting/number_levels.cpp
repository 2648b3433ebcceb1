#include "number_levels.h"

#include <algorithm>
#include <utility>

namespace mdf_tools {

namespace {

/// A member of each group, as numbers.
template <class Member>
std::vector<double> listOf(const std::vector<Extent>& groups, Member Extent::*member) {
  std::vector<double> list(groups.size());
  std::transform(groups.begin(), groups.end(), list.begin(),
                 [member](const Extent& group) { return static_cast<double>(group.*member); });
  return list;
}

void packGroups(const std::vector<Extent>& groups, std::vector<PackedNumbers>& packed) {
  for (double Extent::*const member :
       {&Extent::minimum, &Extent::maximum, &Extent::first, &Extent::last, &Extent::mean}) {
    packed.push_back(pack(listOf(groups, member)));
  }
  packed.push_back(packRounded(listOf(groups, &Extent::squares)));
  packed.push_back(pack(listOf(groups, &Extent::values)));
  packed.push_back(pack(listOf(groups, &Extent::gaps)));
}

}  // namespace

void NumberLevels::add(const std::vector<double>& times,
                       const std::vector<std::vector<double>>& numbers) {
  if (width_ > 1) {
    addGroups(times, numbers);
    return;
  }
  begins_.insert(begins_.end(), times.begin(), times.end());
  for (std::size_t i = 0; i < channels_.size(); ++i) {
    channels_[i].numbers.insert(channels_[i].numbers.end(), numbers[i].begin(), numbers[i].end());
  }
  records_ += times.size();
}

void NumberLevels::addGroups(const std::vector<double>& times,
                             const std::vector<std::vector<double>>& numbers) {
  for (std::size_t row = 0; row < times.size();) {
    const std::uint64_t in_group = records_ % width_;
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(width_ - in_group, times.size() - row));
    if (in_group == 0) {
      begins_.push_back(times[row]);
      ends_.emplace_back();
    }
    ends_.back() = times[row + count - 1];
    for (std::size_t i = 0; i < channels_.size(); ++i) {
      const Extent added = Extent::of(&numbers[i][row], count);
      std::vector<Extent>& groups = channels_[i].groups;
      if (in_group == 0) {
        groups.push_back(added);
      } else {
        groups.back().append(added);
      }
    }
    row += count;
    records_ += count;
  }
}

std::size_t NumberLevels::size() const {
  const std::size_t each = width_ == 1 ? sizeof(double) : sizeof(Extent);
  return begins_.size() * (2 * sizeof(double) + channels_.size() * each);
}

bool NumberLevels::canCoarsen() const {
  return begins_.size() >= (width_ == 1 ? first_width : 2) * least;
}

void NumberLevels::coarsen() {
  if (width_ == 1) {
    groupSamples();
  } else {
    joinGroups();
  }
}

void NumberLevels::groupSamples() {
  const std::vector<double> times = std::move(begins_);
  std::vector<std::vector<double>> numbers;
  for (Channel& channel : channels_) {
    numbers.push_back(std::move(channel.numbers));
    channel.numbers = {};
  }
  begins_ = {};
  records_ = 0;
  width_ = first_width;
  addGroups(times, numbers);
}

void NumberLevels::joinGroups() {
  const std::size_t count = begins_.size();
  const std::size_t joined = (count + 1) / 2;
  for (std::size_t i = 0; i < joined; ++i) {
    begins_[i] = begins_[2 * i];
    ends_[i] = ends_[std::min(2 * i + 1, count - 1)];
  }
  begins_.resize(joined);
  ends_.resize(joined);
  for (Channel& channel : channels_) {
    std::vector<Extent>& groups = channel.groups;
    for (std::size_t i = 0; i < joined; ++i) {
      Extent both = groups[2 * i];
      if (2 * i + 1 < count) {
        both.append(groups[2 * i + 1]);
      }
      groups[i] = both;
    }
    groups.resize(joined);
  }
  width_ *= 2;
}

std::vector<PackedNumbers> NumberLevels::pack() const {
  std::vector<PackedNumbers> packed{mdf_tools::pack(begins_)};
  if (width_ > 1) {
    packed.push_back(mdf_tools::pack(ends_));
  }
  for (const Channel& channel : channels_) {
    if (width_ > 1) {
      packGroups(channel.groups, packed);
    } else {
      packed.push_back(mdf_tools::pack(channel.numbers));
    }
  }
  return packed;
}

}  // namespace mdf_tools
