#include "block_graph.h"

#include <array>
#include <unordered_map>

#include "printing/json_output.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr std::size_t readable_nodes = 300;  // at most so many for a file to be drawn whole
constexpr std::size_t shortened_nodes = 150;
constexpr std::size_t most_nodes = 500;
constexpr std::size_t most_links = 1500;

/// Takes the entries of a tree as long as there is room for them.
class GraphMaker {
 public:
  GraphMaker(InputFile& file, std::size_t room, FileFacts& facts)
      : file_(file), facts_(facts), room_(room) {}

  /// Whether there was room.
  bool add(const TreeEntry& entry);
  BlockGraph& graph() { return graph_; }

 private:
  void addNode(const TreeEntry& entry);
  void addLink(const TreeEntry& entry, std::size_t target);

  InputFile& file_;
  FileFacts& facts_;
  std::size_t room_;
  BlockGraph graph_;
  std::unordered_map<std::uint64_t, std::size_t> nodes_;  ///< by offset
  std::vector<std::size_t> path_;                         ///< node of each level down to the latest
  std::size_t latest_left_out_ = 0;
};

void GraphMaker::addNode(const TreeEntry& entry) {
  GraphNode node;
  node.kind = entry.kind;
  node.offset = entry.offset;
  node.count = entry.count;
  if (entry.kind != TreeEntry::nothing) {
    node.type = printable(entry.raw.letters());
    node.length = entry.raw.length;
  }
  if (entry.kind == TreeEntry::block) {
    node.summary = summarize(file_, entry.raw, facts_);
    nodes_.emplace(entry.offset, graph_.nodes.size());
  }
  if (entry.kind == TreeEntry::left_out) {
    latest_left_out_ = graph_.nodes.size();
    graph_.is_shortened = true;
  }
  node.depth = entry.depth;
  graph_.nodes.push_back(std::move(node));
}

void GraphMaker::addLink(const TreeEntry& entry, std::size_t target) {
  // The link's origin is drawn, or is the last of those that are left out.
  const auto from = nodes_.find(entry.from);
  constexpr std::string_view ending = "_next";
  const bool is_on_level =
      entry.role.size() > ending.size() &&
      entry.role.compare(entry.role.size() - ending.size(), ending.size(), ending) == 0;
  const bool is_back = entry.kind == TreeEntry::shared || entry.kind == TreeEntry::cycle;
  graph_.links.push_back({from == nodes_.end() ? latest_left_out_ : from->second, target,
                          entry.role, is_on_level && !is_back, is_back});
}

bool GraphMaker::add(const TreeEntry& entry) {
  const bool is_again = entry.kind == TreeEntry::shared || entry.kind == TreeEntry::cycle;
  const auto known = nodes_.find(entry.offset);
  if (is_again && known == nodes_.end()) {
    return true;  // one of those that are left out
  }
  if ((!is_again && graph_.nodes.size() >= room_) || graph_.links.size() >= most_links) {
    ++graph_.left_out;
    return false;
  }
  if (!is_again) {
    addNode(entry);
  }
  if (graph_.nodes.size() > 1 || is_again) {
    addLink(entry, is_again ? known->second : graph_.nodes.size() - 1);
  }
  return true;
}

Json nodeAsJson(const GraphNode& node) {
  Json value;
  value["offset"] = static_cast<std::int64_t>(node.offset);
  if (node.kind == TreeEntry::nothing) {
    return value;
  }
  value["type"] = node.type;
  if (node.kind == TreeEntry::left_out) {
    value["left_out"] = node.count;
    return value;
  }
  value["length"] = node.length;
  addSummary(node.summary, value);
  return value;
}

}  // namespace

BlockGraph makeGraph(InputFile& file, const TreeOptions& options, const FindingSink& report) {
  // Problems are reported the first time only.
  const FindingSink silent = [](const Finding& /*finding*/) {};
  FileFacts facts(file, report);
  constexpr std::array<std::uint64_t, 5> limits = {100, 8, 5, 3, 2};
  for (const std::uint64_t limit : limits) {
    const bool is_first = limit == limits.front();
    const bool is_last = limit == limits.back();
    TreeOptions shortened = options;
    shortened.list_limit = limit;
    const std::size_t room = is_first ? readable_nodes : (is_last ? most_nodes : shortened_nodes);
    GraphMaker maker(file, room, facts);
    bool has_room = true;
    walkTree(file, shortened, is_first ? report : silent, [&](const TreeEntry& entry) {
      has_room = maker.add(entry) && has_room;
      return has_room || is_last;
    });
    if (has_room || is_last) {
      return std::move(maker.graph());
    }
  }
  return {};
}

Json graphAsJson(const BlockGraph& graph) {
  Json value;
  value["is_shortened"] = graph.is_shortened;
  value["links_without_room"] = graph.left_out;
  value["nodes"] = Json::array();
  for (const GraphNode& node : graph.nodes) {
    value["nodes"].push_back(nodeAsJson(node));
  }
  value["links"] = Json::array();
  for (const GraphLink& link : graph.links) {
    Json entry;
    entry["from"] = link.from;
    entry["to"] = link.to;
    entry["role"] = link.role;
    value["links"].push_back(entry);
  }
  return value;
}

}  // namespace mdf_tools
