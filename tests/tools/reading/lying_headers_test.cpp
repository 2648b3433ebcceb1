// What becomes of a block of each type when its header lies: the right findings, the dump wherever
// the bytes for it are there, and no memory for what is not.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/dumped.h"
#include "tools/support/mdf_bytes.h"
#include "tools/support/temp_file.h"
#include "tools/support/walker_findings.h"

using namespace mdf_tests;

namespace {

constexpr std::uint64_t kibi64 = 65536;
constexpr std::uint64_t block_offset = 168;
constexpr std::uint64_t bytes_after = 24;

struct Type {
  std::string letters;
  std::size_t length;
  std::uint64_t links;
  std::uint64_t fields;  ///< bytes that the library's class takes from after the links
  enum { unknown, fixed_size, links_and_fields, fields_only } reading;
};

const std::vector<Type> types = {
    {"HD", 104, 6, 32, Type::fixed_size},       {"FH", 56, 2, 16, Type::fixed_size},
    {"DG", 64, 4, 8, Type::fixed_size},         {"CG", 104, 6, 32, Type::fixed_size},
    {"SI", 56, 3, 8, Type::fixed_size},         {"SR", 64, 2, 24, Type::fixed_size},
    {"HL", 40, 1, 8, Type::fixed_size},         {"CH", 64, 4, 5, Type::links_and_fields},
    {"AT", 96, 4, 40, Type::links_and_fields},  {"EV", 96, 5, 32, Type::links_and_fields},
    {"CN", 160, 8, 72, Type::links_and_fields}, {"CC", 80, 4, 24, Type::links_and_fields},
    {"DL", 40, 1, 8, Type::links_and_fields},   {"DZ", 48, 0, 24, Type::fields_only},
    {"TX", 40, 0, 0, Type::fields_only},        {"MD", 40, 0, 0, Type::fields_only},
    {"DT", 40, 0, 0, Type::fields_only},        {"RD", 40, 0, 0, Type::fields_only},
    {"SD", 40, 0, 0, Type::fields_only},        {"XX", 48, 2, 0, Type::unknown},
};

std::vector<std::uint64_t> liesAbout(std::uint64_t truth) {
  constexpr std::uint64_t one = 1;
  return {0,
          1,
          23,
          24,
          25,
          truth - 1,
          truth,
          truth + 1,
          (one << 31U) - 1,
          one << 31U,
          (one << 32U) - 1,
          (one << 32U) + 24,
          (one << 63U) - 1,
          one << 63U,
          UINT64_MAX};
}

/// A file whose header block links to a block of the type with this header. Its links are nil, and
/// so are the bytes after it.
Dumped dumpOf(const Type& type, std::uint64_t length, std::uint64_t link_count) {
  const TempFile file(
      fileHead({0, block_offset, 0, 0, 0, 0}) +
      Bytes().header(type.letters, length, link_count).zeros(type.length - 24 + bytes_after).str());
  return dumpedFile(file.path(), kibi64);
}

bool fitInto(std::uint64_t length, std::uint64_t links, std::uint64_t fields) {
  return length >= 24 + fields && links <= (length - 24 - fields) / 8;
}

/// The links that the walk goes along: a header list has one that it need not count, if its length
/// leaves room for it.
std::uint64_t standingLinks(const Type& type, std::uint64_t length, std::uint64_t links) {
  return type.letters == "HL" && links == 0 && length >= 40 ? 1 : links;
}

/// Whether the library's class reads the block, when its bytes are there.
bool isReadable(const Type& type, std::uint64_t length, std::uint64_t links) {
  switch (type.reading) {
    case Type::fixed_size:
      return fitInto(type.length, links, type.fields);
    case Type::links_and_fields:
      return fitInto(length, links, type.fields);
    case Type::fields_only:
      return fitInto(length, 0, type.fields);
    default:
      return true;
  }
}

std::string expectedFindings(const Type& type, std::uint64_t length, std::uint64_t links) {
  const std::uint64_t there = type.length + bytes_after;
  const std::uint64_t standing = standingLinks(type, length, links);
  std::string findings;
  if (!fitInto(length, standing, 0)) {
    findings += lengthTooSmall(block_offset, type.letters, standing, length);
  }
  if (length > there) {
    findings += blockCut(block_offset, type.letters, length, there);
  }
  const bool is_too_short = type.reading == Type::fixed_size && length < type.length;
  if (findings.empty() && (is_too_short || !isReadable(type, length, links))) {
    findings += doesNotFit(block_offset, type.letters, length, links);
  }
  return findings;
}

bool isShown(const Type& type, std::uint64_t length, std::uint64_t links) {
  const std::uint64_t there = type.length + bytes_after;
  return type.reading != Type::unknown && isReadable(type, length, links) &&
         (type.reading == Type::fixed_size || (length >= 24 && length <= there));
}

void expectDump(const Type& type, std::uint64_t length, std::uint64_t links) {
  SCOPED_TRACE("##" + type.letters + " length " + std::to_string(length) + " links " +
               std::to_string(links));
  const Dumped dump = dumpOf(type, length, links);
  EXPECT_EQ(dump.findings, expectedFindings(type, length, links));
  const std::size_t line =
      dump.output.find("168 (0xa8) ##" + type.letters + " length " + std::to_string(length) +
                       " links " + std::to_string(links));
  ASSERT_NE(line, std::string::npos);
  const std::string fields = dump.output.substr(dump.output.find('\n', line) + 1);
  const std::string frame = "[DEBUG] ==================== ";
  const std::string name = type.letters + "BLOCK ===================\n";
  if (isShown(type, length, links)) {
    EXPECT_EQ(fields.find(frame + name), 0U);
    EXPECT_EQ(fields.rfind(frame + "End of " + name),
              fields.size() - (frame + "End of " + name).size());
  } else {
    EXPECT_EQ(fields, "");
  }
}

TEST(LyingHeaders, LengthOfEachType) {
  for (const Type& type : types) {
    for (const std::uint64_t length : liesAbout(type.length)) {
      expectDump(type, length, type.links);
    }
  }
}

TEST(LyingHeaders, LengthOfAHeaderListThatCountsNoLink) {
  const Type header_list{"HL", 40, 1, 8, Type::fixed_size};
  for (const std::uint64_t length : liesAbout(header_list.length)) {
    expectDump(header_list, length, 0);
  }
}

TEST(LyingHeaders, LinkCountOfEachType) {
  for (const Type& type : types) {
    for (const std::uint64_t links : liesAbout(type.links)) {
      expectDump(type, type.length, links);
    }
  }
}

}  // namespace
