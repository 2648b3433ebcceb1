#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "block_family.h"
#include "block_map.h"
#include "dot_text.h"
#include "reader/bytes/number_texts.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

// Lengths in points.
constexpr double bar_width = 960;
constexpr double row_step = 22;
constexpr double line_step = 20;

std::string decimal(double number) {
  std::array<char, 32> text;
  const int size = std::snprintf(text.data(), text.size(), "%.4f", number);
  return {text.data(), static_cast<std::size_t>(size)};
}

/// "1,234,567".
std::string grouped(std::uint64_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3; at -= 3) {
    digits.insert(at - 3, ",");
  }
  return digits;
}

/// "1 block", "2,000 blocks".
std::string counted(std::uint64_t number, const std::string& word) {
  return grouped(number) + ' ' + word + (number == 1 ? "" : "s");
}

/// Boxes at given places.
class MapDrawer {
 public:
  MapDrawer(std::string prefix, double top) : prefix_(std::move(prefix)), y_(top) {}

  std::string draw(const BlockMap& map, const std::string& title);
  double y() const { return y_; }

 private:
  void box(double left, double width, const std::string& label, const std::string& attributes,
           DotLines lines = DotLines::centred);
  void text(double left, double width, const std::string& label, const std::string& attributes,
            DotLines lines = DotLines::left);
  void run(const BlockMap& map, const MapRun& run);
  void legend(const BlockMap& map);
  void legendEntry(const std::string& label, const std::string& attributes);

  std::string prefix_;
  double y_;  ///< the middle of the line that is drawn, going down
  std::size_t count_ = 0;
  std::size_t legend_entries_ = 0;
  std::string text_;
};

void MapDrawer::box(double left, double width, const std::string& label,
                    const std::string& attributes, DotLines lines) {
  constexpr double points_per_inch = 72;
  text_ += "  " + prefix_ + std::to_string(count_++) + " [pos=\"" + decimal(left + width / 2) +
           ',' + decimal(-y_) + "\", width=" + decimal(width / points_per_inch) +
           ", label=" + dotString(label, lines) + ", " + attributes + "];\n";
}

void MapDrawer::text(double left, double width, const std::string& label,
                     const std::string& attributes, DotLines lines) {
  box(left, width, label, "shape=plaintext, style=\"\", " + attributes, lines);
}

std::string fill(const std::string& colour) { return "fillcolor=\"" + colour + '"'; }

void MapDrawer::run(const BlockMap& map, const MapRun& run) {
  const double cell = bar_width / static_cast<double>(map.columns);
  const double left = cell * static_cast<double>(run.first);
  const double width = cell * static_cast<double>(run.last + 1 - run.first);
  constexpr double least_for_letters = 20;
  constexpr double least_for_outline = 6;
  std::string attributes;
  std::string label;
  switch (run.kind) {
    case MapRun::gap:
      attributes = fill("#ffffff") + ", color=\"#c0c0c0\"";
      break;
    case MapRun::overlap:
      attributes = fill("#e02020") + ", color=\"#e02020\"";
      break;
    case MapRun::blocks: {
      const std::string colour(colourOf(familyOf(run.type)));
      const bool is_one = run.offset != 0 || run.type == "ID";
      const bool has_outline = is_one && width >= least_for_outline;
      label = is_one && width >= least_for_letters ? printable(run.type) : "";
      attributes = fill(colour) + ", color=\"" + (has_outline ? "#404040" : colour) + '"';
      break;
    }
  }
  box(left, width, label, attributes);
}

void MapDrawer::legendEntry(const std::string& label, const std::string& attributes) {
  constexpr std::size_t columns = 4;
  constexpr double column_width = bar_width / columns;
  constexpr double square = 14;
  const double left = column_width * static_cast<double>(legend_entries_ % columns);
  if (legend_entries_ % columns == 0 && legend_entries_ != 0) {
    y_ += line_step;
  }
  box(left, square, "", attributes);
  text(left + square + 2, column_width - square - 2, label, "fontsize=10");
  ++legend_entries_;
}

void MapDrawer::legend(const BlockMap& map) {
  constexpr std::size_t most_types = 21;
  const std::size_t shown = std::min(map.types.size(), most_types);
  for (std::size_t i = 0; i < shown; ++i) {
    const TypeShare& share = map.types[i];
    legendEntry(
        share.type + "  " + counted(share.blocks, "block") + ", " + counted(share.bytes, "byte"),
        fill(std::string(colourOf(familyOf(share.type)))));
  }
  if (shown < map.types.size()) {
    legendEntry(grouped(map.types.size() - shown) + " more types",
                fill(std::string(colourOf(BlockFamily::other))));
  }
  legendEntry("no block  " + counted(map.gap_bytes, "byte") + " in " + counted(map.gaps, "place"),
              fill("#ffffff") + ", color=\"#c0c0c0\"");
  legendEntry("overlap  " + counted(map.overlap_bytes, "byte"), fill("#e02020"));
}

std::string MapDrawer::draw(const BlockMap& map, const std::string& title) {
  constexpr double label_width = 90;
  text(0, bar_width, title + ", " + counted(map.file_size, "byte"), "fontsize=13");
  y_ += row_step;
  std::size_t row = SIZE_MAX;
  for (const MapRun& each : map.runs) {
    if (each.row != row) {
      y_ += row == SIZE_MAX ? 0 : row_step;
      row = each.row;
      text(-label_width - 4, label_width, "0x" + hexDigits(row * map.columns * map.bytes_per_cell),
           "fontname=\"Courier\"", DotLines::right);
    }
    run(map, each);
  }
  y_ += row_step + line_step / 2;
  legend(map);
  y_ += 2 * line_step;
  return std::move(text_);
}

}  // namespace

std::string mapPart(const BlockMap& map, const std::string& title, const std::string& prefix,
                    double& height) {
  MapDrawer drawer(prefix, height);
  std::string text = drawer.draw(map, title);
  height = drawer.y();
  return text;
}

std::string mapPicture(const std::string& parts) {
  return "graph mdf {\n"
         "  graph [pad=0.2];\n"
         "  node [shape=box, style=filled, fixedsize=true, height=0.25, penwidth=0.5, "
         "color=\"#404040\", fontname=\"Helvetica\", fontsize=10];\n" +
         parts + "}\n";
}

}  // namespace mdf_tools
