#include "measurement.h"

#include <fnmatch.h>

#include <algorithm>

#include "../blocks/block_fields.h"
#include "../bus/frame_columns.h"
#include "../bytes/input_file.h"
#include "../bytes/work_budget.h"
#include "../columns/tables.h"
#include "../data/record_facts.h"
#include "../decoding/database_file.h"
#include "../decoding/decoding.h"
#include "../model/channel_names.h"
#include "../summary/channel_json.h"
#include "../summary/conversion_json.h"
#include "../summary/file_json.h"
#include "../summary/json.h"
#include "../summary/list_json.h"

namespace mdf_reader {

namespace {

constexpr std::size_t most_findings = 1000;
/// How much of texts that others have, too, is told again: so many times the file's bytes, and so
/// many bytes in any case.
constexpr std::uint64_t times_of_texts = 4;
constexpr std::uint64_t always_of_texts = std::uint64_t{1} << 24U;

std::string othersLeftOut(const std::string& what) {
  return "expected " + what + " with texts of their own, found the same long ones again and " +
         "again; the other " + what + " are left out";
}

/// Throws before anything of a file that cannot be read is looked at.
InputFile& readable(InputFile& file) {
  if (const auto refusal = refusalOf(file)) {
    throw Unreadable(*refusal);
  }
  return file;
}

}  // namespace

ChannelGroups::ChannelGroups(const std::vector<DataGroup>& data_groups) {
  for (const DataGroup& data_group : data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      groups_.push_back(&group);
    }
  }
}

struct Measurement::State {
  explicit State(const std::string& path) : State(path, path == "-" ? "standard input" : path) {}
  /// @param name what messages call the file.
  State(const std::string& path, const std::string& name)
      : file(path, name),
        report([this](const Finding& finding) { take(finding); }),
        description(readDescription(readable(file), report)),
        groups(description.data_groups),
        facts(file, report),
        conversions(file) {
    facts.know(description);
  }

  void take(const Finding& finding) {
    const auto is_same = [&](const Finding& other) {
      return other.offset == finding.offset && other.code == finding.code &&
             other.sentence == finding.sentence;
    };
    if (std::any_of(findings.begin(), findings.end(), is_same)) {
      return;
    }
    if (finding_count++ < most_findings) {
      findings.push_back(finding);
    }
  }

  Json channelsAsJson();
  template <class Entry>
  Json listAsJson(const char* what, const std::vector<Entry>& entries,
                  Json (*asJson)(const Entry& entry));

  InputFile file;
  std::vector<Finding> findings;
  std::uint64_t finding_count = 0;
  FindingSink report;
  Description description;
  ChannelGroups groups;
  RecordFacts facts;
  ConversionTexts conversions;
};

/// Channels may have texts in common, so that there is more to say of them than the file has bytes.
Json Measurement::State::channelsAsJson() {
  WorkBudget texts(file.size(), times_of_texts, always_of_texts);
  Json list = Json::array();
  for (const ChannelGroup& group : groups) {
    const RecordCount count = facts.recordsOf(group.offset, group.cycles);
    ChannelNames names;
    for (const Channel& channel : group.channels) {
      const std::string_view source = readSource(file, channel.source, *description.texts).name;
      if (!texts.take(channel.unit.size() + channel.comment.size() + source.size())) {
        report({Code::work_limited, channel.offset, othersLeftOut("channels")});
        return list;
      }
      list.push_back(channelAsJson(
          {group, channel, names.next(channel), count, conversionTypeOf(file, channel), source}));
    }
  }
  return list;
}

template <class Entry>
Json Measurement::State::listAsJson(const char* what, const std::vector<Entry>& entries,
                                    Json (*asJson)(const Entry& entry)) {
  WorkBudget texts(file.size(), times_of_texts, always_of_texts);
  Json list = Json::array();
  for (const Entry& entry : entries) {
    if (!texts.take(entry.name.size() + entry.comment.size())) {
      report({Code::work_limited, entry.offset, othersLeftOut(what)});
      return list;
    }
    list.push_back(asJson(entry));
  }
  return list;
}

Measurement::Measurement(const std::string& path) : state_(std::make_shared<State>(path)) {}
Measurement::Measurement(std::shared_ptr<State> state) : state_(std::move(state)) {}
Measurement::~Measurement() = default;
Measurement::Measurement(Measurement&& other) noexcept = default;
Measurement& Measurement::operator=(Measurement&& other) noexcept = default;

const Identification& Measurement::identification() const {
  return state_->description.identification;
}

const Header& Measurement::header() const { return state_->description.header; }

const std::vector<DataGroup>& Measurement::dataGroups() const {
  return state_->description.data_groups;
}

const ChannelGroups& Measurement::groups() const { return state_->groups; }

std::vector<FoundChannel> Measurement::channels(const std::string& pattern) const {
  std::vector<FoundChannel> found;
  for (const ChannelGroup& group : state_->groups) {
    ChannelNames names;
    for (const Channel& channel : group.channels) {
      const std::string& full_name = names.next(channel);
      if (fnmatch(pattern.c_str(), std::string(channel.name).c_str(), 0) == 0 ||
          fnmatch(pattern.c_str(), full_name.c_str(), 0) == 0) {
        found.push_back({&group, &channel});
      }
    }
  }
  return found;
}

RecordCount Measurement::records(const ChannelGroup& group) const {
  return state_->facts.recordsOf(group.offset, group.cycles);
}

void Measurement::forEachRecord(const ChannelGroup& group,
                                const std::function<bool(std::string_view)>& visit) const {
  for (const DataGroup& data_group : dataGroups()) {
    const auto is_it = [&](const ChannelGroup& each) { return each.offset == group.offset; };
    const auto own = std::find_if(data_group.groups.begin(), data_group.groups.end(), is_it);
    if (own != data_group.groups.end()) {
      Records(state_->facts.file(), data_group, state_->report).forEach(*own, visit);
      return;
    }
  }
}

struct Batches::State {
  State(std::shared_ptr<Measurement::State> from, const Query& wanted)
      : measurement(std::move(from)),
        query(wanted),
        tables(measurement->file, query, measurement->report, note) {}

  std::shared_ptr<Measurement::State> measurement;
  Query query;
  NoteSink note = [](const std::string& /*note*/) {};
  Tables tables;
  Table* table = nullptr;
};

Batches::Batches(std::unique_ptr<State> state) : state_(std::move(state)) {}
Batches::~Batches() = default;
Batches::Batches(Batches&& other) noexcept = default;
Batches& Batches::operator=(Batches&& other) noexcept = default;

const Batch* Batches::next() {
  const Batch* batch = state_->table == nullptr ? nullptr : state_->table->next();
  while (batch == nullptr && (state_->table = state_->tables.next()) != nullptr) {
    batch = state_->table->next();
  }
  return batch;
}

std::unique_ptr<const Batch> Batches::take() {
  return state_->table == nullptr ? nullptr : state_->table->take();
}

std::vector<TableHead> Batches::heads(std::size_t most) { return state_->tables.heads(most); }

Batches Measurement::read(const Query& query) const {
  return Batches(std::make_unique<Batches::State>(state_, query));
}

struct FrameBatches::State {
  State(std::shared_ptr<Measurement::State> from_file, std::optional<double> from,
        std::optional<double> to)
      : measurement(std::move(from_file)),
        frames(measurement->file, from, to, measurement->report, note) {}

  std::shared_ptr<Measurement::State> measurement;
  NoteSink note = [](const std::string& /*note*/) {};
  BusFrames frames;
  FrameColumns columns;
};

FrameBatches::FrameBatches(std::unique_ptr<State> state) : state_(std::move(state)) {}
FrameBatches::~FrameBatches() = default;
FrameBatches::FrameBatches(FrameBatches&& other) noexcept = default;
FrameBatches& FrameBatches::operator=(FrameBatches&& other) noexcept = default;

std::size_t FrameBatches::groups() const { return state_->frames.groups(); }

const TableHead& FrameBatches::head() const { return state_->columns.head(); }

std::unique_ptr<const Batch> FrameBatches::next(std::size_t rows) {
  return state_->columns.next(state_->frames, rows);
}

FrameBatches Measurement::frames(std::optional<double> from, std::optional<double> to) const {
  return FrameBatches(std::make_unique<FrameBatches::State>(state_, from, to));
}

DecodedSignals Measurement::decode(const std::vector<std::string>& databases, bool is_j1939) const {
  Decoding decoding{{}, is_j1939};
  Decoded frames;
  std::vector<DatabaseFault> faults;
  std::vector<std::string> notes;
  for (const std::string& database : databases) {
    decoding.databases.push_back(
        readDatabase(database, [&](const DatabaseFault& fault) { faults.push_back(fault); }));
  }
  InputFile& file = state_->file;
  const Descriptor signals =
      signalFile({file, state_->report, [&](const std::string& note) { notes.push_back(note); }},
                 decoding, frames);
  if (frames.files_with_frames == 0) {
    throw CannotDecode(no_frames);
  }
  const std::string path = "/proc/self/fd/" + std::to_string(signals.number());
  return {Measurement(std::make_shared<State>(path, file.name())), std::move(frames),
          std::move(faults), std::move(notes)};
}

std::vector<Attachment> Measurement::attachments() const {
  return readAttachments(state_->file, header().first_attachment, *state_->description.texts,
                         state_->report);
}

AttachmentData Measurement::readAttachment(
    const Attachment& attachment, const std::function<void(std::string_view)>& take) const {
  return readAttachmentData(state_->file, attachment, take);
}

std::vector<Event> Measurement::events() const {
  return readEvents(state_->file, header().first_event, *state_->description.texts, state_->report);
}

std::vector<HierarchyEntry> Measurement::hierarchy() const {
  return readHierarchy(state_->file, header().first_hierarchy, *state_->description.texts,
                       state_->report);
}

std::vector<HistoryEntry> Measurement::history() const {
  return readHistory(state_->file, header().first_history, *state_->description.texts,
                     state_->report);
}

std::optional<Block> Measurement::block(std::uint64_t offset) const {
  const auto raw = readRawBlock(state_->file, offset);
  if (!raw || !raw->hasId()) {
    return std::nullopt;
  }
  const BlockFields fields(state_->file, *raw);
  Block block{offset, printable(raw->letters()), raw->length, {}, {}};
  forEachLink(state_->file, *raw, [&](std::uint64_t index, std::int64_t link) {
    block.links.push_back({linkRole(fields, index).name, link});
  });
  if (fields.type().isKnown()) {
    for (const FieldLayout& field : fields.type().fields) {
      block.fields.push_back(
          {std::string(field.name), shownField(field, fields.bytes(field.name))});
    }
  }
  return block;
}

std::string Measurement::describe() const {
  return jsonDocument(
      {{"schema", json_schema},
       {"info", fileAsJson(state_->file, Depth::records, state_->report)},
       {"channels", state_->channelsAsJson()},
       {"attachments", state_->listAsJson("attachments", attachments(), attachmentAsJson)},
       {"events", state_->listAsJson("events", events(), eventAsJson)}});
}

std::string Measurement::describeConversion(const Channel& channel) const {
  return state_->conversions.at(channel.conversion);
}

const std::vector<Finding>& Measurement::findings() const { return state_->findings; }

std::uint64_t Measurement::findingCount() const { return state_->finding_count; }

}  // namespace mdf_reader
