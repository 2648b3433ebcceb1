#include "recording.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "../plan/texts.h"

namespace mdf_writer {

using mdf_v4_10::LINK;
using mdf_v4_10::detail::loadLe;
using mdf_v4_10::detail::storeLe;

namespace {

constexpr std::size_t least_block_bytes = 4096;
constexpr std::size_t most_block_bytes = std::size_t{1} << 24U;
constexpr std::size_t most_packed_bytes = std::size_t{1} << 22U;
constexpr std::size_t length_bytes = 4;  // before each value of variable length

template <class Number>
std::string_view bytesOf(std::array<char, sizeof(Number)>& bytes, Number number) {
  storeLe(bytes.data(), number);
  return {bytes.data(), bytes.size()};
}

/// Of a time that is in a record already. One that no clock can have is no time to flush at.
std::int64_t nanosecondsOf(double seconds) {
  constexpr double most = 9e9;
  return seconds > -most && seconds < most ? std::llround(seconds * 1e9) : 0;
}

std::string_view viewOf(const std::vector<char>& bytes, std::size_t count) {
  return {bytes.data(), count};
}

}  // namespace

Recording::Recording(const std::string& path, Plan& plan, const Options& options)
    : plan_(plan), options_(options), path_(path) {
  file_ = std::make_unique<FileOutput>(path, options.existing);
  if (!file_->isOpen()) {
    cause_ = "cannot record to " + path + ": " + file_->cause();
    is_finished_ = true;
    return;
  }
  begin(*file_);
}

Recording::Recording(Output& output, Plan& plan, const Options& options)
    : plan_(plan), options_(options) {
  begin(output);
}

Recording::~Recording() { finish(); }

std::string Recording::sentence(const std::string& what) const {
  return "cannot " + what + (path_.empty() ? "" : " " + path_) + ": " + storage_->cause();
}

void Recording::begin(Output& output) {
  storage_ = std::make_unique<Storage>(output);
  const std::string fault = plan_.fault();
  if (!fault.empty()) {
    cause_ = "the plan cannot be recorded: " + fault;
    is_finished_ = true;
    return;
  }
  if (options_.packer != nullptr && !output.isSeekable()) {
    cause_ = "cannot record zipped data to an output that cannot go back, such as a pipe";
    is_finished_ = true;
    return;
  }
  const Layout layout = !output.isSeekable()   ? Layout::open_end
                        : options_.is_unsorted ? Layout::together
                                               : Layout::apart;
  description_ = describe(plan_, layout);
  makeStreams();
  if (output.isSeekable()) {
    groups_.emplace(*storage_, description_.group_link);
    events_.emplace(*storage_, description_.event_link);
    attachments_.emplace(*storage_, description_.attachment_link);
  }
  const std::string& bytes = description_.bytes;
  const bool begun = storage_->write(storage_->allocate(bytes.size()), bytes.data(),
                                     bytes.size()) == bytes.size() &&
                     syncIfAsked() && storage_->publish() && syncIfAsked();
  if (!begun) {
    cause_ = sentence("record to") + "; nothing was recorded";
    close();
  }
}

void Recording::makeStreams() {
  longest_ = std::clamp(options_.block_bytes, least_block_bytes,
                        options_.packer == nullptr ? most_block_bytes : most_packed_bytes);
  for (Group& group : plan_.groups_) {
    addState(group, description_.groups[group.index_]);
    longest_ = std::max(longest_, description_.record_id_bytes + states_.back().data_bytes +
                                      states_.back().invalidation_bytes);
  }
  makeReductions();
  if (options_.packer != nullptr) {
    packing_ = std::make_unique<Packing>(*options_.packer, DataStream::bufferBytes(longest_));
  }
  for (State& state : states_) {
    addStreams(state);
  }
}

void Recording::addState(Group& group, GroupPlaces places) {
  State state{};
  state.group = &group;
  state.places = std::move(places);
  state.data_bytes = group.dataBytes();
  state.invalidation_bytes = group.invalidationBytes();
  state.has_range = group.order_ == Group::Order::time;
  state.is_plain = description_.record_id_bytes == 0 && state.data_bytes > 0 &&
                   state.invalidation_bytes == 0 && state.places.values.empty() &&
                   group.reductions.empty();
  for (const GroupPlaces::Values& values : state.places.values) {
    state.values.push_back({values});
  }
  states_.push_back(std::move(state));
}

void Recording::addStreams(State& state) {
  const bool is_together = description_.record_id_bytes > 0;
  const bool shares = is_together && !record_streams_.empty();
  const std::size_t record_bytes = is_together ? 0 : state.data_bytes + state.invalidation_bytes;
  state.stream =
      shares ? record_streams_.front()
             : addStream(state.places.data_link, DataStream::Kind::records, longest_, record_bytes);
  if (!shares) {
    record_streams_.push_back(state.stream);
  }
  for (Values& values : state.values) {
    if (!is_together) {
      values.own = addStream(values.places.data_link, DataStream::Kind::signal_data, longest_, 0);
      value_streams_.push_back(values.own);
    }
  }
}

bool Recording::addGroup(Group& group) {
  const bool can_come = !is_finished_ && groups_ && description_.record_id_bytes == 0 &&
                        group.plan_ == &plan_ && group.index_ == states_.size();
  const std::size_t record_bytes = std::size_t{group.dataBytes()} + group.invalidationBytes();
  if (!can_come || !group.fault().empty() || !group.reductions.empty() || record_bytes > longest_) {
    return false;
  }
  GroupDescription description = describe(plan_, group.index_, groups_->place());
  if (!groups_->write(description.blocks, {description.data_group, description.data_group})) {
    return fail();
  }
  addState(group, std::move(description.places));
  addStreams(states_.back());
  return true;
}

void Recording::makeReductions() {
  for (State& state : states_) {
    const std::size_t bytes = 3 * state.data_bytes + state.invalidation_bytes;
    for (std::size_t i = 0; i < state.places.reductions.size(); ++i) {
      streams_.push_back(std::make_unique<DataStream>(
          *storage_, state.places.reductions[i].data_link, DataStream::Kind::reductions,
          std::max(least_block_bytes, bytes)));
      reduction_streams_.push_back(streams_.back().get());
      state.reductions.emplace_back(*state.group, state.group->reductions[i], *streams_.back());
    }
  }
}

DataStream* Recording::addStream(std::uint64_t link_at, DataStream::Kind kind,
                                 std::size_t block_bytes, std::size_t record_bytes) {
  streams_.push_back(std::make_unique<DataStream>(*storage_, link_at, kind, block_bytes));
  DataStream* const stream = streams_.back().get();
  if (packing_ != nullptr) {
    stream->pack(*packing_, static_cast<std::uint32_t>(record_bytes));
  }
  return stream;
}

bool Recording::putSlowly(State& state, std::int64_t nanoseconds) {
  if (is_finished_) {
    return false;
  }
  const bool ends_block = !state.stream->hasRoom(state.data_bytes + state.invalidation_bytes);
  for (Values& values : state.values) {
    // Before a block of records ends, the file has the values that they refer to.
    const bool success =
        putValue(state, values) && (!ends_block || values.own == nullptr || values.own->writeOut());
    if (!success) {
      return fail();
    }
  }
  const std::string_view data = viewOf(state.group->record_, state.data_bytes);
  const std::string_view invalidation = viewOf(state.group->invalid_, state.invalidation_bytes);
  if (!putRecord(state, data, invalidation)) {
    return fail();
  }
  return count(state, nanoseconds) && reduce(state, nanoseconds, data, invalidation);
}

/// Takes the record that was just counted into the sample reductions.
bool Recording::reduce(State& state, std::int64_t nanoseconds, std::string_view data,
                       std::string_view invalidation) {
  for (Reduction& reduction : state.reductions) {
    if (reduction.endsBefore(nanoseconds) && !endInterval(reduction, state.records - 1)) {
      return fail();
    }
    reduction.add(nanoseconds, data, invalidation);
  }
  return true;
}

/// Before a block of reductions ends, the file has the records that they stand for.
bool Recording::endInterval(Reduction& reduction, std::uint64_t records) {
  return (reduction.hasRoom() || forEach(&DataStream::writeOut)) && reduction.end(records);
}

bool Recording::endReductions() {
  for (State& state : states_) {
    for (Reduction& reduction : state.reductions) {
      if (!endInterval(reduction, state.records)) {
        return false;
      }
    }
  }
  return true;
}

std::string_view Recording::withId(std::uint64_t record_id, std::string_view bytes) {
  std::array<char, sizeof record_id> id;
  id_.assign(bytesOf(id, record_id), 0, description_.record_id_bytes);
  return id_.append(bytes);
}

/// Stores a value, and its offset in the record.
bool Recording::putValue(State& state, Values& values) {
  const std::size_t channel = values.places.channel;
  const std::string& value = state.group->values_[channel];
  const std::uint64_t offset =
      values.own != nullptr ? values.own->size() : values.bytes + length_bytes * values.count;
  storeLe(&state.group->record_[state.group->channels_[channel].byte_offset], offset);
  std::array<char, length_bytes> length;
  const std::string_view prefix = bytesOf(length, static_cast<std::uint32_t>(value.size()));
  const bool stored = values.own != nullptr
                          ? values.own->append(prefix, value)
                          : state.stream->append(withId(values.places.record_id, prefix), value);
  if (stored) {
    ++values.count;
    values.bytes += value.size();
  }
  return stored;
}

bool Recording::putRecord(State& state, std::string_view data, std::string_view invalidation) {
  if (description_.record_id_bytes == 0) {
    return state.stream->append(data, invalidation);
  }
  return state.stream->append(withId(state.places.record_id, data), invalidation);
}

bool Recording::appendBytes(Group& group, std::string_view record) {
  if (!isPlanned(group) || is_finished_) {
    return false;
  }
  State& state = states_[group.index_];
  if (record.size() != state.data_bytes + state.invalidation_bytes || !state.values.empty()) {
    return false;
  }
  const std::int64_t time = group.order_ == Group::Order::time
                                ? nanosecondsOf(loadLe<double>(record.data()))
                                : last_flush_;
  state.has_range = false;
  if (!putRecord(state, record, {})) {
    return fail();
  }
  return count(state, time) &&
         reduce(state, time, record.substr(0, state.data_bytes), record.substr(state.data_bytes));
}

bool Recording::addEvent(const Event& event) {
  const bool is_right =
      isUtf8(event.name) && isUtf8(event.comment) &&
      (event.group == nullptr || isPlanned(*event.group)) &&
      (!event.nanoseconds_at_end || *event.nanoseconds_at_end >= event.nanoseconds);
  if (is_finished_ || !events_ || !is_right) {
    return false;
  }
  Blocks blocks(events_->place());
  const std::uint64_t scope =
      event.group == nullptr ? 0 : states_[event.group->index_].places.block;
  const Chained added = mdf_writer::addEvent(blocks, event, static_cast<LINK>(scope));
  return events_->write(blocks, added) || fail();
}

bool Recording::addAttachment(const Attachment& attachment) {
  if (is_finished_ || !attachments_ || !attachment.fault().empty()) {
    return false;
  }
  Blocks blocks(attachments_->place());
  const LINK link = mdf_writer::addAttachment(blocks, attachment, 0);
  return attachments_->write(blocks, {link, link}) || fail();
}

bool Recording::flushAt(std::int64_t nanoseconds) {
  last_flush_ = nanoseconds;
  if (options_.flush_interval <= 0) {
    quiet_ = std::numeric_limits<std::uint64_t>::max();
    return true;
  }
  const auto interval = static_cast<std::uint64_t>(options_.flush_interval);
  quiet_begin_ = static_cast<std::uint64_t>(nanoseconds) - interval;
  quiet_ = 2 * interval;
  return flush();
}

bool Recording::flush() {
  if (is_finished_) {
    return good();
  }
  return (forEach(&DataStream::writeOut) && show()) || fail();
}

bool Recording::forEach(bool (DataStream::*what)()) {
  const auto call = [&](DataStream* stream) { return (stream->*what)(); };
  return std::all_of(value_streams_.begin(), value_streams_.end(), call) &&
         std::all_of(record_streams_.begin(), record_streams_.end(), call) &&
         std::all_of(reduction_streams_.begin(), reduction_streams_.end(), call);
}

/// Values before the records that refer to them, records before what stands for them.
bool Recording::show() {
  return showAll(value_streams_) && showAll(record_streams_) && showAll(reduction_streams_) &&
         showChains() && syncIfAsked();
}

bool Recording::showChains() {
  const bool has_link = events_ && (groups_->hasLinkToShow() || events_->hasLinkToShow() ||
                                    attachments_->hasLinkToShow());
  return !has_link ||
         (syncIfAsked() && groups_->showLink() && events_->showLink() && attachments_->showLink());
}

bool Recording::showAll(const std::vector<DataStream*>& streams) {
  const auto any = [&](bool (DataStream::*has)() const) {
    return std::any_of(streams.begin(), streams.end(),
                       [&](const DataStream* stream) { return (stream->*has)(); });
  };
  const auto all = [&](bool (DataStream::*one)()) {
    return syncIfAsked() && std::all_of(streams.begin(), streams.end(),
                                        [&](DataStream* stream) { return (stream->*one)(); });
  };
  return (!any(&DataStream::hasLengthToShow) || all(&DataStream::showLength)) &&
         (!any(&DataStream::hasLinkToShow) || all(&DataStream::showLink));
}

bool Recording::syncIfAsked() {
  return options_.durability == Durability::none || storage_->sync();
}

/// From now on no record is taken, by the short way neither.
void Recording::close() {
  is_finished_ = true;
  for (State& state : states_) {
    state.is_plain = false;
  }
}

/// The medium takes no more: what it took becomes a file.
bool Recording::fail() {
  close();
  const std::string failure = sentence("write to");
  if (!storage_->isSeekable()) {
    cause_ = failure;
    return false;
  }
  const bool kept = keepWhatFits();
  std::uint64_t records = 0;
  for (const State& state : states_) {
    records += state.records;
  }
  cause_ = failure + (kept && complete() ? "; the " + std::to_string(records) +
                                               " records written before that make a complete file"
                                         : "; " + leftBehind());
  return false;
}

std::string Recording::leftBehind() const {
  return is_marked_finished_ || !storage_->isSeekable() ? "it is not certain what the medium holds"
                                                        : "the file says that it is unfinished";
}

bool Recording::keepWhatFits() {
  bool success = true;
  if (packing_ != nullptr) {
    packing_->giveBack();
  }
  for (DataStream* const stream : value_streams_) {
    success &= stream->writeOut() ? stream->cutBlock(stream->taken()) : cutValues(*stream);
  }
  for (DataStream* const stream : record_streams_) {
    stream->writeOut();
    success &= cutRecords(*stream);
  }
  for (State& state : states_) {
    for (Reduction& reduction : state.reductions) {
      reduction.stream()->writeOut();
      success &= reduction.cut(state.records);
    }
  }
  return success;
}

bool Recording::cutValues(DataStream& stream) {
  const std::string_view block = stream.block();
  std::size_t whole = 0;
  while (whole + length_bytes <= stream.taken()) {
    const std::size_t next = whole + length_bytes + loadLe<std::uint32_t>(&block[whole]);
    if (next > stream.taken()) {
      break;
    }
    whole = next;
  }
  return stream.cutBlock(whole);
}

/// Keeps the records that the file has whole, up to the first whose values it has not.
bool Recording::cutRecords(DataStream& stream) {
  const std::string_view block = stream.block();
  std::size_t kept = 0;
  bool is_kept = true;
  for (std::size_t at = 0; at < block.size();) {
    State* state = nullptr;
    Values* values = nullptr;
    const std::size_t bytes = recordAt(stream, block.substr(at), state, values);
    if (state == nullptr) {
      break;
    }
    is_kept = is_kept && at + bytes <= stream.taken() &&
              (values != nullptr || hasItsValues(*state, block.substr(at, bytes)));
    at += bytes;
    if (is_kept) {
      kept = at;
      continue;
    }
    is_cut_ = true;
    if (values != nullptr) {
      --values->count;
      values->bytes -= bytes - description_.record_id_bytes - length_bytes;
    } else {
      --state->records;
    }
  }
  return stream.cutBlock(kept);
}

/// The bytes of the record at the front, with its id, and whose it is.
std::size_t Recording::recordAt(const DataStream& stream, std::string_view bytes, State*& state,
                                Values*& values) {
  const std::size_t id_bytes = description_.record_id_bytes;
  std::array<char, sizeof(std::uint64_t)> padded{};
  std::copy_n(bytes.begin(), id_bytes, padded.begin());
  const auto id = loadLe<std::uint64_t>(padded.data());
  for (State& each : states_) {
    const bool is_own = id_bytes == 0 ? each.stream == &stream : each.places.record_id == id;
    if (is_own) {
      state = &each;
      return id_bytes + each.data_bytes + each.invalidation_bytes;
    }
    for (Values& candidate : each.values) {
      if (id_bytes > 0 && candidate.places.record_id == id) {
        state = &each;
        values = &candidate;
        return id_bytes + length_bytes + loadLe<std::uint32_t>(&bytes[id_bytes]);
      }
    }
  }
  return 0;
}

bool Recording::hasItsValues(const State& state, std::string_view record) const {
  return std::all_of(state.values.begin(), state.values.end(), [&](const Values& values) {
    const std::size_t at = state.group->channels_[values.places.channel].byte_offset;
    return values.own == nullptr || loadLe<std::uint64_t>(&record[at]) < values.own->size();
  });
}

bool Recording::finish() {
  if (is_finished_) {
    return good();
  }
  if (!endReductions() || !forEach(&DataStream::writeLast)) {
    return fail();
  }
  close();
  if (storage_->isSeekable() ? !complete() : !syncIfAsked()) {
    cause_ = sentence("complete") + "; " + leftBehind();
  }
  return good();
}

/// Last of all the identification, when everything else is there.
bool Recording::complete() {
  const std::string& id = description_.finished_identification;
  is_marked_finished_ = show() && forEach(&DataStream::clearPlaces) && storage_->cut() &&
                        putCounts() && syncIfAsked() &&
                        storage_->write(0, id.data(), id.size()) == id.size();
  return is_marked_finished_ && syncIfAsked();
}

bool Recording::putCounts() {
  return std::all_of(states_.begin(), states_.end(), [this](const State& state) {
    return storage_->put(state.places.cycle_count, state.records) && putRange(state) &&
           putReductionCounts(state) &&
           std::all_of(state.values.begin(), state.values.end(), [this](const Values& values) {
             return values.own != nullptr ||
                    (storage_->put(values.places.cycle_count, values.count) &&
                     storage_->put(values.places.total_bytes, values.bytes));
           });
  });
}

bool Recording::putReductionCounts(const State& state) {
  for (std::size_t i = 0; i < state.reductions.size(); ++i) {
    if (!storage_->put(state.places.reductions[i].cycle_count, state.reductions[i].cycles())) {
      return false;
    }
  }
  return true;
}

/// The times of the first and the last record, so that nobody must read records to know how long
/// the recording is. Where records were dropped, the last time is not known any more; that of bytes
/// is not, nor that of a master channel of the group's own.
bool Recording::putRange(const State& state) {
  const GroupPlaces& places = state.places;
  if (state.records == 0 || is_cut_ || !state.has_range || places.master_flags == 0) {
    return true;
  }
  std::array<char, sizeof(double)> first;
  std::array<char, sizeof(double)> last;
  std::array<char, sizeof places.flags_with_range> flags;
  const auto write = [this](std::uint64_t at, std::string_view bytes) {
    return storage_->write(at, bytes.data(), bytes.size()) == bytes.size();
  };
  return write(places.master_range, bytesOf(first, secondsOf(state.first))) &&
         write(places.master_range + sizeof(double), bytesOf(last, secondsOf(state.last))) &&
         write(places.master_flags, bytesOf(flags, places.flags_with_range));
}

}  // namespace mdf_writer
