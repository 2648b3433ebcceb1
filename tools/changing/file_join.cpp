#include "file_join.h"

#include <algorithm>
#include <deque>
#include <numeric>
#include <utility>

#include "copy_failure.h"
#include "group_matching.h"
#include "join_input.h"
#include "joined_data.h"
#include "joined_lists.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "reader/summary/stored_time.h"

namespace mdf_tools {

namespace {

/// A file, and when it says that it began.
struct Start {
  FileToJoin file;
  bool is_local = false;
  std::optional<std::int64_t> time = std::nullopt;  ///< nanoseconds since 1970
};

Start startOf(const FileToJoin& file) {
  const auto block = readFields(*file.file, header_block_offset, "HD");
  Start start{file};
  if (block) {
    const auto flags = static_cast<unsigned>(block->number("hd_time_flags"));
    const StoredTime time(block->number("hd_start_time_ns"), 0, 0, flags);
    start.is_local = (flags & Header::is_local_time) != 0;
    start.time = time.isUnset() ? std::nullopt : time.nanoseconds();
  }
  return start;
}

/// The files in the order in which they are joined.
std::vector<Start> inOrder(const std::vector<FileToJoin>& files, bool keeps_order,
                           const NoteSink& note) {
  std::vector<Start> starts;
  for (const FileToJoin& file : files) {
    starts.push_back(startOf(file));
    const Start& start = starts.back();
    if (start.time && starts.front().time && start.is_local != starts.front().is_local) {
      const auto words = [](const Start& each) {
        return "that of " + each.file.name + (each.is_local ? " is a local time" : " is in UTC");
      };
      throw CopyFailure("the start times cannot be compared: " + words(starts.front()) + ", " +
                        words(start));
    }
  }
  const bool are_known =
      std::all_of(starts.begin(), starts.end(), [](const Start& start) { return start.time; });
  const auto is_earlier = [](const Start& left, const Start& right) {
    return *left.time < *right.time;
  };
  if (are_known && !keeps_order && !std::is_sorted(starts.begin(), starts.end(), is_earlier)) {
    std::stable_sort(starts.begin(), starts.end(), is_earlier);
    std::string names;
    for (const Start& start : starts) {
      names += (names.empty() ? "" : ", ") + start.file.name;
    }
    note("the files are put in the order of their start times: " + names);
  }
  return starts;
}

/// Joins files once.
class Join {
 public:
  Join(const std::vector<Start>& starts, const std::deque<EachOnce>& reports,
       const JoinOptions& options, JoinSummary& summary);

  /// @param is_wide see GroupChange.
  void write(mdf_writer::Output& output, bool is_wide);

 private:
  std::string identification();
  void summarise();
  void summarise(std::size_t file, std::optional<double>& end);

  const JoinOptions& options_;
  JoinSummary& summary_;
  NoteSink note_;
  JoinInputs inputs_;
  std::vector<JoinedGroup> groups_;
};

Join::Join(const std::vector<Start>& starts, const std::deque<EachOnce>& reports,
           const JoinOptions& options, JoinSummary& summary)
    : options_(options),
      summary_(summary),
      note_([&summary](const std::string& sentence) { summary.notes.push_back(sentence); }) {
  const auto& first = starts.front().time;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const FileToJoin& file = starts[i].file;
    JoinInput& input = inputs_.emplace_back(*file.file, file.name, reports[i].sink());
    if (first && starts[i].time) {
      input.later = *starts[i].time - *first;
    } else if (first || starts[i].time) {
      note_(file.name + " and " + starts.front().file.name +
            " do not both state when they began: the times of " + file.name + " stay as they are");
    }
  }
}

void Join::write(mdf_writer::Output& output, bool is_wide) {
  for (std::vector<GroupSource>& sources : matchGroups(inputs_, options_.side_by_side, note_)) {
    JoinedGroup& joined = groups_.emplace_back();
    joined.sources = std::move(sources);
  }
  JoinedData data(inputs_, groups_, options_.form, note_);
  data.plan(is_wide);
  JoinedLists lists(inputs_);
  lists.plan(!options_.side_by_side, note_);
  NewBlocks out(output);
  out.add(identification());
  for (std::size_t file = 0; file < inputs_.size(); ++file) {
    inputs_[file].blocks.choose(file == 0);
    inputs_[file].blocks.place(out);
  }
  BlockWriter block_writer(out, options_.form.value_or(DataForm()));
  data.write(block_writer);
  data.link(out);
  lists.link(writeHistory(options_.history, out));
  for (JoinInput& input : inputs_) {
    input.blocks.write(out);
  }
  out.flush();
  summarise();
}

/// That of the file with the latest version.
std::string Join::identification() {
  InputFile* latest = &inputs_.front().file;
  for (JoinInput& input : inputs_) {
    if (readIdentification(input.file).version > readIdentification(*latest).version) {
      latest = &input.file;
    }
  }
  return identificationOf(*latest);
}

void Join::summarise() {
  for (const JoinedGroup& joined : groups_) {
    const GroupSource& home = joined.sources.front();
    summary_.groups.push_back(
        {std::string(home.group->shownName()), joined.sources.size(), joined.records()});
  }
  std::optional<double> end;
  for (std::size_t file = 0; file < inputs_.size(); ++file) {
    summarise(file, end);
  }
}

/// @param end of the files before; then of this one, too.
void Join::summarise(std::size_t file, std::optional<double>& end) {
  JoinSummary::File summary{inputs_[file].name, inputs_[file].secondsLater()};
  for (const JoinedGroup& joined : groups_) {
    for (std::size_t i = 0; i < joined.sources.size(); ++i) {
      const JoinedPart& part = joined.parts[i];
      if (joined.sources[i].file != file) {
        continue;
      }
      summary.records += part.records;
      if (part.first && part.last) {
        summary.first = std::min(*part.first, summary.first.value_or(*part.first));
        summary.last = std::max(*part.last, summary.last.value_or(*part.last));
      }
    }
  }
  if (summary.first && end && !options_.side_by_side) {
    summary.gap = *summary.first - *end;
  }
  if (summary.last) {
    end = std::max(*summary.last, end.value_or(*summary.last));
  }
  summary_.files.push_back(summary);
}

}  // namespace

std::uint64_t JoinSummary::records() const {
  return std::accumulate(files.begin(), files.end(), std::uint64_t{0},
                         [](std::uint64_t sum, const File& file) { return sum + file.records; });
}

JoinSummary joinFiles(const std::vector<FileToJoin>& files, const JoinOptions& options,
                      mdf_writer::Output& output) {
  JoinSummary summary;
  const std::vector<Start> starts =
      inOrder(files, options.keeps_order,
              [&](const std::string& sentence) { summary.notes.push_back(sentence); });
  std::deque<EachOnce> reports;
  for (const Start& start : starts) {
    reports.emplace_back(*start.file.report);
  }
  const JoinSummary before = summary;
  try {
    Join(starts, reports, options, summary).write(output, false);
  } catch (const TooNarrow&) {
    summary = before;
    output.cut(0);
    try {
      Join(starts, reports, options, summary).write(output, true);
    } catch (const TooNarrow&) {
      throw CopyFailure("the times of the files are too far apart");
    }
  }
  return summary;
}

}  // namespace mdf_tools
