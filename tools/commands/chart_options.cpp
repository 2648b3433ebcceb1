#include "chart_options.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <system_error>

#include "command_line/command_line.h"

namespace mdf_tools {

namespace {

struct Size {
  std::size_t width = 0;
  std::size_t height = 0;
};

/// The numbers of "1600x900"; nothing for a text that is none.
std::optional<Size> sizeOf(const std::string& text) {
  const char* const end = text.data() + text.size();
  Size size;
  const auto width = std::from_chars(text.data(), end, size.width);
  if (width.ec != std::errc() || width.ptr == end || *width.ptr != 'x') {
    return std::nullopt;
  }
  const auto height = std::from_chars(width.ptr + 1, end, size.height);
  return height.ec == std::errc() && height.ptr == end ? std::optional<Size>(size) : std::nullopt;
}

/// Smaller ones have no room for a panel, larger ones are more than drawing programs can do.
std::string expectSize(const std::string& text) {
  constexpr std::size_t least_width = 20;
  constexpr std::size_t least_height = 10;
  constexpr std::size_t most = 16000;
  const auto size = sizeOf(text);
  if (!size) {
    return '"' + text + "\" is not a size such as 1600x900";
  }
  const bool is_usable = size->width >= least_width && size->width <= most &&
                         size->height >= least_height && size->height <= most;
  return is_usable ? "" : '"' + text + "\" is not between 20x10 and 16000x16000";
}

/// The size of the terminal, or that of a usual one.
void fitTerminal(ChartForm& form) {
  winsize size{};
  const bool is_known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 20;
  form.width = is_known ? size.ws_col - 1U : 79;
  form.least_height = is_known && size.ws_row > 11 ? size.ws_row - 1U : 24;
}

}  // namespace

ChartForm ChartOptions::formFor(const std::string& format,
                                const std::vector<std::string>& paths) const {
  ChartForm form;
  form.kind = format == "ascii" ? ChartForm::Kind::ascii
              : format == "png" ? ChartForm::Kind::png
                                : ChartForm::Kind::svg;
  if (form.isAscii()) {
    fitTerminal(form);
  }
  if (const auto given = sizeOf(size)) {
    form.width = given->width;
    form.height = given->height;
  }
  for (const std::string& path : paths) {
    form.title +=
        (form.title.empty() ? "" : ", ") + std::filesystem::path(path).filename().string();
  }
  form.title = title.value_or(form.title);
  form.is_logarithmic = is_logarithmic;
  form.style = has_lines    ? ChartForm::Style::lines
               : has_steps  ? ChartForm::Style::steps
               : has_points ? ChartForm::Style::points
                            : ChartForm::Style::automatic;
  return form;
}

std::shared_ptr<ChartOptions> addChartOptions(CommandLine& command, const Option& other) {
  auto options = std::make_shared<ChartOptions>();
  command
      .addOption("--size", options->size,
                 "The picture's size in pixels, in the terminal in characters")
      .typeName("WIDTHxHEIGHT")
      .check(expectSize)
      .excludes(other);
  command
      .addOption("--title", options->title,
                 "The line above the picture in place of the files' names")
      .typeName("TEXT")
      .excludes(other);
  command.addFlag("--log", options->is_logarithmic, "Values on a logarithmic axis").excludes(other);
  const Option lines =
      command.addFlag("--lines", options->has_lines, "Lines from sample to sample for all channels")
          .excludes(other);
  const Option steps =
      command
          .addFlag("--steps", options->has_steps, "Lines that keep a value up to the next sample")
          .excludes(other)
          .excludes(lines);
  command.addFlag("--points", options->has_points, "A point for each sample, without lines")
      .excludes(other)
      .excludes(lines)
      .excludes(steps);
  command
      .addOption("--time", options->time,
                 "Times as seconds since the measurement began, or as dates in the file's zone")
      .choice({"seconds", "iso"})
      .excludes(other);
  command.addFlag("--no-events", options->without_events, "Leave out the events of the file")
      .excludes(other);
  return options;
}

}  // namespace mdf_tools
