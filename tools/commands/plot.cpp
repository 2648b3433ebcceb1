#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "command_line/command_line.h"
#include "decoding_option.h"
#include "file_command.h"
#include "picture_output.h"
#include "pictures/chart.h"
#include "pictures/drawing_program.h"
#include "printing/json_output.h"
#include "reader/bytes/input_file.h"
#include "sample_options.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"TXT(Draws channels over the master channel of their channel group, mostly time, in a panel for each unit.
Invalid samples are gaps. However many samples there are, a picture keeps the lowest and the highest
value in each of its columns. Text values are drawn as the numbers that stand for them in the file.
gnuplot does the drawing and must be installed. With --json, standard output gets the points that a
picture would keep, {"schema":1,"curves":[{"name":...,"unit":...,"over":...,"points":[[x,y],...]}]}
with null for each gap.

Examples:
  mdf plot trip.mf4 -c 'speed*' rpm -o trip.svg
  mdf plot trip.mf4 -c cpu_total --from 10 --to 20 -o cpu.png
  mdf plot monday.mf4 tuesday.mf4 -c speed -o both.svg      the same channel of two files
  mdf plot trip.mf4 -c speed -o - --format ascii            in the terminal
  mdf plot trip.mf4 -c speed --json | jq '.curves[0].points[0]'

Exit code: 0 fine, 1 problems found in the file or no picture, 2 wrong arguments or unreadable file.)TXT";

struct Request {
  std::vector<std::string> paths;
  std::shared_ptr<Query> query;
  std::shared_ptr<DecodingRequest> decoding;
  std::string output = "-";
  std::string format;
  bool is_json = false;
};

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

/// The format asked for by name or by the output's suffix; "" for none.
std::string formatOf(const Request& request) {
  if (!request.format.empty()) {
    return request.format;
  }
  const std::string ending = std::filesystem::path(request.output).extension().string();
  if (ending == ".svg" || ending == ".png") {
    return ending.substr(1);
  }
  return request.output == "-" ? "ascii" : "";
}

ChartForm formOf(const Request& request, const std::string& format) {
  ChartForm form;
  if (format == "ascii") {
    form.kind = ChartForm::Kind::ascii;
    winsize size{};
    const bool is_known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 20;
    form.width = is_known ? size.ws_col - 1U : 79;
    form.height = is_known && size.ws_row > 11 ? size.ws_row - 1U : 24;
  } else {
    form.kind = format == "png" ? ChartForm::Kind::png : ChartForm::Kind::svg;
  }
  for (const std::string& path : request.paths) {
    form.title +=
        (form.title.empty() ? "" : ", ") + std::filesystem::path(path).filename().string();
  }
  return form;
}

/// Collects the curves of all files; returns the exit code.
int collect(const Request& request, std::size_t width, std::vector<Curve>& curves) {
  int exit_code = exit_fine;
  const int reading = onEachFile(request.paths, *request.decoding, [&](const FileContext& context) {
    const std::string& name = context.file.name();
    const std::string prefix =
        context.is_one_of_several ? std::filesystem::path(name).filename().string() + ": " : "";
    CurveCollector collector(curves, width, prefix, name);
    const NoteSink note = notesOf(context);
    Tables tables(context.file, *request.query, context.report, note);
    while (Table* const table = tables.next()) {
      collector.begin(table->head());
      const Batch* batch = table->next();
      while (batch != nullptr && collector.take(*batch)) {
        batch = table->next();
      }
    }
    if (collector.leftOut() > 0) {
      note("a picture has room for " + std::to_string(CurveCollector::most_curves) + " channels; " +
           std::to_string(collector.leftOut()) + " more are left out");
    }
    if (tables.count() == 0) {
      note(nothingChosen(*request.query));
      exit_code = exit_problem;
    }
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
  std::vector<Curve> curves;
  const int exit_code = collect(request, ChartForm().width, curves);
  if (exit_code == exit_unusable && curves.empty()) {
    return exit_code;
  }
  Json array = Json::array();
  for (const Curve& curve : curves) {
    array.push_back({{"file", curve.file},
                     {"name", curve.channel},
                     {"unit", curve.unit},
                     {"over", curve.x_label},
                     {"points", pointsAsJson(curve.points.points())}});
  }
  const Json document = {{"schema", json_schema}, {"curves", std::move(array)}};
  return std::max(exit_code, printToOutput(jsonLine(document) + '\n'));
}

bool hasNumbers(const Curve& curve) {
  const std::vector<Point> points = curve.points.points();
  return std::any_of(points.begin(), points.end(),
                     [](const Point& point) { return !std::isnan(point.y); });
}

int drawPicture(const Request& request) {
  const std::string format = formatOf(request);
  if (format.empty()) {
    return complain("cannot tell the picture's format from " + request.output +
                        "; end it in .svg or .png, or add --format",
                    exit_unusable);
  }
  if (format == "png" && request.output == "-" && outputIsTerminal()) {
    return complain("a terminal cannot show PNG; name a file with -o", exit_unusable);
  }
  const ChartForm form = formOf(request, format);
  std::vector<Curve> curves;
  const int exit_code = collect(request, form.width, curves);
  if (curves.empty()) {
    return std::max<int>(exit_code, exit_problem);
  }
  if (std::none_of(curves.begin(), curves.end(), hasNumbers)) {
    std::cerr << "mdf: note: nothing to draw: none of the chosen samples is a number\n";
  }
  const int drawing = writePicture(request.output, [&] {
    // Without the user's own settings.
    return drawnBy({{"gnuplot", "-d"}, "install gnuplot"}, gnuplotScript(curves, form));
  });
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
  const Option output = command
                            .addOption("-o,--output", request->output,
                                       "The picture, a .svg or .png file; - is standard output")
                            .typeName("OUT");
  const Option format =
      command.addOption("--format", request->format, "The picture's format, if OUT does not tell")
          .choice({"svg", "png", "ascii"});
  command.addFlag("--json", request->is_json, "Print the points as one JSON document instead")
      .excludes(output)
      .excludes(format);
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
