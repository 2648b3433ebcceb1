#include "finishing.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "framework/wire.h"
#include "mdf_v4_10.h"
#include "patching.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/identification.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/offset_set.h"
#include "reader/data/data_block.h"
#include "reader/data/data_file.h"
#include "reader/data/data_links.h"
#include "reader/data/data_stream.h"
#include "reader/data/record_format.h"
#include "reader/data/records.h"
#include "reader/model/description.h"
#include "reader/model/element_groups.h"
#include "record_search.h"
#include "writer/files/output.h"

namespace mdf_tools {

using namespace mdf_reader;
using namespace mdf_v4_10;
using mdf_v4_10::detail::hostSize;
using mdf_v4_10::detail::loadLe;
using mdf_v4_10::detail::storeLe;

namespace {

constexpr std::uint64_t length_place = 8;
constexpr std::uint64_t flags_place = 60;  // in the identification: two bytes each
constexpr std::string_view finished_word = "MDF     ";

/// What is done in which step: lengths and counts first, which make the file independent of where
/// it ends; then blocks after its end, and zeros where something was cut off in its middle; then
/// the links to those blocks. The file says last that it is finished.
enum Step : std::size_t { set_numbers, add_blocks, set_links, end_file, step_count };

std::uint64_t aligned(std::uint64_t offset) { return (offset + 7) / 8 * 8; }

std::uint64_t placeOfLink(std::uint64_t block, std::uint64_t index) {
  return block + RawBlock::header_size + RawBlock::link_size * index;
}

/// Where in the file a block has a field.
std::uint64_t placeOfField(const BlockFields& block, std::string_view name) {
  const auto& fields = block.type().fields;
  const auto field = std::find_if(fields.begin(), fields.end(),
                                  [&](const FieldLayout& each) { return each.name == name; });
  return block.fieldsAt() + field->offset;
}

/// Whether a block lists blocks of data, as files before version 4.2 do.
bool isBlockList(const RawBlock& block) { return isDataList(block) && block.letters() == "DL"; }

/// Where the last whole one of values ends, each with its length before it.
std::uint64_t endOfValues(DataStream& data) {
  constexpr std::size_t length_bytes = 4;
  std::uint64_t position = 0;
  while (true) {
    const std::string_view length = data.at(position, length_bytes);
    const std::uint64_t next =
        position + length_bytes +
        (length.size() < length_bytes ? 0 : loadLe<std::uint32_t>(length.data()));
    if (length.size() < length_bytes || !data.reaches(next)) {
      return position;
    }
    position = next;
  }
}

/// A place in the data of a list.
struct Place {
  std::uint64_t begin = 0;
  bool is_known = true;  ///< false after a zipped block that makes no sense
};

/// A block in a data list, and where in the data its own begins.
struct Entry {
  std::uint64_t link;
  Place place;
};

/// A data list without the links that lead nowhere, until it has its place.
struct NewList {
  std::uint64_t link_at;               ///< of the link to it, in the file
  std::optional<std::size_t> follows;  ///< or the new list that has that link
  std::string bytes;                   ///< "" for a list of nothing: the link becomes nil
  RawBlock replaced;
};

class Finisher {
 public:
  Finisher(InputFile& file, const FindingSink& report)
      : file_(file),
        report_(report),
        data_file_(file),
        blocks_(walkBlocks(file, nullptr).offsets()) {
    result_.steps.resize(step_count);
    result_.size = file.size();
  }

  Finishing finish();

 private:
  void finishDataGroup(const DataGroup& data_group);
  std::uint64_t linkTo(const DataGroup& data_group);
  std::uint64_t wholeBytes(const DataGroup& data_group, Records& records);
  void setCounts(const DataGroup& data_group, Records& records);
  void addKnown(const DataGroup& data_group, Records& records, std::uint64_t whole);
  void setCount(const ChannelGroup& group, std::optional<std::uint64_t> records);
  void setLength(const ChannelGroup& group, Records& records);
  void finishReductions(const ChannelGroup& group);
  void finishValues(const ChannelGroup& group);
  void finishData(std::uint64_t link_at, DataLink link, std::uint64_t keep);
  void finishLists(std::uint64_t link_at, const RawBlock& first, std::uint64_t keep);
  bool takeEntries(const RawBlock& list, Place& place, std::uint64_t keep,
                   std::vector<Entry>& entries);
  void setEntries(const RawBlock& list, const std::vector<Entry>& entries);
  std::string listOf(const RawBlock& list, const std::vector<Entry>& entries, std::uint64_t next);
  void finishBlock(const RawBlock& block, std::uint64_t bytes, std::uint64_t keep);
  std::uint64_t cutAfter(DataStream& data, std::uint64_t keep, bool is_record);
  void clear(std::uint64_t from, std::uint64_t end);
  void setNumber(std::uint64_t at, std::uint64_t number);
  void cutEnd();
  void placeLists();
  void clearOld(const RawBlock& list);
  void endFile();

  InputFile& file_;
  const FindingSink& report_;
  const FindingSink silent_ = [](const Finding& /*finding*/) {};
  DataFile data_file_;
  std::vector<std::uint64_t> blocks_;  ///< ascending
  Finishing result_;
  std::vector<NewList> new_lists_;
};

Finishing Finisher::finish() {
  const Description description = readDescription(file_, report_);
  for (const DataGroup& data_group : splitElements(file_, description.data_groups, report_)) {
    finishDataGroup(data_group);
    for (const ChannelGroup& group : data_group.groups) {
      if (group.element.value_or(0) == 0) {
        finishReductions(group);
        finishValues(group);
      }
    }
  }
  cutEnd();
  placeLists();
  endFile();
  return std::move(result_);
}

void Finisher::finishDataGroup(const DataGroup& data_group) {
  std::vector<Finding> findings;
  const FindingSink keep = [&](const Finding& finding) { findings.push_back(finding); };
  Records records(data_file_, data_group, keep);
  records.examine();
  const std::size_t cuts = result_.cuts.size();
  bool is_known = true;
  const std::uint64_t whole = wholeBytes(data_group, records);
  setCounts(data_group, records);
  finishData(linkTo(data_group), {data_group.offset, data_group.data}, whole);
  for (const Finding& finding : findings) {
    if (result_.cuts.size() == cuts || finding.offset != result_.cuts.back().offset) {
      report_(finding);
      is_known = false;
    }
  }
  if (is_known) {
    addKnown(data_group, records, whole);
  }
}

/// What need not be read again to check it.
void Finisher::addKnown(const DataGroup& data_group, Records& records, std::uint64_t whole) {
  KnownRecords known{data_group.offset, whole, {}};
  for (const ChannelGroup& group : data_group.groups) {
    const auto count = records.countOf(group);
    if (!count || group.element || group.holdsVariableLength()) {
      return;
    }
    known.counts.push_back(*count);
  }
  result_.known.push_back(std::move(known));
}

/// Where the link to the data stands: in the data group, or in the array whose elements have data
/// of their own.
std::uint64_t Finisher::linkTo(const DataGroup& data_group) {
  std::uint64_t place = placeOfLink(data_group.offset, DGBLOCK::dg_data);
  const ChannelGroup* const group =
      data_group.groups.empty() ? nullptr : &data_group.groups.front();
  if (group == nullptr || group->element.value_or(0) == 0) {
    return place;
  }
  for (const Channel& channel : group->channels) {
    const auto array = readRawBlock(file_, channel.array.offset);
    if (channel.array.offset != 0 && array) {
      forEachLink(file_, *array, [&](std::uint64_t index, std::int64_t link) {
        if (static_cast<std::uint64_t>(link) == data_group.data) {
          place = placeOfLink(array->offset, index);
        }
      });
    }
  }
  return place;
}

/// Bytes of the data up to the end of its last record. What comes after it is cut off, where that
/// is a record which was not written to its end.
std::uint64_t Finisher::wholeBytes(const DataGroup& data_group, Records& records) {
  const std::uint64_t whole = records.wholeBytes();
  DataStream data(data_file_, {data_group.offset, data_group.data}, DataStream::Access::forward,
                  silent_);
  if (whole == data.size()) {
    return data.size();
  }
  const RecordFormat format(data_group, records.idBytes());
  const Record::Kind kind = format.at(data, whole).kind;
  if (kind == Record::unknown_id ||
      (kind == Record::past_end && RecordSearch(data_group, format, data).after(whole))) {
    result_.stuck.push_back({data_group.offset, data_group.data, linkTo(data_group)});
    return data.size();
  }
  return cutAfter(data, whole, true);
}

void Finisher::setCounts(const DataGroup& data_group, Records& records) {
  for (const ChannelGroup& group : data_group.groups) {
    setCount(group, records.countOf(group));
    if (group.holdsVariableLength()) {
      setLength(group, records);
    }
  }
}

void Finisher::setCount(const ChannelGroup& group, std::optional<std::uint64_t> records) {
  const std::size_t element = group.element.value_or(0);
  const auto block = readFields(file_, group.offset, "CG");
  if (!block) {
    return;
  }
  if (element == 0) {
    result_.counts.push_back({group.offset, std::string(group.shownName()), false,
                              group.holdsVariableLength(), records, group.cycles});
  }
  if (records && *records < group.cycles) {
    report_({Code::cycle_count_wrong, group.offset,
             "expected " + std::to_string(group.cycles) + " records, found " +
                 std::to_string(*records)});
  }
  if (records && *records != group.cycles && element == 0) {
    setNumber(placeOfField(*block, "cg_cycle_count"), *records);
  }
  if (!records || !group.element || *records == group.cycles) {
    return;
  }
  const std::string name = "ca_cycle_count[" + std::to_string(element) + ']';
  for (const Channel& channel : group.channels) {
    const auto array = readFields(file_, channel.array.offset, "CA");
    const std::uint64_t numbers = array ? promisedNumbers(*array).count : 0;
    for (std::uint64_t index = 0; index < numbers; ++index) {
      if (numberRole(*array, index).name == name) {
        setNumber(array->tailAt() + sizeof(std::uint64_t) * index, *records);
      }
    }
  }
}

/// The bytes of all values stand in place of those of a record.
void Finisher::setLength(const ChannelGroup& group, Records& records) {
  const auto block = readFields(file_, group.offset, "CG");
  const std::uint64_t bytes = records.valuesIn(group)->size();
  if (block && bytes != group.lengthOfAll()) {
    setNumber(placeOfField(*block, "cg_data_bytes"), bytes);
  }
}

void Finisher::finishReductions(const ChannelGroup& group) {
  forEachInChain(file_, group.first_reduction, "SR", report_, [&](const BlockFields& block) {
    const DataLink link{block.offset(), block.link(SRBLOCK::sr_data)};
    DataStream data(data_file_, link, DataStream::Access::forward, silent_);
    const std::uint64_t size =
        std::uint64_t{3} * group.data_bytes +
        (block.hasFlag("sr_flags", SRBLOCK::invalidation_bytes) ? group.invalidation_bytes : 0);
    const std::uint64_t stated = block.number("sr_cycle_count");
    const std::uint64_t count = size == 0 ? stated : data.size() / size;
    const std::uint64_t keep = size == 0 ? data.size() : cutAfter(data, count * size, true);
    finishData(placeOfLink(block.offset(), SRBLOCK::sr_data), link, keep);
    if (count != stated) {
      result_.counts.push_back(
          {block.offset(), std::string(group.shownName()), true, false, count, stated});
      setNumber(placeOfField(block, "sr_cycle_count"), count);
    }
  });
}

/// Signal data of the group's channels.
void Finisher::finishValues(const ChannelGroup& group) {
  for (const Channel& channel : group.channels) {
    const auto block = readRawBlock(file_, channel.data);
    if (channel.type != Channel::variable_length || channel.data == 0 || !block ||
        block->type().contents == Contents::description) {
      continue;
    }
    const DataLink link{channel.offset, channel.data};
    DataStream data(data_file_, link, DataStream::Access::forward, report_);
    const std::uint64_t whole = endOfValues(data);
    const std::uint64_t keep = cutAfter(data, whole, false);
    finishData(placeOfLink(channel.offset, CNBLOCK::cn_data), link, keep);
  }
}

/// Sets the lengths and lists of data, of which so many bytes are kept.
void Finisher::finishData(std::uint64_t link_at, DataLink link, std::uint64_t keep) {
  auto block = link.to == 0 ? std::nullopt : readRawBlock(file_, link.to);
  if (block && block->type().contents == Contents::list_of_lists) {
    link_at = placeOfLink(block->offset, HLBLOCK::hl_dl_first);
    const std::uint64_t first = linkAt(file_, *block, HLBLOCK::hl_dl_first);
    block = first == 0 ? std::nullopt : readRawBlock(file_, first);
  }
  if (block && isBlockList(*block)) {
    finishLists(link_at, *block, keep);
  } else if (block && isDataBlock(*block)) {
    finishBlock(*block, findData(data_file_, *block).original, keep);
  } else if (block && isDataList(*block)) {
    DataLinks parts(file_, link, silent_);
    for (auto part = parts.next(); part; part = parts.next()) {
      const auto each = readRawBlock(file_, part->data);
      const std::uint64_t bytes = each ? findData(data_file_, *each).original : 0;
      if (each && isDataBlock(*each)) {
        finishBlock(*each, bytes, std::min(bytes, keep));
        keep -= std::min(bytes, keep);
      }
    }
  }
}

/// Goes from list to list. Those with links that lead to no data are made anew without these.
void Finisher::finishLists(std::uint64_t link_at, const RawBlock& first, std::uint64_t keep) {
  OffsetSet seen;
  Place place;
  std::optional<std::size_t> follows;
  // What a list of another type says of its blocks stays as it is.
  for (std::optional<RawBlock> list = first;
       list && isBlockList(*list) && !seen.contains(list->offset);) {
    seen.insert(list->offset);
    std::vector<Entry> entries;
    const std::uint64_t stated_next = linkAt(file_, *list, next_link);
    const std::uint64_t next = takeEntries(*list, place, keep, entries) ? stated_next : 0;
    if (entries.size() + 1 == list->link_count && next == stated_next) {
      setEntries(*list, entries);
      link_at = placeOfLink(list->offset, next_link);
      follows.reset();
    } else {
      new_lists_.push_back({link_at, follows, listOf(*list, entries, next), *list});
      follows = new_lists_.size() - 1;
    }
    list = next == 0 ? std::nullopt : readRawBlock(file_, next);
  }
}

/// Takes the blocks of a list up to what is kept, and sets their lengths; false where the data ends
/// there, and does not go on in the next list.
bool Finisher::takeEntries(const RawBlock& list, Place& place, std::uint64_t keep,
                           std::vector<Entry>& entries) {
  bool goes_on = true;
  forEachLink(file_, list, [&](std::uint64_t index, std::int64_t stored) {
    const auto link = static_cast<std::uint64_t>(stored);
    const auto data = link == 0 || index == next_link ? std::nullopt : readRawBlock(file_, link);
    goes_on = goes_on && (link == 0 || index == next_link || (data && isDataBlock(*data)));
    if (!data || !goes_on) {
      return;
    }
    const DataBlock found = findData(data_file_, *data);
    if (place.begin >= keep && place.begin > 0) {
      clear(link, data_file_.endOf(*data));
      return;
    }
    const std::uint64_t kept = std::min(found.original, keep - place.begin);
    finishBlock(*data, found.original, kept);
    entries.push_back({link, place});
    place.begin += kept;
    place.is_known = place.is_known && (!found.is_zipped || found.problem.empty());
  });
  const std::uint64_t next = linkAt(file_, list, next_link);
  const auto block = next == 0 || !goes_on ? std::nullopt : readRawBlock(file_, next);
  return block && isDataList(*block);
}

/// Sets the count and the offsets of a list whose links are right.
void Finisher::setEntries(const RawBlock& list, const std::vector<Entry>& entries) {
  const BlockFields fields(file_, list);
  const std::uint64_t stated = fields.number("dl_count");
  if (stated != entries.size()) {
    std::string count(sizeof(std::uint32_t), '\0');
    storeLe(count.data(), static_cast<std::uint32_t>(entries.size()));
    result_.steps[set_numbers].push_back({placeOfField(fields, "dl_count"), count});
    result_.lists.push_back({list.offset, entries.size(), stated});
  }
  if (fields.hasFlag("dl_flags", DLBLOCK::equal_length)) {
    return;
  }
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::uint64_t offset_at = fields.tailAt() + sizeof(std::uint64_t) * i;
    const Place& place = entries[i].place;
    if (place.is_known && numberAt(file_, offset_at) != place.begin) {
      setNumber(offset_at, place.begin);
    }
  }
}

/// The bytes of a list with these entries; none where there are none.
std::string Finisher::listOf(const RawBlock& list, const std::vector<Entry>& entries,
                             std::uint64_t next) {
  const BlockFields fields(file_, list);
  result_.lists.push_back({list.offset, entries.size(), fields.number("dl_count")});
  if (entries.empty() && next == 0) {
    return "";
  }
  DLBLOCK made(fields.hasFlag("dl_flags", DLBLOCK::equal_length), static_cast<LINK>(next));
  made.setEqualLength(numberAt(file_, fields.tailAt()));
  for (const Entry& entry : entries) {
    made.addData(static_cast<LINK>(entry.link), entry.place.begin);
  }
  std::ostringstream bytes;
  bytes << made;
  return bytes.str();
}

/// Sets the length of a block that keeps some of its bytes of data. What is zipped stays.
void Finisher::finishBlock(const RawBlock& block, std::uint64_t bytes, std::uint64_t keep) {
  const std::uint64_t head = RawBlock::header_size + RawBlock::link_size * block.link_count;
  if (!isPlainData(block) || head > file_.size()) {
    return;
  }
  if (block.length != head + keep) {
    result_.lengths.push_back({block.offset, head + keep, block.length});
    setNumber(block.offset + length_place, head + keep);
  }
  clear(block.offset + head + keep, block.offset + head + bytes);
}

/// Says what is kept of some data when it is cut. Zipped data is not.
std::uint64_t Finisher::cutAfter(DataStream& data, std::uint64_t keep, bool is_record) {
  const std::uint64_t from = data.placeOf(keep);
  const auto block = keep == data.size() ? std::nullopt : readRawBlock(file_, from);
  if (keep == data.size() || (block && block->type().contents == Contents::zipped_data)) {
    return data.size();
  }
  result_.cuts.push_back({from, data.size() - keep, is_record});
  return keep;
}

/// Fills what is cut off with zeros, unless a block stands there.
void Finisher::clear(std::uint64_t from, std::uint64_t end) {
  const auto after = std::upper_bound(blocks_.begin(), blocks_.end(), from);
  if (from < end && end <= file_.size() && (after == blocks_.end() || *after >= end)) {
    result_.zeros.push_back({from, end - from});
  }
}

void Finisher::setNumber(std::uint64_t at, std::uint64_t number) {
  result_.steps[set_numbers].push_back({at, numberBytes(number)});
}

/// What is cleared at the end of the file is left out of it.
void Finisher::cutEnd() {
  auto& zeros = result_.zeros;
  std::sort(zeros.begin(), zeros.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
  while (!zeros.empty() && aligned(zeros.back().at + zeros.back().count) >= result_.size) {
    result_.size = std::min(result_.size, zeros.back().at);
    zeros.pop_back();
  }
}

/// Gives the new lists their places after the end of the file.
void Finisher::placeLists() {
  std::uint64_t end = aligned(result_.size);
  for (const NewList& list : new_lists_) {
    const std::uint64_t place = list.bytes.empty() ? 0 : end;
    if (list.follows) {
      new_lists_[*list.follows].bytes.replace(RawBlock::header_size, RawBlock::link_size,
                                              numberBytes(place));
    } else {
      result_.steps[set_links].push_back({list.link_at, numberBytes(place)});
    }
    end = aligned(end + list.bytes.size());
  }
  end = aligned(result_.size);
  for (NewList& list : new_lists_) {
    const std::uint64_t next = aligned(end + list.bytes.size());
    if (!list.bytes.empty()) {
      result_.steps[add_blocks].push_back({end, std::move(list.bytes)});
    }
    end = next;
    clearOld(list.replaced);
  }
}

/// When nothing leads to a list any more.
void Finisher::clearOld(const RawBlock& list) {
  const BlockFields fields(file_, list);
  const std::uint64_t end = fields.tailAt() + fields.tailBytes();
  const auto after = std::upper_bound(blocks_.begin(), blocks_.end(), list.offset);
  if (after == blocks_.end() || *after >= end) {
    const auto bytes = hostSize(std::min(end, result_.size) - list.offset);
    result_.steps[end_file].push_back({list.offset, std::string(bytes, '\0')});
  }
}

/// What is open and cannot be set is a loss, as far as anybody can tell.
void Finisher::endFile() {
  const unsigned custom_flags = data_file_.identification().custom_flags;
  if (custom_flags != 0) {
    report_({Code::file_unfinished, flags_place,
             "expected no custom flags, found " + std::to_string(custom_flags) +
                 "; what they left open is not known"});
  }
  result_.steps[end_file].push_back({flags_place, std::string(4, '\0')});
  result_.steps[end_file].push_back({0, std::string(finished_word)});
}

bool writeZeros(mdf_writer::Output& output, Finishing::Zeros zeros) {
  const std::string piece(static_cast<std::size_t>(std::min<std::uint64_t>(zeros.count, 1U << 16U)),
                          '\0');
  while (zeros.count > 0) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(zeros.count, piece.size()));
    if (output.write(zeros.at, piece.data(), count) != count) {
      return false;
    }
    zeros.at += count;
    zeros.count -= count;
  }
  return true;
}

}  // namespace

Finishing finishingOf(InputFile& file, const FindingSink& report) {
  return Finisher(file, report).finish();
}

bool apply(const Finishing& finishing, mdf_writer::Output& output) {
  const auto write = [&](const Finishing::Change& change) {
    return output.write(change.at, change.bytes.data(), change.bytes.size()) == change.bytes.size();
  };
  for (std::size_t step = 0; step < finishing.steps.size(); ++step) {
    if (step == add_blocks &&
        (!output.cut(finishing.size) ||
         !std::all_of(finishing.zeros.begin(), finishing.zeros.end(),
                      [&](const auto& zeros) { return writeZeros(output, zeros); }))) {
      return false;
    }
    const auto& changes = finishing.steps[step];
    if (!std::all_of(changes.begin(), changes.end(), write) || !output.sync()) {
      return false;
    }
  }
  return true;
}

}  // namespace mdf_tools
