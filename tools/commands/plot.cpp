#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "chart_options.h"
#include "command.h"
#include "command_line/command_line.h"
#include "decoding_option.h"
#include "file_command.h"
#include "number_option.h"
#include "picture_output.h"
#include "pictures/chart.h"
#include "pictures/drawing_program.h"
#include "plot_report.h"
#include "printing/json_output.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/printable.h"
#include "reader/model/events.h"
#include "sample_options.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"TXT(Draws channels over the master channel of their channel group, mostly time, in a panel for each unit.
A panel has up to 12 channels, further ones of its unit go into further panels; a picture has up to 64.
The legend stands below each panel, and the picture grows with it. Channels of the same name have
their groups in front: "engine.speed", or "4.speed" in the group of that number.

Units get the prefix that makes numbers short: 25000000 KiB are drawn as 25 GB. Those that take none,
such as rpm, get a power of ten where the numbers are long. Whole numbers without a unit, such as states,
are drawn as steps, or as points where lines would fill the panel, as with identifiers; --lines,
--steps and --points choose for all. Invalid samples are gaps. However many samples there are, a picture
keeps the lowest and the highest value in each of its columns. Text values are drawn as the numbers
that stand for them in the file. Channels without a sample that is a number are left out. With --log,
so are values that are not above 0.

Events are lines with their names above the first panel, ranges are shaded. They stand in panels over
what they are stated for: time, angle, distance or index. With --size, names of events and then
the legend are left out where the panels would have no room.

With a file that ends in .html, the channels become one page for mail and archives: it has what mdf view
shows, and opens in a browser without a server and without a network. Each sample is in it as long as that
takes no more than --max-size; else, of so many samples each, the lowest, highest, first and last value,
the mean and the deviation, which the page says. Texts are bands. Of options for pictures,
--title, --steps, --lines, --time and --no-events hold for it. It is made in memory, of about eight times
its size.

For pictures, gnuplot does the drawing and must be installed. With --json, standard output gets the
points that a picture would keep, {"schema":1,"curves":[{"name":...,"unit":...,"over":...,"points":[[x,y],...]}]}
with null for each gap.

Examples:
  mdf plot trip.mf4 -c 'speed*' rpm -o trip.svg
  mdf plot trip.mf4 -c cpu_total --from 10 --to 20 -o cpu.png
  mdf plot trip.mf4 -c speed --time iso --title 'Test drive' --size 1600x600 -o drive.png
  mdf plot trip.mf4 -c 'noise*' --log --no-events -o noise.svg
  mdf plot trip.mf4 -c gear --steps -o gear.svg
  mdf plot monday.mf4 tuesday.mf4 -c speed -o both.svg      the same channel of two files
  mdf plot trip.mf4 -c 'speed*' rpm -o trip.html            a page to send
  mdf plot trip.mf4 -c '*' -o all.html --max-size 5         of 5 MB at most
  mdf plot trip.mf4 -c speed -o - --format ascii            in the terminal
  mdf plot trip.mf4 -c speed --json | jq '.curves[0].points[0]'

Exit code: 0 fine, 1 problems found in the file or no picture, 2 wrong arguments or unreadable file.)TXT";

struct Request {
  std::vector<std::string> paths;
  std::shared_ptr<Query> query;
  std::shared_ptr<DecodingRequest> decoding;
  std::shared_ptr<ChartOptions> chart;
  std::string output = "-";
  std::string format;
  bool is_json = false;
  std::optional<std::uint64_t> max_size;  ///< of a report, in MB
};

/// What is drawn.
struct Contents {
  std::vector<Curve> curves;
  std::vector<EventMark> marks;
};

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

void say(const std::string& note) { std::cerr << "mdf: note: " << note << '\n'; }

/// The format asked for by name or by the output's suffix; "" for none.
std::string formatOf(const Request& request) {
  if (!request.format.empty()) {
    return request.format;
  }
  const std::string ending = std::filesystem::path(request.output).extension().string();
  if (ending == ".svg" || ending == ".png" || ending == ".html") {
    return ending.substr(1);
  }
  return request.output == "-" ? "ascii" : "";
}

/// Collects what is drawn of a file.
class FileCollector {
 public:
  FileCollector(const Request& request, const FileContext& context, std::size_t width,
                Contents& contents)
      : request_(request), context_(context), width_(width), contents_(contents) {}

  /// Returns the exit code.
  int collect();

 private:
  void addCurves(Tables& tables, const CurveSource& source);
  void addMarks(const Header& header, const CurveSource& source);
  void noteLeftOut(const CurveCollector& collector) const;

  const Request& request_;
  const FileContext& context_;
  std::size_t width_;
  Contents& contents_;
  NoteSink note_ = notesOf(context_);
};

int FileCollector::collect() {
  const std::string& name = context_.file.name();
  CurveSource source;
  source.file = name;
  source.prefix =
      context_.is_one_of_several ? std::filesystem::path(name).filename().string() + ": " : "";
  Tables tables(context_.file, *request_.query, context_.report, note_);
  if (request_.chart->hasDates()) {
    source.clock = wallClockOf(tables.header());
    if (!source.clock) {
      context_.say("the file does not say when it was begun; draw it without --time iso");
      return exit_problem;
    }
  }
  addCurves(tables, source);
  if (tables.count() == 0) {
    note_(nothingChosen(*request_.query));
    return exit_problem;
  }
  if (!request_.is_json && !request_.chart->without_events) {
    addMarks(tables.header(), source);
  }
  return exit_fine;
}

void FileCollector::addCurves(Tables& tables, const CurveSource& source) {
  CurveCollector collector(contents_.curves, width_, source, request_.chart->is_logarithmic);
  while (Table* const table = tables.next()) {
    collector.begin(table->head());
    const Batch* batch = table->next();
    while (batch != nullptr && collector.take(*batch)) {
      batch = table->next();
    }
  }
  noteLeftOut(collector);
}

void FileCollector::noteLeftOut(const CurveCollector& collector) const {
  if (collector.leftOut() > 0) {
    note_("a picture has room for " + std::to_string(CurveCollector::most_curves) + " channels; " +
          std::to_string(collector.leftOut()) + " more are left out");
  }
  if (collector.notAboveZero() > 0) {
    note_("a logarithmic axis begins above 0; values left out: " +
          std::to_string(collector.notAboveZero()));
  }
}

void FileCollector::addMarks(const Header& header, const CurveSource& source) {
  constexpr std::size_t most = 200;
  constexpr unsigned in_seconds = 1;
  Texts texts;
  std::vector<EventMark> marks =
      marksOf(readEvents(context_.file, header.first_event, texts, context_.report), source.prefix);
  if (marks.size() > most) {
    note_("a picture has room for " + std::to_string(most) + " events; " +
          std::to_string(marks.size() - most) + " more are left out");
    marks.resize(most);
  }
  for (EventMark& mark : marks) {
    if (source.clock && mark.axis == in_seconds) {
      mark.from += source.clock->start;
      mark.to += source.clock->start;
      mark.zone = source.clock->zone;
    }
    contents_.marks.push_back(std::move(mark));
  }
}

/// Collects what is drawn of all files; returns the exit code.
int collect(const Request& request, std::size_t width, Contents& contents) {
  int exit_code = exit_fine;
  const int reading = onEachFile(request.paths, *request.decoding, [&](const FileContext& context) {
    exit_code = std::max(exit_code, FileCollector(request, context, width, contents).collect());
  });
  return std::max(exit_code, reading);
}

Json pointsAsJson(const std::vector<Point>& points) {
  Json array = Json::array();
  for (const Point& point : points) {
    array.push_back(std::isnan(point.y) ? Json() : Json::array({point.x, point.y}));
  }
  return array;
}

int printJson(const Request& request) {
  Contents contents;
  const int exit_code = collect(request, ChartForm().width, contents);
  if (exit_code == exit_unusable && contents.curves.empty()) {
    return exit_code;
  }
  Json array = Json::array();
  for (const Curve& curve : contents.curves) {
    array.push_back({{"file", curve.file},
                     {"name", curve.channel},
                     {"unit", curve.unit},
                     {"over", curve.x_label},
                     {"points", pointsAsJson(curve.points.points())}});
  }
  const Json document = {{"schema", json_schema}, {"curves", std::move(array)}};
  return std::max(exit_code, printToOutput(jsonLine(document) + '\n'));
}

/// The first of some names, and how many more there are.
std::string listed(const std::vector<std::string>& names) {
  constexpr std::size_t most = 5;
  std::string text;
  for (std::size_t i = 0; i < std::min(names.size(), most); ++i) {
    text += (i == 0 ? "" : ", ") + printable(names[i], Harmless::utf8);
  }
  return names.size() <= most ? text
                              : text + " and " + std::to_string(names.size() - most) + " more";
}

/// Leaves out curves without a point, unless that would be all.
void leaveOutEmpty(std::vector<Curve>& curves) {
  const auto end = std::stable_partition(curves.begin(), curves.end(), hasNumbers);
  if (end == curves.begin()) {
    say("nothing to draw: none of the chosen samples is a number");
    return;
  }
  std::vector<std::string> names;
  std::transform(end, curves.end(), std::back_inserter(names),
                 [](const Curve& curve) { return curve.name; });
  if (!names.empty()) {
    say("left out, without a sample that is a number: " + listed(names));
    curves.erase(end, curves.end());
  }
}

std::string pictureOf(const Contents& contents, const ChartForm& form) {
  const ChartScript script = gnuplotScript(contents.curves, form, contents.marks);
  std::for_each(script.notes.begin(), script.notes.end(), say);
  // Without the user's own settings.
  return drawnBy({{"gnuplot", "-d"}, "install gnuplot"}, script.text);
}

int drawPicture(const Request& request) {
  const std::string format = formatOf(request);
  if (format.empty()) {
    return complain("cannot tell the picture's format from " + request.output +
                        "; end it in .svg, .png or .html, or add --format",
                    exit_unusable);
  }
  if (isOneOf(request.paths, request.output)) {
    return complain("the output " + request.output + " is one of the files to read", exit_unusable);
  }
  if (format == "html") {
    constexpr std::uint64_t usual_size = 20;
    return writeReport({request.paths, *request.query, *request.decoding, *request.chart,
                        request.output,
                        static_cast<std::size_t>(request.max_size.value_or(usual_size)) * 1000000});
  }
  if (request.max_size) {
    return complain("--max-size is for reports; end OUT in .html", exit_unusable);
  }
  if (format == "png" && request.output == "-" && outputIsTerminal()) {
    return complain("a terminal cannot show PNG; name a file with -o", exit_unusable);
  }
  const ChartForm form = request.chart->formFor(format, request.paths);
  Contents contents;
  const int exit_code = collect(request, form.width, contents);
  if (contents.curves.empty()) {
    return std::max<int>(exit_code, exit_problem);
  }
  tellApart(contents.curves);
  leaveOutEmpty(contents.curves);
  const int drawing = writePicture(request.output, [&] { return pictureOf(contents, form); });
  return std::max(exit_code, drawing);
}

int run(const Request& request) {
  return request.is_json ? printJson(request) : drawPicture(request);
}

}  // namespace

void addPlotCommand(CommandLine& program) {
  CommandLine command = program.addCommand("plot", "Draw channels over time");
  const auto request = std::make_shared<Request>();
  command.addOption("FILE", request->paths, "The measurement files; - is standard input")
      .typeName("");
  request->query = addSelectionOptions(command, true);
  request->decoding = addDecodingOptions(command);
  request->query->numbers = true;
  command.option("--channel").required();
  const Option output =
      command
          .addOption(
              "-o,--output", request->output,
              "The picture, a .svg or .png file, or a page, a .html file; - is standard output")
          .typeName("OUT");
  const Option format =
      command.addOption("--format", request->format, "The picture's format, if OUT does not tell")
          .choice({"svg", "png", "ascii", "html"});
  const Option json =
      command.addFlag("--json", request->is_json, "Print the points as one JSON document instead")
          .excludes(output)
          .excludes(format);
  request->chart = addChartOptions(command, json);
  command.addOption("--max-size", request->max_size, "A page takes so many MB, or 20")
      .typeName("MB")
      .check(expectCount)
      .within(std::size_t{1}, std::size_t{500})
      .excludes(json);
  command.footer(footer);
  command.onRun([request] {
    std::vector<std::string>& channels = request->query->channels;
    if (request->paths.empty() && channels.size() > 1) {
      // The file is the last word of "--channel GLOB FILE".
      request->paths.push_back(channels.back());
      channels.pop_back();
    }
    return request->paths.empty()
               ? complain("FILE is required; run 'mdf plot --help' for examples", exit_unusable)
               : run(*request);
  });
}

}  // namespace mdf_tools
