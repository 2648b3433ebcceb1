#include "copy_contents.h"

#include <algorithm>
#include <array>

#include "copy_failure.h"
#include "framework/wire.h"
#include "group_facts.h"
#include "reader/model/group_choice.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::detail::storeLe;

namespace {

const FindingSink silent = [](const Finding& /*finding*/) {};

/// A number of up to 8 bytes in a record; bytes that are not there are 0.
std::uint64_t numberIn(std::string_view record, std::size_t at, std::size_t bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes; i-- > 0;) {
    const char byte = at + i < record.size() ? record[at + i] : '\0';
    number = number << 8U | static_cast<unsigned char>(byte);
  }
  return number;
}

std::string nothingChosen(const CopyOptions& options) {
  if (options.channels.empty()) {
    return "no channel group matches \"" + options.group + '"';
  }
  std::string sentence = "no channel matches";
  for (const std::string& pattern : options.channels) {
    sentence += " \"" + pattern + '"';
  }
  return sentence + (options.group.empty() ? "" : " in a channel group \"" + options.group + '"');
}

}  // namespace

std::string_view RecordCopy::shifted(std::string_view record) {
  if (shifts_.empty()) {
    return record;
  }
  shifted_ = record;
  for (const OffsetPlace& place : shifts_) {
    const std::uint64_t offset = numberIn(record, place.at, place.bytes);
    std::array<char, sizeof offset> bytes;
    storeLe(bytes.data(), offset - place.shift);
    shifted_.replace(place.at, place.bytes, bytes.data(), place.bytes);
  }
  return shifted_;
}

std::string_view RecordCopy::packed(std::string_view record) {
  packed_.clear();
  packing_->append(record, packed_);
  return packed_;
}

CopyContents::CopyContents(BlockCopy& blocks, const CopyOptions& options, const FindingSink& report,
                           const NoteSink& note)
    : blocks_(blocks),
      options_(options),
      report_(report),
      note_(note),
      description_(readDescription(blocks.file(), report)),
      data_file_(blocks.file()) {}

void CopyContents::choose() {
  if (options_.hasLimits()) {
    rows_.emplace(blocks_.file(), options_.limits, report_, note_);
  }
  if (!options_.group.empty() || !options_.channels.empty() || options_.drops_empty) {
    chooseContent();
  }
  if (rows_) {
    for (const DataGroup& data_group : dataGroups()) {
      chooseValues(data_group);
    }
    index_shift_.emplace(blocks_, *rows_, dataGroups(),
                         [this](const Channel& channel) { return !isDropped(channel); });
    blocks_.leaveOut("SR");
  }
}

/// Leaves out channel groups and channels that are not wanted, and what records have of them.
void CopyContents::chooseContent() {
  choice_.emplace(
      blocks_, dataGroups(),
      [this](const DataGroup& data_group, const ChannelGroup& group) {
        return isGroupWanted(data_group, group);
      },
      options_.channels, note_);
  if (choice_->isEmpty() && !(options_.group.empty() && options_.channels.empty())) {
    throw CopyFailure(nothingChosen(options_));
  }
  choice_->leaveOutOthers();
  for (const DataGroup& data_group : dataGroups()) {
    if (!options_.channels.empty()) {
      packRecords(data_group);
    }
  }
}

void CopyContents::packRecords(const DataGroup& data_group) {
  if (hasElementsElsewhere(data_group)) {
    if (choice_->has(data_group.groups.front())) {
      note_("data group " + std::to_string(data_group.index) +
            " keeps all channels: it has arrays whose elements have records of their own");
    }
    return;
  }
  for (const ChannelGroup& group : data_group.groups) {
    if (!group.holdsVariableLength() && choice_->has(group)) {
      RecordPacking packing(group, *choice_);
      if (!packing.isWhole()) {
        packing.tell(blocks_);
        packings_.emplace(group.offset, std::move(packing));
      }
    }
  }
}

/// A data group of elements' records stays whole.
bool CopyContents::isGroupWanted(const DataGroup& data_group, const ChannelGroup& group) {
  if (hasElementsElsewhere(data_group)) {
    return std::any_of(data_group.groups.begin(), data_group.groups.end(),
                       [&](const ChannelGroup& each) { return isChosen(each, options_.group); });
  }
  if (!isChosen(group, options_.group) || !options_.drops_empty) {
    return isChosen(group, options_.group);
  }
  if (rows_) {
    return !rows_->of(group.offset).empty();
  }
  return data_file_.isCountFinal(group)
             ? group.cycles > 0
             : Records(data_file_, data_group, silent).countOf(group).value_or(1) > 0;
}

std::uint64_t CopyContents::recordBytesOf(const ChannelGroup& group) const {
  const RecordPacking* const packing = packingOf(group.offset);
  return packing == nullptr ? group.recordBytes() : packing->recordBytes();
}

std::uint32_t CopyContents::invalidationBytesOf(const ChannelGroup& group) const {
  const RecordPacking* const packing = packingOf(group.offset);
  return packing == nullptr ? group.invalidation_bytes : packing->invalidationBytes();
}

RecordCopy CopyContents::changeOf(const ChannelGroup& group) {
  std::vector<OffsetPlace> shifts;
  for (OffsetPlace place : offsetsIn(group)) {
    place.shift = values_[place.target].shift();
    if (place.shift > 0) {
      shifts.push_back(place);
    }
  }
  return {std::move(shifts), packingOf(group.offset)};
}

std::vector<OffsetPlace> CopyContents::offsetsIn(const ChannelGroup& group) const {
  std::vector<OffsetPlace> places;
  for (const Channel& channel : group.channels) {
    if (channel.type == Channel::variable_length && channel.data != 0 && !isDropped(channel) &&
        hasOffsetInPlace(group, channel)) {
      places.push_back({channel.byte_offset, channel.bit_count / 8, channel.data, 0});
    }
  }
  return places;
}

void CopyContents::chooseValues(const DataGroup& data_group) {
  const bool has_elements = hasElementsElsewhere(data_group);
  Records records(data_file_, data_group, silent);
  for (const ChannelGroup& group : data_group.groups) {
    for (const Channel& channel : group.channels) {
      if (channel.type == Channel::variable_length && !isDropped(channel) &&
          (has_elements || !hasOffsetInPlace(group, channel))) {
        values_[channel.data].are_all = true;
      }
    }
    const std::vector<OffsetPlace> places = offsetsIn(group);
    if (has_elements || places.empty() || isDropped(group)) {
      continue;
    }
    forEachSpan(records, group, [&](const RecordSpan& span) {
      for (std::size_t i = 0; i < span.count; ++i) {
        for (const OffsetPlace& place : places) {
          const std::uint64_t offset = numberIn(span.at(i), place.at, place.bytes);
          Values& values = values_[place.target];
          values.first = std::min(values.first, offset);
          values.last = std::max(values.last, offset);
        }
      }
    });
  }
}

void CopyContents::forEachSpan(Records& records, const ChannelGroup& group,
                               const std::function<void(const RecordSpan&)>& visit) const {
  static const std::vector<Rows> all = {{0, UINT64_MAX}};
  const auto cursor = records.read(group);
  std::uint64_t number = 0;
  for (const Rows& rows : rows_ ? rows_->of(group.offset) : all) {
    cursor->skip(rows.begin - number);
    number = rows.begin;
    while (number < rows.end) {
      const std::uint64_t most = std::min<std::uint64_t>(rows.end - number, SIZE_MAX);
      const RecordSpan span = cursor->next(static_cast<std::size_t>(most));
      if (span.count == 0) {
        return;
      }
      visit(span);
      number += span.count;
    }
  }
}

std::uint64_t CopyContents::endOfValues(DataLink link) {
  const Values& values = values_[link.to];
  if (!rows_ || values.are_all) {
    return UINT64_MAX;
  }
  const auto signal_data = signalDataAt(data_file_, link, silent);
  const auto last = signal_data->at(values.last);
  const std::uint64_t end = last ? values.last + 4 + last->size() : UINT64_MAX;
  return values.first == UINT64_MAX ? 0 : end;
}

}  // namespace mdf_tools
