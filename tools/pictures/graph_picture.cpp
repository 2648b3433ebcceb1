#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "block_family.h"
#include "block_graph.h"
#include "dot_text.h"

namespace mdf_tools {

namespace {

constexpr double points_per_inch = 72;
constexpr double gap_between_rows = 14;      // room for the name of a chain's link
constexpr double gap_between_columns = 110;  // room for the links' names
constexpr std::size_t label_columns = 32;

/// A box with its place, counted from the picture's upper left corner.
struct Box {
  std::string label;
  double width;
  double height;
  double left = 0;
  double top = 0;

  double right() const { return left + width; }
  double bottom() const { return top + height; }
  double middle() const { return top + height / 2; }
};

/// A place, counted like that of a box.
struct Point {
  double x;
  double y;
};

std::string labelOf(const GraphNode& node) {
  if (node.kind == TreeEntry::left_out) {
    return "... " + std::to_string(node.count) + " more " + node.type;
  }
  if (node.kind == TreeEntry::nothing) {
    return "no block at\n" + std::to_string(static_cast<std::int64_t>(node.offset));
  }
  std::string label = node.type + "  " + decimalAndHex(node.offset);
  if (!node.summary.name.empty()) {
    label += '\n' + wrapped('"' + node.summary.name + '"', label_columns);
  }
  const std::string facts = node.summary.words();
  return facts.empty() ? label : label + '\n' + wrapped(facts, label_columns);
}

/// A box for a label in the font of the picture.
Box boxFor(const std::string& label) {
  constexpr double character_width = 5.8;
  constexpr double line_height = 12;
  constexpr double margin = 8;
  std::size_t longest = 0;
  std::size_t lines = 0;
  for (std::size_t begin = 0; begin <= label.size(); ++lines) {
    const std::size_t end = std::min(label.find('\n', begin), label.size());
    longest = std::max(longest, end - begin);
    begin = end + 1;
  }
  return {label, character_width * static_cast<double>(longest) + margin,
          line_height * static_cast<double>(lines) + margin};
}

/// Gives each box its place: what a node leads to begins beside it, and goes on below.
std::vector<Box> placed(const BlockGraph& graph, double top) {
  std::vector<Box> boxes;
  std::vector<double> widths;
  double end = top - gap_between_rows;
  for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
    const GraphNode& node = graph.nodes[i];
    Box box = boxFor(labelOf(node));
    const bool is_first_below = i > 0 && graph.nodes[i - 1].depth < node.depth;
    box.top = is_first_below ? boxes.back().top : end + gap_between_rows;
    end = std::max(end, box.top + box.height);
    widths.resize(std::max(widths.size(), node.depth + 1));
    widths[node.depth] = std::max(widths[node.depth], box.width);
    boxes.push_back(std::move(box));
  }
  std::vector<double> lefts = {0};
  for (const double width : widths) {
    lefts.push_back(lefts.back() + width + gap_between_columns);
  }
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    boxes[i].width = widths[graph.nodes[i].depth];
    boxes[i].left = lefts[graph.nodes[i].depth];
  }
  return boxes;
}

std::string decimal(double number) {
  std::array<char, 32> text;
  const int size = std::snprintf(text.data(), text.size(), "%.3f", number);
  return {text.data(), static_cast<std::size_t>(size)};
}

std::string placeOf(const Box& box) {
  return "pos=\"" + decimal(box.left + box.width / 2) + ',' + decimal(-box.top - box.height / 2) +
         "\", width=" + decimal(box.width / points_per_inch) +
         ", height=" + decimal(box.height / points_per_inch);
}

std::string nodeLine(const GraphNode& node, const Box& box, const std::string& name) {
  const bool is_nothing = node.kind == TreeEntry::nothing;
  const std::string colour(is_nothing ? "#ff8a80" : colourOf(familyOf(node.type)));
  const bool is_left_out = node.kind == TreeEntry::left_out;
  return "  " + name + " [" + placeOf(box) + ", label=" + dotString(box.label) + ", fillcolor=\"" +
         colour + '"' + (is_left_out ? ", style=\"filled,dashed\"" : "") + "];\n";
}

/// A curve from the first point to the last one, with an arrow at its end, and the link's name.
struct Curve {
  Point begin;
  Point begin_control;
  Point end_control;
  Point end;
  Point label;  ///< its middle
};

double labelWidth(const std::string& role) {
  constexpr double character_width = 4.4;
  return character_width * static_cast<double>(role.size());
}

/// Down along the left side of a chain.
Curve chainCurve(const Box& from, const Box& to, const std::string& role) {
  constexpr double inset = 14;
  constexpr double arrow = 6;
  const double x = from.left + inset;
  return {{x, from.bottom()},
          {x, from.bottom()},
          {x, to.top - arrow},
          {x, to.top - arrow},
          {x + 4 + labelWidth(role) / 2, to.top - gap_between_rows / 2}};
}

/// To the right, into the left side of what the link leads to.
Curve treeCurve(const Box& from, const Box& to, const std::string& role) {
  constexpr double arrow = 6;
  const double turn = from.right() + 24;
  const double end = to.left - arrow;
  const double y = std::min(from.middle(), to.middle());
  const Point begin = {from.right(), from.top == to.top ? y : from.middle()};
  const Point goal = {end, from.top == to.top ? y : to.middle()};
  // A curve that comes from above would run through a label above its end.
  const double label_y = goal.y > begin.y ? goal.y + 6 : goal.y - 6;
  return {begin,
          {turn, begin.y},
          {turn - 48, goal.y},
          goal,
          {to.left - 8 - labelWidth(role) / 2, label_y}};
}

/// To a box that stands anywhere, from below the middle of the right side.
Curve backCurve(const Box& from, const Box& to, double below_middle, const std::string& role) {
  constexpr double arrow = 6;
  constexpr double bulge = 60;
  const Point begin = {from.right(), std::min(from.middle() + below_middle, from.bottom())};
  const Point label = {begin.x + 8 + labelWidth(role) / 2, begin.y + 5};
  if (to.left > from.right()) {
    return {begin,
            {begin.x + bulge, begin.y},
            {to.left - bulge, to.middle()},
            {to.left - arrow, to.middle()},
            label};
  }
  const double turn = std::max(from.right(), to.right()) + bulge;
  return {begin, {turn, begin.y}, {turn, to.middle()}, {to.right() + arrow, to.middle()}, label};
}

std::string shown(const Point& point) { return decimal(point.x) + ',' + decimal(-point.y); }

/// The arrow's tip, a little beyond the curve's end in the direction that it arrives in.
Point tipOf(const Curve& curve, bool goes_down, bool goes_left) {
  constexpr double arrow = 6;
  return goes_down ? Point{curve.end.x, curve.end.y + arrow}
                   : Point{curve.end.x + (goes_left ? -arrow : arrow), curve.end.y};
}

/// Writes the links of one graph.
class LinkDrawer {
 public:
  LinkDrawer(const std::vector<Box>& boxes, std::string prefix)
      : boxes_(boxes), prefix_(std::move(prefix)), back_links_(boxes.size()) {}

  std::string line(const GraphLink& link) {
    const Box& from = boxes_[link.from];
    const Box& to = boxes_[link.to];
    constexpr double back_link_step = 9;
    const Curve curve =
        link.is_on_level ? chainCurve(from, to, link.role)
        : link.is_back   ? backCurve(from, to, back_link_step * ++back_links_[link.from], link.role)
                         : treeCurve(from, to, link.role);
    const bool goes_left = link.is_back && to.left <= from.right();
    return "  " + prefix_ + std::to_string(link.from) + " -> " + prefix_ + std::to_string(link.to) +
           " [pos=\"e," + shown(tipOf(curve, link.is_on_level, goes_left)) + ' ' +
           shown(curve.begin) + ' ' + shown(curve.begin_control) + ' ' + shown(curve.end_control) +
           ' ' + shown(curve.end) + "\", label=" + dotString(link.role) + ", lp=\"" +
           shown(curve.label) + '"' + (link.is_back ? ", style=dashed" : "") + "];\n";
  }

 private:
  const std::vector<Box>& boxes_;
  std::string prefix_;
  std::vector<int> back_links_;  ///< of each box, how many have been drawn
};

std::string titleOf(const BlockGraph& graph, const std::string& title) {
  std::string text = title;
  if (graph.is_shortened) {
    text += "\nlong chains and lists are shortened";
  }
  if (graph.left_out != 0) {
    text += "\n" + std::to_string(graph.left_out) + " more links are left out";
  }
  return text;
}

/// Limits the pixels of a picture; a hostile file may be deep and long.
std::string sizeLimit(const GraphPicture& picture) {
  constexpr double most_square_inches = 10000;
  const double width = picture.width / points_per_inch;
  const double height = picture.height / points_per_inch;
  const double scale = std::sqrt(most_square_inches / std::max(width * height, 1.0));
  return scale >= 1 ? ""
                    : ", size=\"" + decimal(width * scale) + ',' + decimal(height * scale) + '"';
}

}  // namespace

void addGraph(GraphPicture& picture, const BlockGraph& graph, const std::string& title,
              const std::string& prefix) {
  Box heading = boxFor(titleOf(graph, title));
  heading.top = picture.height;
  picture.parts += "  " + prefix + "title [" + placeOf(heading) +
                   ", label=" + dotString(heading.label, DotLines::left) +
                   ", shape=plaintext, style=\"\", fontsize=12];\n";
  const std::vector<Box> boxes = placed(graph, heading.top + heading.height + gap_between_rows);
  picture.width = std::max(picture.width, heading.width);
  picture.height = heading.top + heading.height;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const Box& box = boxes[i];
    picture.parts += nodeLine(graph.nodes[i], box, prefix + std::to_string(i));
    picture.width = std::max(picture.width, box.left + box.width);
    picture.height = std::max(picture.height, box.top + box.height);
  }
  LinkDrawer drawer(boxes, prefix);
  for (const GraphLink& link : graph.links) {
    picture.parts += drawer.line(link);
  }
  picture.height += 4 * gap_between_rows;
}

std::string dotOf(const GraphPicture& picture) {
  return "digraph mdf {\n"
         "  graph [outputorder=edgesfirst, pad=0.2" +
         sizeLimit(picture) +
         "];\n"
         "  node [shape=box, style=filled, color=\"#404040\", fontname=\"Helvetica\", fontsize=10, "
         "margin=\"0.05,0.02\"];\n"
         "  edge [fontname=\"Helvetica\", fontsize=8, color=\"#606060\", fontcolor=\"#606060\", "
         "arrowsize=0.6];\n" +
         picture.parts + "}\n";
}

}  // namespace mdf_tools
