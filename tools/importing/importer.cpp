#include "importer.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>

#include "csv_source.h"
#include "group_writer.h"
#include "json_source.h"
#include "kept_rows.h"
#include "log_import.h"
#include "reader/columns/unique_names.h"
#include "table_facts.h"

namespace mdf_tools {

namespace {

using Format = ImportOptions::Format;

constexpr std::size_t most_tables = 10'000;
constexpr std::size_t most_streams = 20'000;  // of records, and of long texts

Format formatOf(const std::string& path, LineReader& lines, const ImportOptions& options) {
  if (options.format != Format::found_out) {
    return options.format;
  }
  const std::string suffix = std::filesystem::path(path).extension().string();
  const bool is_json = suffix == ".jsonl" || suffix == ".ndjson" || suffix == ".json" ||
                       (suffix != ".csv" && lines.next() && lines.text().substr(0, 1) == "{");
  lines.goTo({});
  return is_json ? Format::json_lines : Format::csv;
}

/// An input file, which can be read twice.
class Input {
 public:
  Input(const std::string& path, LineReader& lines, const ImportOptions& options)
      : lines_(lines),
        format_(formatOf(path, lines_, options)),
        options_(options),
        stem_(path == "-" ? "stdin" : std::filesystem::path(path).stem().string()) {}

  /// What tables without a name are called.
  const std::string& stem() const { return stem_; }

  /// Begins with the first table, again.
  TableSource& begin() {
    lines_.goTo({});
    if (format_ == Format::json_lines) {
      source_ = std::make_unique<JsonSource>(lines_);
    } else {
      source_ = std::make_unique<CsvSource>(lines_, options_.separator, options_.has_decimal_comma);
    }
    return *source_;
  }

  /// Whether a table can go on at any of its lines: members of JSON bring columns.
  bool canGoOn() const { return format_ == Format::csv; }
  void goTo(const LineReader::Place& place) { lines_.goTo(place); }

  /// Does something with each row of a table, and counts the lines that cannot be taken.
  template <class Work>
  std::uint64_t forEachRow(Work work) {
    std::uint64_t bad_lines = 0;
    for (bool is_there = true; is_there;) {
      try {
        is_there = source_->nextRow(cells_);
        if (is_there) {
          work(cells_);
        }
      } catch (const BadLine& bad) {
        if (!options_.skips_bad_lines) {
          throw ImportFailure(lines_.name() + ": line " + std::to_string(bad.line) + ", column " +
                              std::to_string(bad.column) + ": " + bad.sentence);
        }
        ++bad_lines;
      }
    }
    return bad_lines;
  }

 private:
  LineReader& lines_;
  Format format_;
  const ImportOptions& options_;
  std::string stem_;
  std::unique_ptr<TableSource> source_;
  std::vector<Cell> cells_;
};

/// A table, and which of its rows are kept.
struct Table {
  TableFacts facts;
  std::size_t begin = 0;  ///< of those rows
  std::size_t end = 0;
  LineReader::Place rest{};  ///< after them
};

class Importer {
 public:
  Importer(const std::vector<std::string>& paths, std::deque<LineReader>& files,
           const ImportOptions& options, mdf_writer::Plan& plan)
      : options_(options), plan_(plan), kept_(options.kept_bytes) {
    for (std::size_t i = 0; i < paths.size(); ++i) {
      inputs_.emplace_back(paths[i], files[i], options);
    }
  }

  void findTypes() {
    for (Input& input : inputs_) {
      const std::size_t before = tables_.size();
      TableSource& source = input.begin();
      while (source.nextTable()) {
        findTypes(input, source);
      }
      if (tables_.size() == before) {
        throw ImportFailure(source.lines().name() + ": expected a table, found nothing");
      }
    }
    setStart();
  }

  Imported write(mdf_writer::Output& output) {
    mdf_writer::Recording recording(output, plan_, recordingOptions());
    auto table = tables_.begin();
    auto group = groups_.begin();
    for (Input& input : inputs_) {
      TableSource& source = input.begin();
      while (recording.good() && table != tables_.end() && source.nextTable()) {
        write(input, source, *table++, *group++, recording, output);
        ++imported_.tables;
      }
    }
    recording.finish();
    if (!recording.good()) {
      failToImport(recording, output);
    }
    return imported_;
  }

 private:
  void findTypes(Input& input, TableSource& source) {
    if (tables_.size() == most_tables) {
      throw ImportFailure(source.lines().name() + ": expected at most " +
                          std::to_string(most_tables) + " tables, found more");
    }
    Table& table = tables_.emplace_back(Table{TableFacts(options_)});
    findRows(input, source, table);
    table.facts.settle(source);
    if (table.facts.needsTexts()) {
      kept_.cut(table.begin);
      table.end = table.begin;
    }
    if (!table.facts.note().empty()) {
      imported_.notes.push_back(source.lines().name() + ": " + table.facts.note());
    }
    const std::string name = source.name().empty() ? names_.unique(input.stem()) : source.name();
    if (!mdf_writer::isUtf8(name)) {
      throw ImportFailure(source.lines().name() + ": expected a name of a table in UTF-8, found " +
                          shownText(name));
    }
    groups_.emplace_back(plan_, name, table.facts);
  }

  /// Looks at the rows, and keeps the first ones.
  void findRows(Input& input, const TableSource& source, Table& table) {
    bool is_kept = input.canGoOn();
    table.begin = kept_.size();
    imported_.bad_lines += input.forEachRow([&](const std::vector<Cell>& cells) {
      table.facts.add(source, cells);
      if (is_kept && !kept_.add(cells, table.facts.timeIndex())) {
        is_kept = false;
        table.rest = source.lines().place();
      }
    });
    table.end = kept_.size();
    if (is_kept) {
      table.rest = source.lines().place();
    }
  }

  /// The file starts with the first time that is a date, and at a time not known without dates.
  void setStart() {
    const TimeColumn* first = nullptr;
    for (Table& table : tables_) {
      const TimeColumn& time = table.facts.time();
      const bool is_first = time.hasStart() && (first == nullptr || time.start().nanoseconds <
                                                                        first->start().nanoseconds);
      first = is_first ? &time : first;
    }
    start_ = first == nullptr ? IsoTime() : first->start();
    plan_.start.nanoseconds = static_cast<std::uint64_t>(start_.nanoseconds);
    plan_.start.zone_minutes = static_cast<std::int16_t>(start_.zone_minutes);
    plan_.start.is_daylight_saving = false;
  }

  mdf_writer::Options recordingOptions() const {
    constexpr std::size_t for_all = std::size_t{1} << 26U;
    std::size_t streams = groups_.size();
    for (const GroupWriter& group : groups_) {
      streams += group.variableChannels();
    }
    if (streams > most_streams) {
      throw ImportFailure("expected at most " + std::to_string(most_streams) +
                          " columns of long texts, found more");
    }
    mdf_writer::Options options;
    options.block_bytes = for_all / std::max<std::size_t>(streams, 64);
    options.flush_interval = 0;
    return options;
  }

  void write(Input& input, const TableSource& source, const Table& table, GroupWriter& writer,
             mdf_writer::Recording& recording, const mdf_writer::Output& output) {
    const auto append = [&](const std::vector<Cell>& cells) {
      writer.set(source.lines().number(), cells, start_);
      if (!recording.append(writer.group())) {
        failToImport(recording, output);
      }
      ++imported_.rows;
    };
    std::vector<Cell> cells(source.columns().size());
    for (std::size_t at = table.begin; at != table.end;) {
      at = kept_.take(at, cells);
      append(cells);
    }
    if (table.begin != table.end) {
      input.goTo(table.rest);
    }
    input.forEachRow(append);
  }

  const ImportOptions& options_;
  mdf_writer::Plan& plan_;
  std::deque<Input> inputs_;
  std::deque<Table> tables_;
  std::deque<GroupWriter> groups_;
  KeptRows kept_;
  mdf_reader::UniqueNames names_;
  Imported imported_;
  IsoTime start_;
};

/// What the options say, or else the files themselves.
bool areLogs(std::deque<LineReader>& files, Format format) {
  if (format != Format::found_out) {
    return format == Format::candump || format == Format::capture;
  }
  const bool is_first = logFormOf(files.front()) != LogForm::none;
  for (LineReader& file : files) {
    if ((logFormOf(file) != LogForm::none) != is_first) {
      throw ImportFailure(file.name() + ": expected a " + (is_first ? "log" : "table") + ", as " +
                          files.front().name() + " is, found a " + (is_first ? "table" : "log"));
    }
  }
  return is_first;
}

}  // namespace

Imported importFiles(const std::vector<std::string>& paths, const ImportOptions& options,
                     mdf_writer::Plan& plan, mdf_writer::Output& output) {
  std::deque<LineReader> files;
  for (const std::string& path : paths) {
    files.emplace_back(path);
  }
  if (areLogs(files, options.format)) {
    return importLogs(files, options, plan, output);
  }
  Importer importer(paths, files, options, plan);
  importer.findTypes();
  return importer.write(output);
}

}  // namespace mdf_tools
