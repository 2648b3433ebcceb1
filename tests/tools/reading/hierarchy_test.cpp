#include "reader/model/hierarchy.h"

#include <gtest/gtest.h>

#include <string>

#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using namespace mdf_reader;

namespace {

std::string chFields(std::uint32_t elements, unsigned char type) {
  return Bytes().u32(elements).u8(type).zeros(3);
}

/// A line for each entry, "depth type name [comment] data group/channel group/channel ...", and for
/// each finding.
std::string outline(const FileBuilder& builder, std::uint64_t first) {
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  Texts texts;
  std::string lines;
  const auto entries = readHierarchy(file, first, texts, [&](const Finding& finding) {
    lines += std::to_string(finding.offset) + ": " + finding.sentence + '\n';
  });
  for (const HierarchyEntry& entry : entries) {
    lines += std::to_string(entry.depth) + ' ' + std::to_string(entry.type) + ' ' +
             std::string(entry.name) + " [" + std::string(entry.comment) + ']';
    for (const HierarchyElement& each : entry.elements) {
      lines += ' ' + std::to_string(each.data_group) + '/' + std::to_string(each.channel_group) +
               '/' + std::to_string(each.channel);
    }
    lines += '\n';
  }
  return lines;
}

TEST(Hierarchy, EntriesBelowComeBeforeTheNextOneBeside) {
  FileBuilder builder;
  const auto engine = builder.text("engine");
  const auto pump = builder.text("pump");
  const auto brakes = builder.text("brakes");
  const auto comment = builder.text("all of it");
  const auto third = builder.add("CH", {0, 0, brakes, 0}, chFields(0, 0));
  const auto second = builder.add("CH", {0, 0, pump, 0, 10, 11, 12, 20, 21, 22}, chFields(2, 5));
  const auto first = builder.add("CH", {third, second, engine, comment}, chFields(0, 1));
  EXPECT_EQ(outline(builder, first),
            "0 1 engine [all of it]\n"
            "1 5 pump [] 10/11/12 20/21/22\n"
            "0 0 brakes []\n");
}

TEST(Hierarchy, LinkCountOfTheElementsAlone) {
  FileBuilder builder;
  const auto entry = builder.add("CH", {0, 0, 0, 0, 10, 11, 12}, chFields(1, 0));
  builder.write(entry + 16, Bytes().u64(5));  // as if an element were one link
  EXPECT_EQ(outline(builder, entry), "0 0  [] 10/11/12\n");
}

TEST(Hierarchy, LinksThatLeadElsewhereAreToldAndNotFollowed) {
  FileBuilder builder;
  const auto text = builder.text("no entry");
  const auto second = builder.add("CH", {0, text, 0, 0}, chFields(0, 2));
  const auto first = builder.add("CH", {0, second, 0, 0}, chFields(0, 1));
  builder.link(second, 0, first);
  const auto at = [](std::uint64_t offset) { return std::to_string(offset); };
  EXPECT_EQ(outline(builder, first),
            at(second) + ": expected a link to a new block \"##CH\" at 168 (0xa8), found none\n" +
                at(second) + ": expected a link to a new block \"##CH\" at " +
                decimalAndHex(first) + ", found one that was visited before\n" +
                "0 1  []\n1 2  []\n");
}

TEST(Hierarchy, NoneForALinkToNothing) { EXPECT_EQ(outline(FileBuilder(), 0), ""); }

}  // namespace
