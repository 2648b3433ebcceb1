#ifndef MDF_TOOLS_REPORTING_REPORT_H_
#define MDF_TOOLS_REPORTING_REPORT_H_

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "report_table.h"
#include "viewing/serving/embedded_files.h"

namespace mdf_tools {

/// A report that does not become as small as it has to be; what() is one sentence.
class ReportTooLarge : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a report shows at first.
struct ReportForm {
  std::string title;
  bool has_clock = false;  ///< the time of day instead of seconds
  bool has_steps = false;
};

/// Channels of files as one page that needs no server. Files come one after the other, tables
/// within each, and batches within these.
class Report {
 public:
  /// @param most bytes of the page; about eight times as many of memory.
  explicit Report(std::size_t most) : most_(most) {}

  void beginFile() { tables_.emplace_back(); }
  void beginTable(const TableHead& head);
  /// @throws ReportTooLarge
  void add(const Batch& batch);
  /// @param facts what is told of the file, but for its tables, as the server of the page does it.
  void endFile(Json facts);

  /// Whether there is no channel in it.
  bool isEmpty() const { return levels_.empty(); }

  /// Makes the page, with as much of the samples as there is room for.
  /// @param page its files as the server has them.
  /// @throws ReportTooLarge
  std::string write(const std::vector<EmbeddedFile>& page, const ReportForm& form);

 private:
  std::string tryToWrite(const std::vector<EmbeddedFile>& page, const ReportForm& form) const;
  [[noreturn]] void fail() const;

  std::size_t most_;
  Json facts_ = Json::array();  ///< of the files
  std::vector<std::vector<std::unique_ptr<ReportTable>>> tables_;
  std::vector<Levels*> levels_;     ///< of all tables
  std::vector<std::size_t> sizes_;  ///< of these, in memory
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_REPORTING_REPORT_H_
