#include "pictures/block_graph.h"

#include <gtest/gtest.h>

#include <string>

#include "drawn_file.h"
#include "printing/json_output.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/healthy_file.h"

using namespace mdf_tests;
using mdf_reader::FindingSink;
using mdf_reader::InputFile;
using mdf_tools::BlockGraph;
using mdf_tools::TreeEntry;
using mdf_tools::TreeOptions;

namespace {

/// A graph in words: a line for each box, then one for each arrow.
std::string inWords(const BlockGraph& graph) {
  std::string text;
  for (const auto& node : graph.nodes) {
    text += std::to_string(node.depth) + ' ' + node.type + ' ' + std::to_string(node.offset);
    text +=
        node.kind == TreeEntry::left_out ? " and " + std::to_string(node.count) + " in all" : "";
    text += node.kind == TreeEntry::nothing ? "nothing" : "";
    text += '\n';
  }
  for (const auto& link : graph.links) {
    text += std::to_string(link.from) + " -> " + std::to_string(link.to) + ' ' + link.role +
            (link.is_on_level ? " on" : "") + (link.is_back ? " back" : "") + '\n';
  }
  return text + (graph.is_shortened ? "shortened\n" : "") +
         (graph.left_out == 0 ? "" : std::to_string(graph.left_out) + " without room\n");
}

Dumped graphOf(const std::string& bytes, const TreeOptions& options = {}) {
  return drawn(bytes, [&](InputFile& file, std::ostream& os, const FindingSink& report) {
    os << inWords(mdf_tools::makeGraph(file, options, report));
  });
}

/// A file with a chain of groups, each with a name of its own and a comment that all share.
FileBuilder groups(std::size_t count) {
  FileBuilder file;
  const std::uint64_t comment = file.text("all");
  std::uint64_t before = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t group = file.add("DG", {0, 0, 0, comment}, Bytes().zeros(8));
    file.link(before == 0 ? FileBuilder::header : before, 0, group);
    before = group;
  }
  return file;
}

TEST(BlockGraph, BoxesAndArrows) {
  FileBuilder file = groups(2);
  file.link(264, 0, 200);
  file.link(264, 1, 1);
  const Dumped graph = graphOf(file.bytes());
  EXPECT_EQ(graph.output,
            "0 HD 64\n"
            "1 DG 200\n"
            "2 TX 168\n"
            "1 DG 264\n"
            "2  1nothing\n"
            "0 -> 1 hd_dg_first\n"
            "1 -> 2 dg_md_comment\n"
            "1 -> 3 dg_dg_next on\n"
            "3 -> 4 dg_cg_first\n"
            "3 -> 2 dg_md_comment back\n"
            "3 -> 1 dg_dg_next back\n");
  EXPECT_EQ(graph.findings,
            "264: expected link 1 of ##DG to lead to a block \"##\", found \"DF  \" at 1 (0x1)\n");
}

TEST(BlockGraph, WithoutTextsDownToALevel) {
  TreeOptions options;
  options.with_texts = false;
  options.most_depth = 1;
  options.from = 200;
  EXPECT_EQ(graphOf(groups(2).bytes(), options).output, "0 DG 200\n");
}

TEST(BlockGraph, LongChainsAreShortenedBeyondWhatCanBeRead) {
  EXPECT_EQ(graphOf(groups(90).bytes()).output.find("shortened"), std::string::npos);
  const std::string shortened =
      "0 HD 64\n"
      "1 DG 200\n"
      "2 TX 168\n";
  const std::string all = graphOf(groups(150).bytes()).output;
  EXPECT_EQ(all.substr(0, shortened.size()), shortened);
  EXPECT_NE(all.find("1 DG 6600 and 50 in all\n"), std::string::npos);
  EXPECT_NE(all.find("\nshortened\n"), std::string::npos);
}

/// Blocks of an unknown type, each with links to so many that come after it.
std::string wideTree(std::uint64_t count, std::uint64_t children) {
  std::string bytes = FileBuilder().bytes();
  const std::uint64_t size = 24 + 8 * children;
  for (std::uint64_t i = 0; i < count; ++i) {
    Bytes block;
    block.header("XX", size, children);
    for (std::uint64_t child = 0; child < children; ++child) {
      const std::uint64_t index = i * children + child + 1;
      block.u64(index < count ? 168 + size * index : 0);
    }
    bytes += block.str();
  }
  return bytes.replace(88, 8, Bytes().u64(168));
}

TEST(BlockGraph, NeverMoreBoxesThanThereIsRoomFor) {
  const Dumped graph = graphOf(wideTree(5000, 2));
  std::size_t boxes = 0;
  for (std::size_t at = graph.output.find(" XX "); at != std::string::npos;
       at = graph.output.find(" XX ", at + 1)) {
    ++boxes;
  }
  EXPECT_EQ(boxes, 499U);
  EXPECT_NE(graph.output.find("4501 without room\n"), std::string::npos);
}

TEST(BlockGraph, TreesOfThreeHundredBlocksAreDrawnWhole) {
  EXPECT_EQ(graphOf(wideTree(299, 2)).output.find("without room"), std::string::npos);
  EXPECT_EQ(graphOf(wideTree(299, 12)).output.find("shortened"), std::string::npos);
  EXPECT_NE(graphOf(wideTree(300, 12)).output.find("shortened"), std::string::npos);
}

TEST(BlockGraph, NamesOfLinksStandBelowCurvesThatComeFromAbove) {
  FileBuilder file;
  file.link(FileBuilder::header, 1, file.add("XX", {}));
  file.link(FileBuilder::header, 3, file.add("XX", {}));
  mdf_tools::GraphPicture picture;
  const Dumped graph =
      drawn(file.bytes(), [&](InputFile& input, std::ostream& os, const FindingSink& report) {
        mdf_tools::addGraph(picture, mdf_tools::makeGraph(input, {}, report), "a", "f0_");
        os << mdf_tools::dotOf(picture);
      });
  EXPECT_EQ(graph.output.substr(graph.output.find("  f0_0 ->")),
            "  f0_0 -> f0_1 [pos=\"e,193.400,-44.000 83.400,-44.000 107.400,-44.000 59.400,-44.000 "
            "187.400,-44.000\", label=\"hd_fh_first\", lp=\"161.200,-38.000\"];\n"
            "  f0_0 -> f0_2 [pos=\"e,193.400,-96.000 83.400,-44.000 107.400,-44.000 59.400,-96.000 "
            "187.400,-96.000\", label=\"hd_at_first\", lp=\"161.200,-102.000\"];\n"
            "}\n");
}

TEST(BlockGraph, Picture) {
  FileBuilder file;
  const std::uint64_t source = file.add("SI", {file.text("a \"b\" \\n"), 0, 168}, Bytes().zeros(8));
  file.link(FileBuilder::header, 0, source);
  mdf_tools::GraphPicture picture;
  const Dumped graph =
      drawn(file.bytes(), [&](InputFile& input, std::ostream& os, const FindingSink& report) {
        mdf_tools::addGraph(picture, mdf_tools::makeGraph(input, {}, report), "a&b", "f0_");
        os << mdf_tools::dotOf(picture);
      });
  EXPECT_EQ(
      graph.output,
      "digraph mdf {\n"
      "  graph [outputorder=edgesfirst, pad=0.2];\n"
      "  node [shape=box, style=filled, color=\"#404040\", fontname=\"Helvetica\", fontsize=10, "
      "margin=\"0.05,0.02\"];\n"
      "  edge [fontname=\"Helvetica\", fontsize=8, color=\"#606060\", fontcolor=\"#606060\", "
      "arrowsize=0.6];\n"
      "  f0_title [pos=\"12.700,-10.000\", width=0.353, height=0.278, label=\"a&amp;b\\l\", "
      "shape=plaintext, style=\"\", fontsize=12];\n"
      "  f0_0 [pos=\"41.700,-44.000\", width=1.158, height=0.278, label=\"HD  64 (0x40)\", "
      "fillcolor=\"#a9bcc6\"];\n"
      "  f0_1 [pos=\"238.000,-56.000\", width=1.239, height=0.611, label=\"SI  208 (0xd0)\\n"
      "\\\"a \\\"b\\\" \\\\n\\\"\\nother\", fillcolor=\"#8dbde0\"];\n"
      "  f0_2 [pos=\"437.200,-50.000\", width=1.239, height=0.444, label=\"TX  168 (0xa8)\\n"
      "\\\"a \\\"b\\\" \\\\n\\\"\", fillcolor=\"#f7ec84\"];\n"
      "  f0_0 -> f0_1 [pos=\"e,193.400,-44.000 83.400,-44.000 107.400,-44.000 59.400,-44.000 "
      "187.400,-44.000\", label=\"hd_dg_first\", lp=\"161.200,-38.000\"];\n"
      "  f0_1 -> f0_2 [pos=\"e,392.600,-50.000 282.600,-50.000 306.600,-50.000 258.600,-50.000 "
      "386.600,-50.000\", label=\"si_tx_name\", lp=\"362.600,-44.000\"];\n"
      "  f0_1 -> f0_2 [pos=\"e,392.600,-50.000 282.600,-65.000 342.600,-65.000 332.600,-50.000 "
      "386.600,-50.000\", label=\"si_md_comment\", lp=\"319.200,-70.000\", style=dashed];\n"
      "}\n");
}

TEST(BlockGraph, Json) {
  FileBuilder file = groups(1);
  file.link(200, 2, static_cast<std::uint64_t>(-1));
  const Dumped graph =
      drawn(file.bytes(), [](InputFile& input, std::ostream& os, const FindingSink& report) {
        os << mdf_tools::jsonLine(mdf_tools::graphAsJson(mdf_tools::makeGraph(input, {}, report)));
      });
  EXPECT_EQ(graph.output, R"({"is_shortened":false,"links_without_room":0,"nodes":[)"
                          R"({"offset":64,"type":"HD","length":104,"name":""},)"
                          R"({"offset":200,"type":"DG","length":64,"name":""},)"
                          R"({"offset":-1},)"
                          R"({"offset":168,"type":"TX","length":28,"name":"all"}],"links":[)"
                          R"({"from":0,"to":1,"role":"hd_dg_first"},)"
                          R"({"from":1,"to":2,"role":"dg_data"},)"
                          R"({"from":1,"to":3,"role":"dg_md_comment"}]})");
}

}  // namespace
