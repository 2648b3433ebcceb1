#include "log_import.h"

#include <memory>
#include <optional>
#include <string>

#include "bus/bus_group.h"

namespace mdf_tools {

namespace {

LogForm formOf(LineReader& file, const ImportOptions& options) {
  using Format = ImportOptions::Format;
  return options.format == Format::candump   ? LogForm::candump
         : options.format == Format::capture ? LogForm::capture
                                             : logFormOf(file);
}

class LogImport {
 public:
  LogImport(const ImportOptions& options, mdf_writer::Plan& plan, mdf_writer::Output& output)
      : options_(options), plan_(plan), output_(output) {}

  void take(LineReader& file) {
    const std::unique_ptr<LogSource> log = readLog(formOf(file, options_), file);
    for (bool is_there = true; is_there;) {
      try {
        const LoggedFrame* const logged = log->next();
        is_there = logged != nullptr;
        if (is_there) {
          append(*logged);
        }
      } catch (const UnfitFrame& unfit) {
        refuse(file, *log, unfit);
      }
    }
  }

  Imported finish() {
    if (!recording_) {
      throw ImportFailure("expected a log with frames, found none");
    }
    if (!recording_->finish()) {
      failToImport(*recording_, output_);
    }
    imported_.buses = kinds_.buses();
    return imported_;
  }

 private:
  void refuse(const LineReader& file, const LogSource& log, const UnfitFrame& unfit) {
    if (!options_.skips_bad_lines) {
      throw ImportFailure(
          file.name() + ": " + log.place() +
          (unfit.column > 0 ? ", column " + std::to_string(unfit.column) : std::string()) + ": " +
          unfit.sentence);
    }
    ++imported_.bad_lines;
  }

  /// A group comes into the file with its first frame: only the log's end knows all of them.
  void append(const LoggedFrame& logged) {
    const auto index = kinds_.indexOf(logged.frame);
    if (!index) {
      throw UnfitFrame{0, "expected frames of at most 256 buses, found more"};
    }
    if (!recording_) {
      begin(logged.nanoseconds);
    }
    if (*index == groups_.size()) {
      groups_.emplace_back(plan_, kinds_.all()[*index]);
      require(recording_->addGroup(groups_.back().group()));
    }
    BusGroup& group = groups_[*index];
    group.set(logged.frame, static_cast<std::uint16_t>(imported_.frames));
    require(recording_->append(group.group(), logged.nanoseconds - begin_));
    ++imported_.frames;
  }

  void begin(std::int64_t nanoseconds) {
    begin_ = startOfLog(nanoseconds);
    plan_.start = {static_cast<std::uint64_t>(begin_), 0, false};
    mdf_writer::Options options;
    options.flush_interval = 0;
    recording_.emplace(output_, plan_, options);
    require(recording_->good());
  }

  void require(bool success) const {
    if (!success) {
      failToImport(*recording_, output_);
    }
  }

  const ImportOptions& options_;
  mdf_writer::Plan& plan_;
  mdf_writer::Output& output_;
  BusGroupKinds kinds_;
  std::deque<BusGroup> groups_;
  std::optional<mdf_writer::Recording> recording_;
  std::int64_t begin_ = 0;
  Imported imported_;
};

}  // namespace

Imported importLogs(std::deque<LineReader>& files, const ImportOptions& options,
                    mdf_writer::Plan& plan, mdf_writer::Output& output) {
  LogImport import(options, plan, output);
  for (LineReader& file : files) {
    import.take(file);
  }
  return import.finish();
}

}  // namespace mdf_tools
