#ifndef MDF_TOOLS_PICTURES_BLOCK_GRAPH_H_
#define MDF_TOOLS_PICTURES_BLOCK_GRAPH_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "printing/block_summary.h"
#include "printing/block_tree.h"
#include "reader/summary/json_type.h"

namespace mdf_tools {

/// A box of the graph.
struct GraphNode {
  TreeEntry::Kind kind = TreeEntry::block;  ///< a block, a missing block, or more
                                            ///< blocks that are left out
  std::uint64_t offset = 0;
  std::string type;
  std::uint64_t length = 0;
  std::uint64_t count = 0;  ///< how many are left out
  BlockSummary summary;
  std::size_t depth = 0;  ///< levels below the first block
};

/// An arrow of the graph.
struct GraphLink {
  std::size_t from;  ///< indices of nodes
  std::size_t to;
  std::string role;
  bool is_on_level;  ///< leads to the next block of a chain
  bool is_back;      ///< leads back, or to a block that another link led to before
};

/// The blocks of a file and their links.
struct BlockGraph {
  std::vector<GraphNode> nodes;  ///< each followed by what it leads to
  std::vector<GraphLink> links;
  bool is_shortened = false;   ///< chains and lists are left out in part
  std::uint64_t left_out = 0;  ///< links that found no room at all
};

/// Makes a graph that people can take in: up to 300 blocks whole, beyond that the first blocks of
/// each chain and list, and never more than 500 boxes.
BlockGraph makeGraph(InputFile& file, const TreeOptions& options, const FindingSink& report);

/// A picture made of parts, one below another. Lengths are in points.
struct GraphPicture {
  std::string parts;
  double width = 0;
  double height = 0;
};

/// Adds a graph to a picture: chains go down, what a block leads to stands to the right of it. A
/// prefix keeps the nodes of several files apart.
void addGraph(GraphPicture& picture, const BlockGraph& graph, const std::string& title,
              const std::string& prefix);

/// The picture in the DOT language with the positions of all boxes, for Graphviz's program neato
/// with the option -n2.
std::string dotOf(const GraphPicture& picture);

/// The graph as an object for programs.
mdf_reader::Json graphAsJson(const BlockGraph& graph);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_BLOCK_GRAPH_H_
