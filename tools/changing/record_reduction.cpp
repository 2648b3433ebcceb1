#include "record_reduction.h"

#include <cmath>
#include <utility>

#include "reader/blocks/block_fields.h"
#include "reader/bytes/work_budget.h"
#include "reader/columns/column_list.h"
#include "reader/values/raw_type.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_writer::ChannelPlan;
using mdf_writer::ReducedNumber;

namespace {

constexpr unsigned time_axis = 1;

/// Where a column's number is in the record, if it is one that can be condensed.
std::optional<ChannelPlan> planOf(const ChannelGroup& group, const ColumnPlan& column) {
  const Channel& channel = *column.channel;
  const RawType type{channel.data_type, channel.bit_offset, channel.bit_count};
  const std::int64_t begin = channel.byte_offset + column.byte_shift;
  const bool is_in_record =
      begin >= 0 && static_cast<std::uint64_t>(begin) + type.bytes() <= group.data_bytes;
  const bool is_integer = channel.data_type <= Channel::signed_be && channel.bit_count > 0;
  const bool is_real = type.isReal() && (channel.bit_count == 32 || channel.bit_count == 64);
  if (!is_in_record || channel.bit_count > 64 || channel.bit_offset > 7 ||
      !(is_integer || is_real)) {
    return std::nullopt;
  }
  ChannelPlan plan;
  plan.type = static_cast<ChannelPlan::DataType>(channel.data_type);
  plan.byte_offset = static_cast<std::uint32_t>(begin);
  plan.bit_offset = static_cast<std::uint8_t>(channel.bit_offset);
  plan.bits = channel.bit_count;
  if ((channel.flags & Channel::has_invalidation_bit) != 0) {
    const std::uint64_t bit = channel.invalidation_bit + column.invalidation_shift;
    if (bit / 8 >= group.invalidation_bytes) {
      return std::nullopt;
    }
    plan.invalidation_bit = static_cast<std::uint32_t>(bit);
  }
  return plan;
}

std::optional<ChannelPlan> masterPlan(const ChannelGroup& group) {
  const Channel* const master = group.masterChannel();
  const bool is_time =
      master != nullptr && master->type == Channel::master && master->sync_type == time_axis;
  ColumnPlan column;
  column.channel = master;
  return is_time ? planOf(group, column) : std::nullopt;
}

ColumnSource sourceOf(const ChannelGroup& group, Conversion* conversion) {
  ColumnSource source;
  source.group = &group;
  source.channel = group.masterChannel();
  source.conversion = conversion;
  return source;
}

}  // namespace

std::string RecordReduction::problemOf(InputFile& file, const ChannelGroup& group) {
  constexpr std::uint64_t longest = std::uint64_t{1} << 22U;
  if (!masterPlan(group)) {
    return "it has no time in its records";
  }
  const auto conversion = readFields(file, group.masterChannel()->conversion, "CC");
  if (conversion && conversion->number("cc_type") > Conversion::linear) {
    return "its time has a conversion that is not linear";
  }
  return group.recordBytes() > longest ? "its records are too long" : "";
}

RecordReduction::RecordReduction(const ChannelGroup& group, double seconds, Conversion* conversion,
                                 Sink sink)
    : seconds_(seconds), sink_(std::move(sink)), data_bytes_(group.data_bytes) {
  constexpr std::uint64_t most_times = 8;  // that channels share a byte
  if (conversion != nullptr) {
    master_offset_ = conversion->of(0, false).real;
    master_factor_ = conversion->of(1, false).real - master_offset_;
  }
  master_.emplace(*masterPlan(group), 0);
  WorkBudget bytes(group.data_bytes, most_times);
  const FindingSink silent = [](const Finding& /*finding*/) {};
  for (const ColumnPlan& column : columnsOf(group, silent)) {
    const auto plan = planOf(group, column);
    const unsigned type = column.channel->type;
    const bool is_value = type == Channel::fixed_length || type == Channel::synchronization;
    if (plan && is_value && bytes.take((plan->bit_offset + plan->bits + 7) / 8)) {
      numbers_.emplace_back(*plan, 0);
    }
  }
  result_.resize(3 * data_bytes_ + group.invalidation_bytes);
}

void RecordReduction::begin(std::string_view record) {
  const double time = interval_ * seconds_;
  const double raw = master_factor_ == 0 ? time : (time - master_offset_) / master_factor_;
  for (std::size_t i = 0; i < 3; ++i) {
    result_.replace(i * data_bytes_, data_bytes_, record, 0, data_bytes_);
    master_->set(&result_[i * data_bytes_], raw);
  }
  result_.replace(3 * data_bytes_, std::string::npos, record, data_bytes_, std::string::npos);
  for (ReducedNumber& number : numbers_) {
    number.begin();
  }
  is_open_ = true;
}

void RecordReduction::add(double time, std::string_view record) {
  const double interval = std::floor(time / seconds_);
  if (std::isfinite(interval) && (!is_open_ || interval != interval_)) {
    end();
    interval_ = interval;
    begin(record);
  }
  if (is_open_) {
    for (ReducedNumber& number : numbers_) {
      number.add(record.substr(0, data_bytes_), record.substr(data_bytes_));
    }
  }
}

void RecordReduction::end() {
  if (is_open_) {
    char* const mean = result_.data();
    for (const ReducedNumber& number : numbers_) {
      number.put(mean, mean + data_bytes_, mean + 2 * data_bytes_, mean + 3 * data_bytes_);
    }
    sink_(result_);
    ++count_;
    is_open_ = false;
  }
}

RecordTimes::RecordTimes(const ChannelGroup& group, Conversion* conversion)
    : silent_([](const Finding& /*finding*/) {}),
      master_("", sourceOf(group, conversion), silent_),
      values_(master_.head().type) {}

const std::vector<double>& RecordTimes::of(const RecordSpan& records) {
  values_.clear();
  master_.append(records, values_);
  times_ = values_.reals();
  return times_;
}

}  // namespace mdf_tools
