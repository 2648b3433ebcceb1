#include "row_choice.h"

#include <set>
#include <string>

#include "copy_failure.h"
#include "reader/bytes/input_file.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// A pattern that matches this name alone.
std::string patternOf(std::string_view name) {
  std::string pattern;
  for (const char character : name) {
    pattern += std::string_view("*?[\\").find(character) == std::string_view::npos ? "" : "\\";
    pattern += character;
  }
  return pattern;
}

/// Patterns that give each group a table of few columns; none, for all columns, where those would
/// be very many patterns.
std::vector<std::string> patternsFor(InputFile& file) {
  constexpr std::size_t most = 64;
  const FindingSink silent = [](const Finding& /*finding*/) {};
  const Description description = readDescription(file, silent);
  std::set<std::string> patterns;
  for (const DataGroup& data_group : description.data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      const Channel* const master = group.masterChannel();
      if (!group.channels.empty()) {
        patterns.insert(patternOf(master == nullptr ? group.channels[0].name : master->name));
      }
    }
  }
  return patterns.size() > most ? std::vector<std::string>()
                                : std::vector<std::string>(patterns.begin(), patterns.end());
}

}  // namespace

RowChoice::RowChoice(InputFile& file, const Query& limits, const FindingSink& report,
                     const NoteSink& note) {
  Query query = limits;
  query.channels = patternsFor(file);
  const NoteSink without_patterns = [&](const std::string& sentence) {
    if (sentence.rfind("no channel matches", 0) != 0) {
      note(sentence);
    }
  };
  Tables tables(file, query, report, without_patterns);
  while (Table* const table = tables.next()) {
    std::vector<Rows>& rows = rows_[table->group().offset];
    while (const Batch* const batch = table->next()) {
      add(rows, *batch);
    }
  }
}

void RowChoice::add(std::vector<Rows>& rows, const Batch& batch) {
  constexpr std::size_t most_pieces = std::size_t{1} << 21U;
  const std::uint64_t begin = batch.record(0);
  if (rows.empty() || rows.back().end != begin) {
    if (++pieces_ > most_pieces) {
      throw CopyFailure("its times go back and forth across --from or --to too often");
    }
    rows.push_back({begin, begin});
  }
  rows.back().end += batch.rows();
}

const std::vector<Rows>& RowChoice::of(std::uint64_t group) const {
  static const std::vector<Rows> none;
  const auto rows = rows_.find(group);
  return rows == rows_.end() ? none : rows->second;
}

}  // namespace mdf_tools
