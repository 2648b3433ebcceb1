#include "viewed_file.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include "checking/file_check.h"
#include "finding_json.h"
#include "printing/table_writers.h"
#include "reader/bytes/input_file.h"
#include "reader/summary/file_json.h"
#include "reader/summary/json.h"
#include "reader/summary/list_json.h"
#include "reader/summary/stored_time.h"

namespace mdf_tools {

namespace {

constexpr std::size_t most_findings = 1000;
constexpr std::size_t most_csv_bytes = std::size_t{64} << 20U;

Json tableAsJson(const ViewedTable& table) {
  Json json = {{"group", table.group},
               {"element", table.element ? Json(*table.element) : Json()},
               {"name", table.name},
               {"has_master", table.has_master}};
  Json columns = Json::array();
  for (const ViewedColumn& column : table.columns) {
    columns.push_back(
        {{"name", column.name}, {"unit", column.unit}, {"text", !isNumber(column.type)}});
  }
  json["columns"] = std::move(columns);
  return json;
}

Json cellAsJson(const ColumnData& column, std::size_t row) {
  if (!column.isValid(row)) {
    return {};
  }
  std::string text;
  column.print(row, text);
  return text;
}

/// The records whose numbers are between two others, both included.
void chooseRecords(double from, double to, Query& query) {
  constexpr double most = 9e18;
  const double first = std::ceil(std::clamp(from, 0.0, most));
  const double end = std::floor(std::clamp(to, -1.0, most)) + 1;
  query.skip = static_cast<std::uint64_t>(first);
  query.first = end > first ? static_cast<std::uint64_t>(end - first) : 0;
}

template <class Entry>
Json listAsJson(const std::vector<Entry>& entries, Json (*asJson)(const Entry& entry)) {
  Json list = Json::array();
  for (const Entry& entry : entries) {
    list.push_back(asJson(entry));
  }
  return list;
}

}  // namespace

ViewedFile::ViewedFile(std::string path, std::size_t number, SeriesStore& store,
                       OutlineCache* cache)
    : path_(std::move(path)), number_(number), store_(store), cache_(cache) {
  open();
}

void ViewedFile::open() {
  const FileStamp stamp = FileStamp::of(path_);
  auto file = std::make_unique<Measurement>(path_);
  tables_ = tablesOf(*file);
  file_ = std::move(file);
  stamp_ = stamp;
  is_at_rest_ = stamp.isAtRest() && FileStamp::of(path_) == stamp;
  description_.clear();
}

/// A file that cannot be read just now stays as it was.
std::size_t ViewedFile::refresh() {
  const std::lock_guard<std::mutex> lock(mutex_);
  const FileStamp before = stamp_;
  if (FileStamp::of(path_) == before) {
    return revision_;
  }
  try {
    open();
    ++revision_;
    if (!is_continued_ || !stamp_.continues(before)) {
      store_.forget(number_);
    }
    is_continued_ = true;
  } catch (const Unreadable&) {
    stamp_ = FileStamp::of(path_);
    is_continued_ = false;
    is_at_rest_ = false;  // what is kept is of an earlier state
  }
  return revision_;
}

Json ViewedFile::tablesAsJson() const {
  Json list = Json::array();
  for (const ViewedTable& table : tables_) {
    list.push_back(tableAsJson(table));
  }
  return list;
}

Json ViewedFile::facts() {
  InputFile file(path_);
  if (!file.problem().empty()) {
    throw WrongRequest(file.problem());
  }
  return fileAsJson(file, Depth::records, [](const Finding& /*finding*/) {});
}

std::string ViewedFile::describe() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!description_.empty()) {
    return description_;
  }
  const auto start = startTimeOf(file_->header()).nanoseconds();
  Json json = {{"revision", revision_},
               {"start", start ? Json(static_cast<double>(*start) / 1e9) : Json()},
               {"info", facts()},
               {"tables", tablesAsJson()},
               {"events", listAsJson(file_->events(), eventAsJson)},
               {"attachments", listAsJson(file_->attachments(), attachmentAsJson)},
               {"has_frames", file_->frames(std::nullopt, std::nullopt).groups() > 0},
               {"findings", listAsJson(file_->findings(), findingAsJson)}};
  std::string description = jsonLine(json);
  if (FileStamp::of(path_) == stamp_) {
    description_ = description;
  }
  return description;
}

/// One check at a time goes through the file, beside what else is asked for.
Json ViewedFile::findings() {
  const std::lock_guard<std::mutex> lock(checking_);
  InputFile file(path_);
  Json list = Json::array();
  std::uint64_t count = 0;
  checkFile(file, [&](const Finding& finding) {
    if (++count <= most_findings) {
      list.push_back(findingAsJson(finding));
    }
  });
  return {{"count", count}, {"findings", std::move(list)}};
}

const ViewedColumn& ViewedFile::column(std::size_t table, std::size_t column) const {
  if (table >= tables_.size() || column >= tables_[table].columns.size()) {
    throw WrongRequest("the file has no such column");
  }
  return tables_[table].columns[column];
}

Json ViewedFile::describeColumn(std::size_t table, std::size_t column) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const ViewedColumn& wanted = this->column(table, column);
  const ChannelGroup& group = file_->groups()[tables_[table].group];
  Json json = {{"name", wanted.name}, {"unit", wanted.unit}, {"offset", wanted.channel}};
  const auto is_it = [&](const Channel& each) { return each.offset == wanted.channel; };
  const auto channel = std::find_if(group.channels.begin(), group.channels.end(), is_it);
  if (channel != group.channels.end()) {
    json["comment"] = channel->comment;
    json["conversion"] = file_->describeConversion(*channel);
    json["bits"] = channel->bit_count;
  }
  return json;
}

/// All that values of a column are made from, but the records.
std::string ViewedFile::identityOf(std::size_t table, std::size_t column) const {
  const ViewedTable& wanted = tables_[table];
  Json identity = {file_->header().start_time, wanted.name, wanted.group,
                   wanted.element ? Json(*wanted.element) : Json(), wanted.has_master};
  for (const std::size_t index : {std::size_t{0}, column}) {
    const ViewedColumn& each = wanted.columns[index];
    identity.push_back({each.name, each.unit, each.type, each.channel, each.part});
    for (const ChannelGroup& group : file_->groups()) {
      const auto is_it = [&](const Channel& channel) { return channel.offset == each.channel; };
      const auto found = std::find_if(group.channels.begin(), group.channels.end(), is_it);
      if (found != group.channels.end()) {
        identity.push_back({found->type, found->sync_type, found->data_type, found->bit_offset,
                            found->byte_offset, found->bit_count, found->flags,
                            found->invalidation_bit, file_->describeConversion(*found)});
        break;
      }
    }
  }
  return jsonLine(identity);
}

std::shared_ptr<KeptSeries> ViewedFile::build(std::size_t table, std::size_t column) {
  const auto source = [this, table, column](const SampleRange& range, const SampleVisitor& visit) {
    readSamples(*file_, tables_[table], tables_[table].columns[column], range, visit);
  };
  const ColumnType type = tables_[table].columns[column].type;
  const std::string identity = identityOf(table, column);
  std::optional<Outline> cached;
  if (cache_ != nullptr && is_at_rest_) {
    cached = cache_->find(place(table, column), cacheKey(identity));
  }
  return std::make_shared<KeptSeries>(
      KeptSeries{cached ? Series(source, type, std::move(*cached)) : Series(source, type), identity,
                 revision_, cached.has_value()});
}

std::string ViewedFile::place(std::size_t table, std::size_t column) const {
  return jsonLine({std::filesystem::absolute(path_).string(), table, column});
}

std::string ViewedFile::cacheKey(const std::string& identity) const {
  return jsonLine({std::filesystem::absolute(path_).string(), stamp_.device, stamp_.inode,
                   stamp_.size, stamp_.time, stamp_.changed, identity});
}

/// A file that was changed shortly before it was opened may have been changed since without its
/// time telling.
void ViewedFile::cache(const SeriesKey& key, KeptSeries& kept) {
  if (cache_ == nullptr || kept.is_cached || !is_at_rest_ || !(FileStamp::of(path_) == stamp_)) {
    return;
  }
  cache_->add(place(key.table, key.column), cacheKey(kept.identity), kept.series.outline());
  kept.is_cached = true;
}

std::shared_ptr<KeptSeries> ViewedFile::upToDate(std::size_t table, std::size_t column) {
  const SeriesKey key{number_, table, column};
  std::shared_ptr<KeptSeries> kept = store_.find(key);
  if (kept != nullptr && kept->revision == revision_) {
    return kept;
  }
  store_.forget(key);
  const bool goes_on =
      kept != nullptr && kept->identity == identityOf(table, column) && kept->series.goOn();
  if (goes_on) {
    kept->revision = revision_;
    kept->is_cached = false;
  } else {
    kept = build(table, column);
  }
  store_.add(key, kept);
  return kept;
}

void ViewedFile::withSeries(std::size_t table, std::size_t column,
                            const std::function<void(Series& series)>& use) {
  const std::lock_guard<std::mutex> lock(mutex_);
  this->column(table, column);
  const std::shared_ptr<KeptSeries> kept = upToDate(table, column);
  use(kept->series);
  cache({number_, table, column}, *kept);
}

Json ViewedFile::frames(std::optional<double> from, std::size_t most) {
  const std::lock_guard<std::mutex> lock(mutex_);
  FrameBatches frames = file_->frames(from, std::nullopt);
  Json names = Json::array();
  for (const ColumnHead& column : frames.head().columns) {
    names.push_back(column.name);
  }
  Json rows = Json::array();
  if (const auto batch = frames.next(most)) {
    for (std::size_t row = 0; row < batch->rows(); ++row) {
      Json cells = Json::array();
      for (std::size_t i = 0; i < batch->columnCount(); ++i) {
        cells.push_back(cellAsJson(batch->column(i), row));
      }
      rows.push_back(std::move(cells));
    }
  }
  return {{"columns", std::move(names)}, {"rows", std::move(rows)}};
}

std::string ViewedFile::csv(const CsvRequest& request) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Query query;
  for (const std::size_t index : request.columns) {
    query.channels.push_back(column(request.table, index).pattern);
  }
  const ViewedTable& table = tables_[request.table];
  query.group = std::to_string(table.group);
  query.element = table.element;
  if (table.has_master) {
    query.from = request.from;
    query.to = request.to;
  } else {
    chooseRecords(request.from, request.to, query);
  }
  std::string text;
  CsvWriter writer;
  Batches batches = file_->read(query);
  for (const TableHead& head : batches.heads()) {
    writer.begin(head, text);
  }
  while (const Batch* const batch = batches.next()) {
    writer.addRows(*batch, 0, batch->rows(), text);
    if (text.size() > most_csv_bytes) {
      throw WrongRequest("these are too many samples for the browser; zoom in, or use mdf export");
    }
  }
  return text;
}

}  // namespace mdf_tools
