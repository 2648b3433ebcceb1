#include "arrow_stream.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "../bus/bus_frames.h"
#include "../bytes/work_budget.h"
#include "../summary/stored_time.h"
#include "arrow_array.h"
#include "arrow_schema.h"
#include "refused.h"

namespace mdf_reader {

namespace {

constexpr std::size_t shown_text = 100;
constexpr std::size_t most_shown = 10;  // channel groups

/// What a stream points to.
struct StreamOwner {
  std::shared_ptr<std::mutex> turn;
  std::vector<ArrowField> fields;
  std::function<std::shared_ptr<const Batch>()> next;
  std::optional<std::int64_t> start = std::nullopt;  ///< of timestamps
  const char* last_error = nullptr;
};

StreamOwner& ownerOf(ArrowArrayStream* stream) {
  return *static_cast<StreamOwner*>(stream->private_data);
}

/// Does one call of a stream; no exception may leave it.
template <class Work>
int guarded(ArrowArrayStream* stream, const Work& work) {
  StreamOwner& owner = ownerOf(stream);
  const std::lock_guard<std::mutex> turn(*owner.turn);
  try {
    work(owner);
    owner.last_error = nullptr;
    return 0;
  } catch (const std::bad_alloc&) {
    owner.last_error = "there is not enough memory";
    return ENOMEM;
  } catch (...) {
    owner.last_error = "a fault inside";
    return EIO;
  }
}

int getSchema(ArrowArrayStream* stream, ArrowSchema* out) {
  *out = {};
  return guarded(stream, [&](const StreamOwner& owner) { exportSchema(owner.fields, *out); });
}

int getNext(ArrowArrayStream* stream, ArrowArray* out) {
  *out = {};
  return guarded(stream, [&](StreamOwner& owner) {
    if (const auto batch = owner.next()) {
      exportBatch(batch, owner.start, *out);
    }
  });
}

const char* getLastError(ArrowArrayStream* stream) { return ownerOf(stream).last_error; }

void release(ArrowArrayStream* stream) {
  std::unique_ptr<StreamOwner> owner(&ownerOf(stream));
  const std::shared_ptr<std::mutex> mutex = owner->turn;
  const std::lock_guard<std::mutex> turn(*mutex);
  owner.reset();
  stream->release = nullptr;
}

/// "0 \"engine\"".
std::string shown(const TableHead& head) {
  std::string text = std::to_string(head.group->index);
  if (!head.group->shownName().empty()) {
    text += " \"" + printable(head.group->shownName(), Harmless::utf8, shown_text) + '"';
  }
  return head.group->element ? text + " element " + std::to_string(*head.group->element) : text;
}

[[noreturn]] void refuseSeveral(const std::vector<TableHead>& heads) {
  std::string text = "expected channels of one channel group, found them in";
  for (std::size_t i = 0; i < std::min(heads.size(), most_shown); ++i) {
    text += (i == 0 ? " " : ", ") + shown(heads[i]);
  }
  if (heads.size() > most_shown) {
    text += ", ...";
  }
  const auto is_first = [&](const TableHead& head) {
    return head.group->index == heads.front().group->index;
  };
  const bool are_elements = std::all_of(heads.begin(), heads.end(), is_first);
  throw WrongQuery(text + "; choose one by " + (are_elements ? "\"element\"" : "\"group\""));
}

/// Refuses names that no channel has, in one channel group or in all.
void refuseUnknown(const Measurement& measurement, const Query& query, const TableHead* head) {
  for (const std::string& pattern : query.channels) {
    const auto found = measurement.channels(pattern);
    const auto fits = [&](const FoundChannel& each) {
      return head == nullptr || each.group->index == head->group->index;
    };
    if (std::none_of(found.begin(), found.end(), fits)) {
      throw WrongQuery("no channel" + (head == nullptr ? "" : " of channel group " + shown(*head)) +
                       " matches \"" + printable(pattern, Harmless::utf8, shown_text) + '"');
    }
  }
}

/// What is known of the one table of a query.
TableHead headOf(const Measurement& measurement, const Query& query, Batches& batches) {
  std::vector<TableHead> heads = batches.heads(most_shown + 1);
  if (heads.size() > 1) {
    refuseSeveral(heads);
  }
  refuseUnknown(measurement, query, heads.empty() ? nullptr : &heads.front());
  if (heads.empty()) {
    throw WrongQuery(query.from || query.to
                         ? "no channel group fits the query; \"from\" and \"to\" need a master "
                           "channel"
                         : "no channel group fits the query");
  }
  return std::move(heads.front());
}

std::vector<ArrowField> fieldsOf(const Measurement& measurement, const TableHead& head) {
  constexpr std::uint64_t most_text = std::uint64_t{1} << 24U;  // channels may share a long comment
  WorkBudget texts(most_text);
  std::vector<ArrowField> fields;
  for (const ColumnHead& column : head.columns) {
    std::vector<std::pair<std::string, std::string>> entries;
    const auto add = [&](const char* key, std::string_view value) {
      if (!value.empty() && texts.take(value.size())) {
        entries.emplace_back(key, value);
      }
    };
    add("unit", column.unit);
    add("comment", column.channel->comment);
    add("conversion", measurement.describeConversion(*column.channel));
    fields.push_back({column.name, arrowFormat(column.type), arrowMetadata(entries)});
  }
  return fields;
}

/// Arrow's word for timestamps that begin with a measurement.
std::string timestampFormat(const StoredTime& start) {
  if (start.utc().empty()) {
    return "tsn:";
  }
  return "tsn:" + (start.zone().empty() ? "UTC" : start.zone());
}

std::int64_t nanosecondsOf(const StoredTime& start) {
  const auto nanoseconds = start.nanoseconds();
  if (!nanoseconds) {
    throw WrongQuery("the file does not state when it starts, so there are no timestamps");
  }
  return *nanoseconds;
}

/// When the seconds of a table's master channel began, in nanoseconds since 1970.
std::int64_t startOf(const StoredTime& start, const TableHead& head, const Query& query) {
  constexpr unsigned over_time = 1;
  const ColumnHead& master = head.columns.front();
  if (!head.has_master || master.channel->sync_type != over_time || !isNumber(master.type)) {
    throw WrongQuery("channel group " + shown(head) +
                     " has no master channel with times to be shown as timestamps");
  }
  if (query.raw && master.channel->conversion != 0) {
    throw WrongQuery("timestamps are made of physical values, not of \"raw\" ones");
  }
  return nanosecondsOf(start);
}

void handOver(std::unique_ptr<StreamOwner> owner, ArrowArrayStream& out) {
  out.get_schema = getSchema;
  out.get_next = getNext;
  out.get_last_error = getLastError;
  out.release = release;
  out.private_data = owner.release();
}

}  // namespace

void exportStream(const SharedFile& file, const QueryText& text, ArrowArrayStream& out) {
  const Measurement& measurement = file.measurement;
  const auto batches = std::make_shared<Batches>(measurement.read(text.query));
  const TableHead head = headOf(measurement, text.query, *batches);
  auto owner = std::make_unique<StreamOwner>(StreamOwner{
      file.turn, fieldsOf(measurement, head), [batches]() -> std::shared_ptr<const Batch> {
        return batches->next() == nullptr ? nullptr : batches->take();
      }});
  if (text.has_timestamps) {
    const StoredTime start = startTimeOf(measurement.header());
    owner->start = startOf(start, head, text.query);
    owner->fields.front().format = timestampFormat(start);
  }
  handOver(std::move(owner), out);
}

void exportFrames(const SharedFile& file, const QueryText& text, ArrowArrayStream& out) {
  const auto frames =
      std::make_shared<FrameBatches>(file.measurement.frames(text.query.from, text.query.to));
  if (frames->groups() == 0) {
    throw WrongQuery(no_frames);
  }
  std::vector<ArrowField> fields;
  for (const ColumnHead& column : frames->head().columns) {
    fields.push_back({column.name, arrowFormat(column.type),
                      column.unit.empty() ? "" : arrowMetadata({{"unit", column.unit}})});
  }
  auto owner = std::make_unique<StreamOwner>(
      StreamOwner{file.turn, std::move(fields),
                  [frames, rows = text.query.batch_rows] { return frames->next(rows); }});
  if (text.has_timestamps) {
    const StoredTime start = startTimeOf(file.measurement.header());
    owner->start = nanosecondsOf(start);
    owner->fields.front().format = timestampFormat(start);
  }
  handOver(std::move(owner), out);
}

}  // namespace mdf_reader
