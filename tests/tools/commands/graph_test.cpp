#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <pugixml.hpp>
#include <string>

#include "tools/support/file_builder.h"
#include "tools/support/healthy_file.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// The texts of a picture, each on a line.
std::string textsOf(const std::string& svg) {
  pugi::xml_document document;
  const auto parsed = document.load_string(svg.c_str());
  EXPECT_TRUE(parsed) << parsed.description();
  EXPECT_STREQ(document.document_element().name(), "svg");
  std::string texts;
  for (const auto& text : document.select_nodes("//text")) {
    texts += text.node().text().get() + std::string("\n");
  }
  return texts;
}

struct GraphCommand : testing::Test {
  const TempFile healthy{healthyFile()};
  const TempFile file{FileBuilder().bytes()};
  const ScratchFolder folder;
  const std::string picture = folder / "graph.svg";
};

TEST_F(GraphCommand, SvgHasABoxForEachBlockAndAnArrowForEachLink) {
  EXPECT_EQ(run({"graph", "-o", picture, healthy.path()}), wrote(""));
  const std::string texts = textsOf(bytesOf(picture));
  for (const std::string text : {"HD \xc2\xa0"
                                 "64 (0x40)\n",
                                 "XX \xc2\xa0"
                                 "264 (0x108)\n",
                                 "\"vehicle speed\"\n", "cn_composition\n", "link 1\n",
                                 "ch_element[0].dg\n", "ev_scope[0]\n"}) {
    EXPECT_PRED2(contains, texts, text);
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST_F(GraphCommand, DoesNotTakeThePlaceOfWhatItReads) {
  std::filesystem::create_symlink(healthy.path(), picture);
  EXPECT_EQ(run({"graph", "-o", picture, healthy.path()}),
            said(2, "the output " + picture + " is one of the files to read"));
}

TEST_F(GraphCommand, PngOfAMap) {
  const std::string other = folder / "map.png";
  EXPECT_EQ(run({"graph", "--map", "-o", other, healthy.path(), healthy.path()}).exit_code, 0);
  EXPECT_EQ(bytesOf(other).substr(0, 8), "\x89PNG\r\n\x1a\n");
}

TEST_F(GraphCommand, MapIsWellFormed) {
  const TempFile longer(healthyFile() + std::string(100, 'x'));
  EXPECT_EQ(run({"graph", "--map", "-o", picture, longer.path()}).exit_code, 0);
  const std::string texts = textsOf(bytesOf(picture));
  EXPECT_PRED2(contains, texts, "1,549 bytes\n");
  EXPECT_PRED2(contains, texts,
               "TX \xc2\xa0"
               "1 block, 40 bytes\n");
  EXPECT_PRED2(contains, texts,
               "no block \xc2\xa0"
               "106 bytes in 4 places\n");
}

TEST_F(GraphCommand, HostileNamesAreDrawnAsTheyAre) {
  FileBuilder builder;
  const std::string name = "]; \"<b>&lt;\\N\n\x01\xff{a|b}";
  const auto source = builder.add("SI", {builder.text(name), 0, 0}, std::string(8, '\0'));
  builder.link(FileBuilder::header, 0, source);
  const TempFile named(builder.bytes());
  EXPECT_EQ(run({"graph", "-o", picture, named.path()}).exit_code, 0);
  const std::string texts = textsOf(bytesOf(picture));
  EXPECT_PRED2(contains, texts, "\"]; \"<b>&lt;\\N\\x0a\\x01\\xff{a|b}\"\n");
}

TEST_F(GraphCommand, DotGoesToAFileOrToStandardOutput) {
  const std::string other = folder / "graph.dot";
  EXPECT_EQ(run({"graph", "-o", other, "--no-text", "--depth", "1", healthy.path()}).exit_code, 0);
  const RunResult result = run({"graph", "-o", "-", "--no-text", "--depth", "1", healthy.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, bytesOf(other));
  EXPECT_EQ(result.output.rfind("digraph mdf {\n", 0), 0U);
}

TEST_F(GraphCommand, JsonInsteadOfAPicture) {
  const RunResult graph = run({"graph", "--json", file.path()});
  EXPECT_EQ(graph.output, R"({"schema":2,"file":")" + file.path() +
                              R"(","is_shortened":false,"links_without_room":0,"nodes":[)"
                              R"({"offset":64,"type":"HD","length":104,"name":""}],"links":[]})"
                              "\n");
  const RunResult map = run({"graph", "--json", "--map", file.path()});
  EXPECT_EQ(map.output, R"({"schema":2,"file":")" + file.path() +
                            R"(","size":168,"types":[{"type":"HD","blocks":1,"bytes":104},)"
                            R"({"type":"ID","blocks":1,"bytes":64}],"gaps":0,"gap_bytes":0,)"
                            R"("overlap_bytes":0})"
                            "\n");
}

TEST_F(GraphCommand, BrokenFileIsDrawnAllTheSame) {
  const TempFile broken(healthyFile().substr(0, 1000));
  const RunResult result = run({"graph", "-o", picture, broken.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_PRED2(contains, result.messages, "expected link 3 of ##HD to lead into the file");
  EXPECT_PRED2(contains, textsOf(bytesOf(picture)), "no block at\n1080\n");
}

TEST_F(GraphCommand, NoPictureWithoutAReadableFile) {
  EXPECT_EQ(run({"graph", "-o", picture, "/no/such/file"}),
            said(2, "cannot open /no/such/file: No such file or directory"));
  EXPECT_FALSE(std::filesystem::exists(picture));
}

TEST_F(GraphCommand, WithoutGraphviz) {
  const std::string other = folder / "graph.png";
  folder.write("graph.png", "the one before");
  RunOptions options;
  options.environment = {"PATH=" + folder.path().string()};
  EXPECT_EQ(run({"graph", "-o", other, file.path()}, options),
            said(1,
                 "cannot draw: the program neato is not installed; install Graphviz, or write a "
                 ".dot file"));
  EXPECT_EQ(bytesOf(other), "the one before");
}

TEST_F(GraphCommand, GraphvizThatFails) {
  const std::string other = folder / "graph.png";
  folder.write("neato", "#!/bin/sh\necho half a picture\nexit 3\n");
  std::filesystem::permissions(folder / "neato", std::filesystem::perms::owner_all);
  RunOptions options;
  options.environment = {"PATH=" + folder.path().string()};
  EXPECT_EQ(run({"graph", "-o", other, file.path()}, options),
            said(1, "cannot draw: neato ended with exit code 3"));
  EXPECT_FALSE(std::filesystem::exists(other));
}

TEST_F(GraphCommand, PlaceThatCannotBeWritten) {
  EXPECT_EQ(run({"graph", "-o", "/no/such/folder/graph.dot", file.path()}),
            said(1, "cannot open the folder /no/such/folder: No such file or directory"));
}

}  // namespace
