#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "command_line/command_line.h"
#include "file_command.h"
#include "number_option.h"
#include "offset_option.h"
#include "picture_output.h"
#include "pictures/block_graph.h"
#include "pictures/block_map.h"
#include "pictures/drawing_program.h"
#include "printing/json_output.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/printable.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

struct GraphArguments {
  std::shared_ptr<std::vector<std::string>> paths;
  std::string output;
  std::string from = "64";
  TreeOptions options;
  bool is_map = false;
  bool hides_texts = false;
  bool is_json = false;
};

constexpr const char* footer =
    R"(Without --map, draws a box for each block, with type, offset, name and main properties, and an arrow
for each link, with its name; dashed arrows lead to blocks that are drawn elsewhere. Of a file with
more than 300 blocks, only the first of each chain and list are drawn, with the number of the rest.
Colours tell the file's own blocks, groups, channels, conversions, texts and data apart.

With --map, draws the file's bytes from beginning to end, row by row: blocks in the colours of their
types, bytes outside all blocks in white, overlapping blocks in red, and the sums below.

The suffix of OUT chooses the form. Graphviz (its program neato) draws .svg and .png; .dot is the
input for Graphviz, and - writes that to standard output. Several files go into one picture. OUT
appears when it is complete. With --json, standard output gets a line for each file: its boxes and
arrows, or the sums of its map. Problems go to standard error, one line each with the block's offset.

Examples:
  mdf graph -o trip.svg trip.mf4                  the whole file
  mdf graph -o trip.png --no-text trip.mf4        without a box for each name and comment
  mdf graph -o cg.svg --from 0x828 trip.mf4       a block and what is below it
  mdf graph -o top.svg --depth 2 trip.mf4         data groups and channel groups alone
  mdf graph -o map.png --map trip.mf4             where in the file the blocks are
  mdf graph -o - trip.mf4 | neato -n2 -Tpdf > x   any other format that Graphviz writes

Exit code: 0 fine, 1 problems found in the file or no picture, 2 wrong arguments or unreadable file.)";

std::string suffixOf(const std::string& path) {
  return path == "-" ? ".dot" : std::filesystem::path(path).extension().string();
}

std::string expectPicture(const std::string& path) {
  const std::string suffix = suffixOf(path);
  const bool is_known = suffix == ".svg" || suffix == ".png" || suffix == ".dot";
  return is_known ? std::string() : "\"" + path + "\" must end in .svg, .png or .dot";
}

/// Collects what is drawn of each file.
class Picture {
 public:
  explicit Picture(const GraphArguments& arguments) : arguments_(arguments) {}

  void add(const FileContext& context);
  bool isEmpty() const { return count_ == 0; }
  std::string dot() const { return arguments_.is_map ? mapPicture(parts_) : dotOf(graph_); }

 private:
  void addJson(const FileContext& context, const Json& drawn);

  const GraphArguments& arguments_;
  GraphPicture graph_;
  std::string parts_;  ///< of a map
  double height_ = 0;
  std::size_t count_ = 0;
};

void Picture::addJson(const FileContext& context, const Json& drawn) {
  Json line;
  line["schema"] = json_schema;
  line["file"] = context.file.name();
  line.update(drawn);
  context.out << jsonLine(line) << '\n';
}

void Picture::add(const FileContext& context) {
  const std::string title = printable(context.file.name(), Harmless::utf8, 100);
  const std::string prefix = 'f' + std::to_string(count_++) + '_';
  if (arguments_.is_map) {
    const BlockMap map = makeMap(context.file, context.report);
    if (arguments_.is_json) {
      addJson(context, mapAsJson(map));
    } else {
      parts_ += mapPart(map, title, prefix, height_);
    }
    return;
  }
  const BlockGraph graph = makeGraph(context.file, arguments_.options, context.report);
  if (arguments_.is_json) {
    addJson(context, graphAsJson(graph));
  } else {
    addGraph(graph_, graph, title, prefix);
  }
}

std::string drawn(const std::string& dot, const std::string& suffix) {
  return suffix == ".dot" ? dot
                          : drawnBy({{"neato", "-n2", "-T" + suffix.substr(1)},
                                     "install Graphviz, or write a .dot file"},
                                    dot);
}

int graph(GraphArguments arguments) {
  if (isOneOf(*arguments.paths, arguments.output)) {
    std::cerr << "mdf: the output " << arguments.output << " is one of the files to read\n";
    return exit_unusable;
  }
  arguments.options.from = parseOffset(arguments.from).value_or(header_block_offset);
  arguments.options.with_texts = !arguments.hides_texts;
  Picture picture(arguments);
  const int exit_code =
      onEachFile(*arguments.paths, [&](const FileContext& context) { picture.add(context); });
  if (arguments.is_json || picture.isEmpty()) {
    return exit_code;
  }
  const int drawing = writePicture(
      arguments.output, [&] { return drawn(picture.dot(), suffixOf(arguments.output)); });
  return std::max(exit_code, drawing);
}

}  // namespace

void addGraphCommand(CommandLine& program) {
  CommandLine command = program.addCommand("graph", "Draw a file's blocks and links, or its map");
  const auto arguments = std::make_shared<GraphArguments>();
  arguments->paths = addFileArguments(command);
  const Option output =
      command
          .addOption("-o,--output", arguments->output,
                     "Where the picture goes: .svg, .png or .dot; - is standard output")
          .typeName("OUT")
          .check(expectPicture);
  const Option from =
      command.addOption("--from", arguments->from, "Begin at the block at this offset")
          .typeName("OFFSET")
          .check(expectOffset);
  const Option depth =
      command.addOption("--depth", arguments->options.most_depth, "How many levels to go down")
          .typeName("N")
          .check(expectCount);
  const Option no_text =
      command.addFlag("--no-text", arguments->hides_texts, "Leave out text and metadata blocks");
  command.addFlag("--map", arguments->is_map, "Draw the file's bytes instead of its links")
      .excludes(from)
      .excludes(depth)
      .excludes(no_text);
  const Option json =
      command.addFlag("--json", arguments->is_json, "Write an object for each file instead")
          .excludes(output);
  command.footer(footer);
  command.onRun([arguments, output, json] {
    if (!output.isGiven() && !json.isGiven()) {
      throw Refusal("-o OUT or --json is required");
    }
    return graph(*arguments);
  });
}

}  // namespace mdf_tools
