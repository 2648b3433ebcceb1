#include "framework/field_list.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

/// A data section with every kind of entry.
struct Section {
  UINT8 number = 0;
  INT16 offset = 0;
  detail::Array<char, 3> text{};
  detail::Array<UINT8, 5> reserved{};
  UINT32 reserved_number = 0;
  REAL real = 0;
  LINK link = 0;
  std::vector<LINK> list;
  std::vector<UINT8> bytes;
};

constexpr auto section_fields = detail::fieldList(
    detail::field<&Section::number>("number"), detail::countOf<UINT8, &Section::list>("list_count"),
    detail::field<&Section::offset>("offset"), detail::reserved<&Section::reserved>("reserved"),
    detail::field<&Section::text>("text"), detail::countOf<UINT32, &Section::bytes>("byte_count"),
    detail::reserved<&Section::reserved_number>("reserved_number"),
    detail::field<&Section::real>("real"), detail::field<&Section::link>("link"));

static_assert(section_fields.width() == 1 + 1 + 2 + 5 + 3 + 4 + 4 + 8 + 8);
static_assert(detail::fieldList().width() == 0);
static_assert(section_fields.takenWidth() == section_fields.width());
static_assert(detail::fieldList().takenWidth() == 0);
static_assert(detail::fieldList(detail::field<&Section::number>("number"),
                                detail::reserved<&Section::reserved_number>("reserved_number"),
                                detail::reserved<&Section::reserved>("reserved"))
                  .takenWidth() == 1);
static_assert(detail::sizeWithLinks(0, section_fields) == 24 + 36);
static_assert(detail::sizeWithLinks(4, section_fields) == 24 + 32 + 36);

Section distinctSection() {
  Section section;
  section.number = 0x81;
  section.offset = -60;
  setBytes(section.text, {'a', '\0', 'c'});
  setBytes(section.reserved, {11, 12, 13, 14, 15});
  section.reserved_number = 0x21222324;
  section.real = -2.5;
  section.link = -2;
  section.list.resize(258);
  section.bytes.resize(0x10203);
  return section;
}

/// The list of 258 entries is too long for its one-byte count, which is cut to 2.
std::string distinctBytes() {
  return u8(0x81, 2) + u8(0xC4, 0xFF) + u8(11, 12, 13, 14, 15) + u8('a', 0, 'c') + u8(3, 2, 1, 0) +
         u8(0x24, 0x23, 0x22, 0x21) + u8(0, 0, 0, 0, 0, 0, 4, 0xC0) +
         u8(0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF);
}

std::string put(const Section& section) {
  std::array<char, section_fields.width()> bytes;
  section_fields.put(bytes.data(), section);
  return {bytes.data(), bytes.size()};
}

TEST(FieldList, PutsEveryEntryInItsOrder) { EXPECT_BYTES(put(distinctSection()), distinctBytes()); }

TEST(FieldList, PutsTheDefaults) { EXPECT_BYTES(put(Section()), zeros(36)); }

TEST(FieldList, TakesFieldsAndPassesOverReservedBytes) {
  const std::string bytes = distinctBytes() + "after";
  detail::Decoder in(bytes.data(), bytes.size());
  Section section;
  setBytes(section.reserved, {91, 92, 93, 94, 95});
  section.reserved_number = 96;
  section_fields.take(in, section);
  EXPECT_EQ(in.remaining(), 5U);
  EXPECT_EQ(section.number, 0x81);
  EXPECT_EQ(section.offset, -60);
  EXPECT_EQ(asArray(section.text), (std::array<char, 3>{'a', '\0', 'c'}));
  EXPECT_EQ(asArray(section.reserved), (std::array<UINT8, 5>{91, 92, 93, 94, 95}));
  EXPECT_EQ(section.reserved_number, 96U);
  EXPECT_EQ(section.real, -2.5);
  EXPECT_EQ(section.link, -2);
  EXPECT_TRUE(section.list.empty());
  EXPECT_TRUE(section.bytes.empty());
}

TEST(FieldList, ReturnsTheCountsOnTheWay) {
  const std::string bytes = distinctBytes();
  detail::Decoder in(bytes.data(), bytes.size());
  Section section;
  EXPECT_EQ(section_fields.take(in, section), (std::array<UINT64, 2>{2, 0x10203}));
}

TEST(FieldList, ShowsNamesOffsetsAndWidths) {
  EXPECT_EQ(layoutOf(section_fields, 56),
            "56 1 number\n"
            "57 1 list_count\n"
            "58 2 offset\n"
            "60 5 reserved\n"
            "65 3 text\n"
            "68 4 byte_count\n"
            "72 4 reserved_number\n"
            "76 8 real\n"
            "84 8 link\n");
  EXPECT_EQ(layoutOf(detail::fieldList(), 24), "");
}

TEST(FieldList, TellsHowBytesAreToBeUnderstood) {
  using detail::FieldKind;
  std::vector<FieldKind> kinds;
  for (const detail::Field& field : section_fields.fields()) {
    kinds.push_back(field.kind);
  }
  EXPECT_EQ(kinds,
            (std::vector<FieldKind>{FieldKind::unsigned_number, FieldKind::unsigned_number,
                                    FieldKind::signed_number, FieldKind::reserved, FieldKind::bytes,
                                    FieldKind::unsigned_number, FieldKind::reserved,
                                    FieldKind::real, FieldKind::signed_number}));
}

TEST(FieldList, KeptReservedBytesAreTakenAndShownAsReserved) {
  constexpr auto fields = detail::fieldList(detail::keptReserved<&Section::reserved>("reserved"));
  EXPECT_EQ(fields.fields()[0].kind, detail::FieldKind::reserved);
  Section section;
  fields.take("\1\2\3\4\5", section);
  EXPECT_EQ(asArray(section.reserved), (std::array<UINT8, 5>{1, 2, 3, 4, 5}));
}

}  // namespace
