#include "axis_spans.h"

#include <algorithm>
#include <cmath>

#include "../blocks/block_fields.h"
#include "../bytes/input_file.h"
#include "column.h"
#include "description/cnblock.h"

namespace mdf_reader {

using mdf_v4_10::CNBLOCK;

namespace {

bool isFinite(const std::optional<double>& number) { return number && std::isfinite(*number); }

}  // namespace

AxisSpans::AxisSpans(InputFile& file, const FindingSink& report)
    : file_(file),
      silent_([](const Finding& /*finding*/) {}),
      report_([this, report](const Finding& finding) {
        has_failed_ = true;
        report(finding);
      }),
      conversions_(file, report_) {}

void AxisSpans::readEnds(RecordFacts& facts,
                         const std::function<const Channel*(const ChannelGroup&)>& master_of) {
  const auto is_wanted = [&](const ChannelGroup& group) {
    const Channel* const master = master_of(group);
    return master != nullptr && !master->isVirtual() && !statedRange(*master);
  };
  facts.visitEnds(is_wanted, [&](const ChannelGroup& group, const RecordEnd& record) {
    const auto value = physical(group, *master_of(group), record);
    Ends& ends = ends_[group.offset];
    if (record.number == 0) {
      ends.first = value;
    }
    ends.last = value;
    ends.last_number = record.number;
  });
}

std::optional<AxisSpan> AxisSpans::of(std::uint64_t group, std::uint64_t records,
                                      const Channel& master) {
  if (records == 0) {
    return std::nullopt;
  }
  if (master.isVirtual()) {
    return spanOf({physical({}, master, {0, {}}), physical({}, master, {records - 1, {}}), 0},
                  AxisSpan::Source::numbers);
  }
  if (const auto range = statedRange(master)) {
    return range;
  }
  const auto ends = ends_.find(group);
  return ends == ends_.end() || ends->second.last_number != records - 1
             ? std::nullopt
             : spanOf(ends->second, AxisSpan::Source::records);
}

std::optional<AxisSpan> AxisSpans::spanOf(const Ends& ends, AxisSpan::Source source) {
  return isFinite(ends.first) && isFinite(ends.last)
             ? std::optional(AxisSpan{*ends.first, *ends.last, source})
             : std::nullopt;
}

/// The range of raw values that the channel's block states, if it is one.
std::optional<AxisSpan> AxisSpans::statedRange(const Channel& master) {
  const auto block = readFields(file_, master.offset, "CN");
  if (!block || !block->hasFlag("cn_flags", CNBLOCK::value_range_valid) ||
      !isUsable(master.conversion)) {
    return std::nullopt;
  }
  Conversion* const conversion = conversions_.at(master.conversion);
  const auto end = [&](std::string_view field) {
    double number = block->real(field);
    if (conversion != nullptr) {
      conversion->convert(&number, 1, false);
    }
    return std::optional(number);
  };
  const auto least = end("cn_val_range_min");
  const auto greatest = end("cn_val_range_max");
  if (!isFinite(least) || !isFinite(greatest) || *least == *greatest) {
    return std::nullopt;
  }
  return AxisSpan{std::min(*least, *greatest), std::max(*least, *greatest),
                  AxisSpan::Source::range};
}

std::optional<double> AxisSpans::physical(const ChannelGroup& group, const Channel& master,
                                          const RecordEnd& record) {
  const bool lacks_invalidation = record.bytes.size() < group.recordBytes() &&
                                  (master.flags & Channel::has_invalidation_bit) != 0;
  if (lacks_invalidation || !isUsable(master.conversion)) {
    return std::nullopt;
  }
  ColumnSource source;
  source.group = &group;
  source.channel = &master;
  source.conversion = conversions_.at(master.conversion);
  Column column("", std::move(source), silent_);
  ColumnData value(column.head().type);
  column.append(oneRecord(record.bytes, record.number), value);
  return value.isValid(0) && isNumber(value.type()) ? std::optional(value.real(0)) : std::nullopt;
}

/// Whether a conversion makes numbers by itself and can be read: else values would stay raw. One
/// that changes no value is null, too.
bool AxisSpans::isUsable(std::uint64_t conversion) {
  if (conversion == 0) {
    return true;
  }
  const auto block = readFields(file_, conversion, "CC");
  const std::uint64_t type = block ? block->number("cc_type") : UINT64_MAX;
  return type == Conversion::identity || (type <= Conversion::range_to_value &&
                                          (conversions_.at(conversion) != nullptr || !has_failed_));
}

}  // namespace mdf_reader
