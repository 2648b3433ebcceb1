#include "plot_report.h"

#include <iostream>

#include "command.h"

#ifdef MDF_HAS_VIEWER

#include <algorithm>
#include <filesystem>

#include "file_command.h"
#include "picture_output.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"
#include "reader/model/attachments.h"
#include "reader/model/events.h"
#include "reader/summary/file_json.h"
#include "reader/summary/list_json.h"
#include "reader/summary/stored_time.h"
#include "reporting/report.h"
#include "sample_options.h"
#include "viewing/finding_json.h"
#endif

namespace mdf_tools {

namespace {

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

#ifdef MDF_HAS_VIEWER

/// An option of pictures that a page cannot follow; "" for none.
std::string unfitOption(const ChartOptions& chart) {
  return !chart.size.empty()    ? "--size"
         : chart.is_logarithmic ? "--log"
         : chart.has_points     ? "--points"
                                : "";
}

/// Adds a file to a report.
class FileReporter {
 public:
  FileReporter(const ReportRequest& request, const FileContext& context, Report& report)
      : request_(request), context_(context), report_(report) {}

  /// Returns the exit code.
  int add();

 private:
  Json describe(const Header& header);
  Json events(const Header& header);
  Json attachments(const Header& header);
  void take(const Finding& finding);

  const ReportRequest& request_;
  const FileContext& context_;
  Report& report_;
  Json findings_ = Json::array();
  const FindingSink sink_ = [this](const Finding& finding) { take(finding); };
  const NoteSink note_ = notesOf(context_);
};

void FileReporter::take(const Finding& finding) {
  constexpr std::size_t most_findings = 1000;
  if (findings_.size() < most_findings) {
    findings_.push_back(findingAsJson(finding));
  }
  context_.report(finding);
}

int FileReporter::add() {
  Query query = request_.query;
  query.numbers = false;
  Tables tables(context_.file, query, sink_, note_);
  const Header header = tables.header();
  if (request_.chart.hasDates() && !startTimeOf(header).nanoseconds()) {
    context_.say("the file does not say when it was begun; leave out --time iso");
    return exit_problem;
  }
  report_.beginFile();
  while (Table* const table = tables.next()) {
    report_.beginTable(table->head());
    while (const Batch* const batch = table->next()) {
      report_.add(*batch);
    }
  }
  const bool is_nothing = tables.count() == 0;
  report_.endFile(describe(header));
  if (is_nothing) {
    note_(nothingChosen(request_.query));
  }
  return is_nothing ? exit_problem : exit_fine;
}

Json FileReporter::events(const Header& header) {
  Json list = Json::array();
  if (!request_.chart.without_events) {
    Texts texts;
    for (const Event& event : readEvents(context_.file, header.first_event, texts, sink_)) {
      list.push_back(eventAsJson(event));
    }
  }
  return list;
}

Json FileReporter::attachments(const Header& header) {
  Json list = Json::array();
  Texts texts;
  for (const Attachment& attachment :
       readAttachments(context_.file, header.first_attachment, texts, sink_)) {
    list.push_back(attachmentAsJson(attachment));
  }
  return list;
}

/// Where the file lies is nothing for those that the report is sent to.
Json FileReporter::describe(const Header& header) {
  const auto start = startTimeOf(header).nanoseconds();
  Json info = fileAsJson(context_.file, Depth::records, [](const Finding& /*finding*/) {});
  info["file"] = std::filesystem::path(context_.file.name()).filename().string();
  Json json = {{"revision", 0},
               {"start", start ? Json(static_cast<double>(*start) / 1e9) : Json()},
               {"info", std::move(info)},
               {"events", events(header)},
               {"attachments", attachments(header)},
               {"has_frames", false}};
  json["findings"] = findings_;
  return json;
}

int write(const ReportRequest& request, Report& report) {
  const std::string title = request.chart.formFor("svg", request.paths).title;
  const ReportForm form{title, request.chart.hasDates(), request.chart.has_steps};
  return writePicture(request.output, [&] { return report.write(embeddedFiles(), form); });
}

int makeReport(const ReportRequest& request) {
  Report report(request.most);
  int exit_code = exit_fine;
  try {
    const int reading =
        onEachFile(request.paths, request.decoding, [&](const FileContext& context) {
          exit_code = std::max(exit_code, FileReporter(request, context, report).add());
        });
    exit_code = std::max(exit_code, reading);
    return report.isEmpty() ? std::max<int>(exit_code, exit_problem)
                            : std::max(exit_code, write(request, report));
  } catch (const ReportTooLarge& too_large) {
    return complain(too_large.what(), exit_problem);
  }
}

#else

int makeReport(const ReportRequest& /*request*/) {
  return complain(
      "this program was built without the page that a report is made of; "
      "end the output in .svg or .png",
      exit_unusable);
}

std::string unfitOption(const ChartOptions& /*chart*/) { return ""; }

#endif

}  // namespace

int writeReport(const ReportRequest& request) {
  const std::string unfit = unfitOption(request.chart);
  return unfit.empty()
             ? makeReport(request)
             : complain(unfit + " is for pictures; a report has no such form", exit_unusable);
}

}  // namespace mdf_tools
