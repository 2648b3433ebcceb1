#include "reader/data/data_links.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "reader/bytes/input_file.h"
#include "tools/support/data_blocks.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::DataLinks;
using mdf_reader::Finding;

namespace {

/// Two data blocks and one of invalidation data at known places, and what a test adds.
class LinkedFile : public FileBuilder {
 public:
  LinkedFile() {
    add("DT", {}, "a");  // 168
    add("DT", {}, "b");  // 200
    add("DI", {}, "c");  // 232
  }

  std::uint64_t lists(std::uint64_t first) { return add("HL", {first}, Bytes().zeros(8)); }
  std::uint64_t values(std::uint32_t flags, std::uint32_t count,
                       const std::vector<std::uint64_t>& links) {
    return add("LD", links, Bytes().u32(flags).u32(count).u64(1));
  }
};

/// The parts that a link leads to, as "data" or "data/invalidation" with "!" where a link to
/// invalidation data lacks, and "?" with the offset of a finding.
std::string partsAt(const LinkedFile& contents, std::uint64_t link) {
  const TempFile path(contents.bytes());
  mdf_reader::InputFile file(path.path());
  std::string text;
  const mdf_reader::FindingSink report = [&](const Finding& finding) {
    text += "?" + std::to_string(finding.offset) + ' ';
  };
  DataLinks links(file, {FileBuilder::header, link}, report);
  for (auto part = links.next(); part; part = links.next()) {
    text += std::to_string(part->data) + (part->lacks_invalidation ? "!" : "");
    text += part->invalidation != 0 ? '/' + std::to_string(part->invalidation) + ' ' : " ";
  }
  return text;
}

constexpr std::uint32_t with_invalidation = 0x80000000U;

TEST(DataLinks, LeadToBlocksAndFindings) {
  struct Case {
    std::string shows;
    std::string parts;
    std::function<std::uint64_t(LinkedFile&)> link;
  };
  const std::vector<Case> cases = {
      {"no link", "", [](LinkedFile&) { return 0; }},
      {"one block", "168 ", [](LinkedFile&) { return 168; }},
      {"a list", "168 200 168 ",
       [](LinkedFile& f) {
         return addList(f, {168, 200, 168});
       }},
      {"nil links", "200 ",
       [](LinkedFile& f) {
         return addList(f, {0, 200, 0});
       }},
      {"a chain", "168 200 ",
       [](LinkedFile& f) { return addList(f, {168}, addList(f, {}, addList(f, {200}))); }},
      {"a header list", "168 ", [](LinkedFile& f) { return f.lists(addList(f, {168})); }},
      {"an empty header list", "", [](LinkedFile& f) { return f.lists(0); }},
      {"a header list that leads to data", "?64 ", [](LinkedFile& f) { return f.lists(168); }},
      {"another block", "?64 ", [](LinkedFile&) { return 64; }},
      {"beyond the file", "?64 ", [](LinkedFile&) { return 9999; }},
      {"a list that goes on elsewhere", "168 ?264 ",
       [](LinkedFile& f) { return addList(f, {168}, 64); }},
      {"a circle", "168 ?264 ",
       [](LinkedFile& f) {
         const std::uint64_t list = addList(f, {168});
         f.link(list, 0, list);
         return list;
       }},
      {"values", "168 200 ",
       [](LinkedFile& f) {
         return f.values(0, 2, {0, 168, 200});
       }},
      {"values with links after those to data", "168 ",
       [](LinkedFile& f) {
         return f.values(0, 1, {0, 168, 232});
       }},
      {"values with invalidation data", "168/232 200 ",
       [](LinkedFile& f) {
         return f.values(with_invalidation, 2, {0, 168, 200, 232, 0});
       }},
      {"nil values take their invalidation data with them", "200/64 ",
       [](LinkedFile& f) {
         return f.values(with_invalidation, 2, {0, 0, 200, 232, 64});
       }},
      {"too few links to invalidation data", "168/232 200! ",
       [](LinkedFile& f) {
         return f.values(with_invalidation, 2, {0, 168, 200, 232});
       }},
      {"a count that lies", "168! 200! ",
       [](LinkedFile& f) {
         return f.values(with_invalidation, UINT32_MAX, {0, 168, 200});
       }},
  };
  for (const Case& each : cases) {
    LinkedFile file;
    const std::uint64_t link = each.link(file);
    EXPECT_EQ(partsAt(file, link), each.parts) << each.shows;
  }
}

TEST(DataLinks, EachPartTellsItsList) {
  LinkedFile contents;
  const std::uint64_t second = addList(contents, {200});
  const std::uint64_t first = addList(contents, {168}, second);
  const TempFile path(contents.bytes());
  mdf_reader::InputFile file(path.path());
  const mdf_reader::FindingSink sink = [](const Finding& finding) {
    ADD_FAILURE() << finding.sentence;
  };
  DataLinks links(file, {FileBuilder::header, first}, sink);
  EXPECT_TRUE(links.isInLists());
  EXPECT_EQ(links.next()->list, first);
  EXPECT_EQ(links.next()->list, second);
  DataLinks single(file, {FileBuilder::header, 168}, sink);
  EXPECT_FALSE(single.isInLists());
  EXPECT_EQ(single.next()->list, 168U);
}

TEST(DataLinks, NothingComesOnceTheyAreStopped) {
  LinkedFile contents;
  const std::uint64_t list = addList(contents, {168, 200});
  const TempFile path(contents.bytes());
  mdf_reader::InputFile file(path.path());
  const mdf_reader::FindingSink sink = [](const Finding&) {};
  DataLinks links(file, {FileBuilder::header, list}, sink);
  EXPECT_EQ(links.next()->data, 168U);
  links.stop();
  EXPECT_FALSE(links.next());
}

}  // namespace
