#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <utility>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::CCBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::REAL;

namespace {

using Links = std::vector<LINK>;
using Values = std::vector<REAL>;
using Range = std::pair<REAL, REAL>;

constexpr REAL infinity = std::numeric_limits<REAL>::infinity();
constexpr REAL smallest = std::numeric_limits<REAL>::denorm_min();

/// A block of which every part holds something.
CCBLOCK filledBlock() {
  CCBLOCK block(static_cast<CCBLOCK::MDF_CC_TYPE_t>(99));
  block.setNameTxblock(100);
  block.setUnitblock(200);
  block.setCommentblock(300);
  block.setInverseCcblock(400);
  block.setPrecision(3);
  block.cc_flags = 0xA5C7;
  block.setPhysicalValueRangeMin(-1.5);
  block.setPhysicalValueRangeMax(2.25);
  block.setPadding(5);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.header.length = 9999;
  block.header.link_count = 77;
  block.cc_refs = {-1, -2, -3, -4, -5, -6, -7, -8};
  block.cc_vals = {-1, -2, -3, -4, -5, -6, -7, -8};
  return block;
}

/// The file's bytes of a block that was filled before, after a set-up gave it a type and lists.
std::string filledBytes(std::uint8_t type, const Links& references, const Values& values) {
  Bytes bytes;
  bytes.text("##CC")
      .u8s({1, 2, 3, 4})
      .u64(80 + 8 * references.size() + 8 * values.size())
      .u64(4 + references.size())
      .links({100, 200, 300, 400});
  for (const LINK reference : references) {
    bytes.i64(reference);
  }
  bytes.u8s({type, 3})
      .u16(0xA5C7)
      .u16(static_cast<std::uint16_t>(references.size()))
      .u16(static_cast<std::uint16_t>(values.size()))
      .f64(-1.5)
      .f64(2.25);
  for (const REAL value : values) {
    bytes.f64(value);
  }
  return bytes;
}

/// Calls setUp(block) for a new block and for a filled one, and expects that both hold the type and
/// the lists afterwards and that nothing else has changed.
template <class SetUp>
void expectSetUp(SetUp setUp, std::uint8_t type, const Links& references, const Values& values) {
  CCBLOCK fresh(static_cast<CCBLOCK::MDF_CC_TYPE_t>(99));
  setUp(fresh);
  EXPECT_EQ(fresh.cc_type, type);
  EXPECT_EQ(fresh.cc_refs, references);
  EXPECT_EQ(fresh.cc_vals, values);
  EXPECT_EQ(linksOf(fresh), (Links{0, 0, 0, 0}));
  EXPECT_EQ(fresh.cc_precision, 255);
  EXPECT_EQ(fresh.cc_flags, 0);
  EXPECT_EQ(fresh.header.length, 80U);
  EXPECT_EQ(fresh.header.link_count, 4U);

  CCBLOCK block = filledBlock();
  setUp(block);
  EXPECT_BYTES(written(block), filledBytes(type, references, values));
  EXPECT_EQ(block.header.length, 9999U);
  EXPECT_EQ(block.header.link_count, 77U);
  EXPECT_EQ(block.getPadding(), 5);
}

// ---- Types without a table

TEST(CCBLOCKSetups, EqualConversionHasNoParameters) {
  expectSetUp([](CCBLOCK& block) { block.setupEqualConversion(); }, 0, {}, {});
}

TEST(CCBLOCKSetups, LinearConversionHasTwoValues) {
  expectSetUp([](CCBLOCK& block) { block.setupLinearConversion(2.5, -3); }, 1, {}, {2.5, -3});
}

TEST(CCBLOCKSetups, LinearConversionKeepsTheOrderOfItsArguments) {
  expectSetUp([](CCBLOCK& block) { block.setupLinearConversion(7, infinity); }, 1, {},
              {7, infinity});
  expectSetUp([](CCBLOCK& block) { block.setupLinearConversion(infinity, 7); }, 1, {},
              {infinity, 7});
}

TEST(CCBLOCKSetups, RationalConversionHasSixValues) {
  expectSetUp([](CCBLOCK& block) { block.setupRationalConversion(1.5, -2, 6, 3, smallest, 1e300); },
              2, {}, {1.5, -2, 6, 3, smallest, 1e300});
}

TEST(CCBLOCKSetups, AlgebraicConversionHasOneReference) {
  expectSetUp([](CCBLOCK& block) { block.setupAlgebraicConversion(5000); }, 3, {5000}, {});
}

TEST(CCBLOCKSetups, AlgebraicConversionTakesANilLink) {
  expectSetUp([](CCBLOCK& block) { block.setupAlgebraicConversion(0); }, 3, {0}, {});
}

// ---- Values to values

TEST(CCBLOCKSetups, ValueTableHasKeyAndValueForEachEntryAndNoDefault) {
  for (const bool interpolate : {true, false}) {
    SCOPED_TRACE(interpolate);
    const std::uint8_t type = interpolate ? 4 : 5;
    const auto setUpWith = [&](const std::map<REAL, REAL>& table) {
      return [&](CCBLOCK& block) { block.setupV2VTABConversion(interpolate, table); };
    };
    expectSetUp(setUpWith({}), type, {}, {});
    expectSetUp(setUpWith({{2, 20}}), type, {}, {2, 20});
    expectSetUp(setUpWith({{3, 0.5}, {-1, 30}, {2, -20}}), type, {}, {-1, 30, 2, -20, 3, 0.5});
  }
}

TEST(CCBLOCKSetups, InterpolationChangesOnlyTheTypeOfAValueTable) {
  const std::map<REAL, REAL> table = {{3, 0.5}, {-1, 30}, {2, -20}};
  CCBLOCK with(CCBLOCK::CC_CONVTYPE_EQUAL);
  with.setupV2VTABConversion(true, table);
  CCBLOCK without(CCBLOCK::CC_CONVTYPE_EQUAL);
  without.setupV2VTABConversion(false, table);
  EXPECT_EQ(with.getConversionType(), CCBLOCK::CC_CONVTYPE_V2VTAB_INTERPOL);
  EXPECT_EQ(without.getConversionType(), CCBLOCK::CC_CONVTYPE_V2VTAB_NOINTERPOL);
  without.setConversionType(CCBLOCK::CC_CONVTYPE_V2VTAB_INTERPOL);
  EXPECT_BYTES(written(with), written(without));
}

TEST(CCBLOCKSetups, RangeTableHasRangeAndValueForEachEntryAndTheDefaultLast) {
  const auto setUpWith = [](const std::map<Range, REAL>& table, REAL default_value) {
    return [&table, default_value](CCBLOCK& block) {
      block.setupVRANGE2VTABConversion(table, default_value);
    };
  };
  expectSetUp(setUpWith({}, -1), 6, {}, {-1});
  expectSetUp(setUpWith({{{0, 10}, 0.5}}, -1), 6, {}, {0, 10, 0.5, -1});
  expectSetUp(setUpWith({{{10, 20}, 1.5}, {{-5, 0}, 7}, {{0, 10}, 0.5}}, 99), 6, {},
              {-5, 0, 7, 0, 10, 0.5, 10, 20, 1.5, 99});
}

TEST(CCBLOCKSetups, RangeTableExampleInTheFile) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.setupAlgebraicConversion(5000);
  block.setupVRANGE2VTABConversion({{{10.0, 20.0}, 1.5}, {{0.0, 10.0}, 0.5}}, -1.0);
  EXPECT_EQ(block.getSize(), 136U);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CC", 136, 4)
                                   .zeros(32)
                                   .u8s({6, 255})
                                   .u16(0)
                                   .u16(0)
                                   .u16(7)
                                   .zeros(16)
                                   .f64(0.0)
                                   .f64(10.0)
                                   .f64(0.5)
                                   .f64(10.0)
                                   .f64(20.0)
                                   .f64(1.5)
                                   .f64(-1.0));
}

// ---- Values to texts

TEST(CCBLOCKSetups, ValueToTextTableHasKeysAsValuesAndLinksAsReferencesWithTheDefaultLast) {
  const auto setUpWith = [](const std::map<REAL, LINK>& table, LINK default_link) {
    return [&table, default_link](CCBLOCK& block) {
      block.setupV2TEXT_SCALETABConversion(table, default_link);
    };
  };
  expectSetUp(setUpWith({}, 6000), 7, {6000}, {});
  expectSetUp(setUpWith({{1.5, 5000}}, 6000), 7, {5000, 6000}, {1.5});
  expectSetUp(setUpWith({{3, 1000}, {-1, 5000}, {2, 3000}}, 0), 7, {5000, 3000, 1000, 0},
              {-1, 2, 3});
}

TEST(CCBLOCKSetups, RangeToTextTableHasRangesAsValuesAndLinksAsReferencesWithTheDefaultLast) {
  const auto setUpWith = [](const std::map<Range, LINK>& table, LINK default_link) {
    return [&table, default_link](CCBLOCK& block) {
      block.setupVRANGE2TEXT_SCALETABConversion(table, default_link);
    };
  };
  expectSetUp(setUpWith({}, 6000), 8, {6000}, {});
  expectSetUp(setUpWith({{{1.5, 2.5}, 5000}}, 6000), 8, {5000, 6000}, {1.5, 2.5});
  expectSetUp(setUpWith({{{3, 4}, 1000}, {{-1, 0}, 5000}, {{2, 3}, 3000}}, 0), 8,
              {5000, 3000, 1000, 0}, {-1, 0, 2, 3, 3, 4});
}

// ---- Texts to values and texts

TEST(CCBLOCKSetups, TextToValueTableHasKeyLinksAsReferencesAndValuesWithTheDefaultLast) {
  const auto setUpWith = [](const std::map<LINK, REAL>& table, REAL default_value) {
    return [&table, default_value](CCBLOCK& block) {
      block.setupTEXT2VTABConversion(table, default_value);
    };
  };
  expectSetUp(setUpWith({}, -1), 9, {}, {-1});
  expectSetUp(setUpWith({{5000, 1.5}}, -1), 9, {5000}, {1.5, -1});
  expectSetUp(setUpWith({{5000, 1.5}, {1000, 9}, {3000, -4}}, 0.25), 9, {1000, 3000, 5000},
              {9, -4, 1.5, 0.25});
}

TEST(CCBLOCKSetups, TextToTextTableHasKeyAndResultLinksAsReferencesWithTheDefaultLast) {
  const auto setUpWith = [](const std::map<LINK, LINK>& table, LINK default_link) {
    return [&table, default_link](CCBLOCK& block) {
      block.setupTEXT2TEXTTABConversion(table, default_link);
    };
  };
  expectSetUp(setUpWith({}, 6000), 10, {6000}, {});
  expectSetUp(setUpWith({{2000, 4000}}, 6000), 10, {2000, 4000, 6000}, {});
  expectSetUp(setUpWith({{5000, 100}, {1000, 900}, {3000, 0}}, 0), 10,
              {1000, 900, 3000, 0, 5000, 100, 0}, {});
}

TEST(CCBLOCKSetups, TextToTextTableExampleInTheFile) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.setupTEXT2TEXTTABConversion({{3000, 5000}, {2000, 4000}}, 6000);
  EXPECT_EQ(block.getSize(), 120U);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CC", 120, 9)
                                   .links({0, 0, 0, 0, 2000, 4000, 3000, 5000, 6000})
                                   .u8s({10, 255})
                                   .u16(0)
                                   .u16(5)
                                   .u16(0)
                                   .zeros(16));
}

// ---- What all tables have in common

TEST(CCBLOCKSetups, RealKeysAreInNumericOrder) {
  const std::map<REAL, REAL> table = {{infinity, 1}, {1e-300, 2}, {smallest, 3},
                                      {0, 4},        {-2, 5},     {-10, 6},
                                      {10, 7},       {9, 8},      {-infinity, 9}};
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.setupV2VTABConversion(true, table);
  EXPECT_EQ(block.cc_vals, (Values{-infinity, 9, -10, 6, -2, 5, 0, 4, smallest, 3, 1e-300, 2, 9, 8,
                                   10, 7, infinity, 1}));
}

TEST(CCBLOCKSetups, TextKeysAreInSignedOrderOfTheirLinks) {
  const std::map<LINK, REAL> table = {{INT64_MAX, 1}, {256, 2}, {0, 3},
                                      {-1, 4},        {255, 5}, {INT64_MIN, 6}};
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.setupTEXT2VTABConversion(table, 7);
  EXPECT_EQ(block.cc_refs, (Links{INT64_MIN, -1, 0, 255, 256, INT64_MAX}));
  EXPECT_EQ(block.cc_vals, (Values{6, 4, 3, 5, 2, 1, 7}));
}

TEST(CCBLOCKSetups, RangesOfEqualMinimumAreInOrderOfTheirMaximum) {
  const Values in_order = {-1, 9, 0, -2, 0, 1, 0, 5, 3, 3};
  CCBLOCK values(CCBLOCK::CC_CONVTYPE_EQUAL);
  values.setupVRANGE2VTABConversion(
      {{{0, 5}, 40}, {{3, 3}, 50}, {{0, -2}, 20}, {{-1, 9}, 10}, {{0, 1}, 30}}, 60);
  EXPECT_EQ(values.cc_vals, (Values{-1, 9, 10, 0, -2, 20, 0, 1, 30, 0, 5, 40, 3, 3, 50, 60}));
  CCBLOCK texts(CCBLOCK::CC_CONVTYPE_EQUAL);
  texts.setupVRANGE2TEXT_SCALETABConversion(
      {{{0, 5}, 40}, {{3, 3}, 50}, {{0, -2}, 20}, {{-1, 9}, 10}, {{0, 1}, 30}}, 60);
  EXPECT_EQ(texts.cc_vals, in_order);
  EXPECT_EQ(texts.cc_refs, (Links{10, 20, 30, 40, 50, 60}));
}

TEST(CCBLOCKSetups, OrderOfInsertionDoesNotMatter) {
  std::map<REAL, LINK> upwards;
  std::map<REAL, LINK> downwards;
  Values keys;
  Links links;
  for (int i = 0; i < 1000; ++i) {
    upwards[i] = 5000 + i;
    downwards[999 - i] = 5000 + 999 - i;
    keys.push_back(i);
    links.push_back(5000 + i);
  }
  links.push_back(1);
  for (const auto& table : {upwards, downwards}) {
    CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
    block.setupV2TEXT_SCALETABConversion(table, 1);
    EXPECT_EQ(block.cc_vals, keys);
    EXPECT_EQ(block.cc_refs, links);
  }
}

TEST(CCBLOCKSetups, ArgumentsAreNotChecked) {
  const REAL nan = std::numeric_limits<REAL>::quiet_NaN();
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.setupVRANGE2TEXT_SCALETABConversion({{{0, 10}, 0}, {{5, 1}, -1}, {{5, 20}, 0}}, 0);
  EXPECT_EQ(block.cc_vals, (Values{0, 10, 5, 1, 5, 20}));
  EXPECT_EQ(block.cc_refs, (Links{0, -1, 0, 0}));
  block.setupV2VTABConversion(true, {{nan, 1}});
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CC", 96, 4)
                                   .zeros(32)
                                   .u8s({4, 255})
                                   .u16(0)
                                   .u16(0)
                                   .u16(2)
                                   .zeros(16)
                                   .f64(nan)
                                   .f64(1));
}

TEST(CCBLOCKSetups, LastSetUpWinsEntirely) {
  CCBLOCK block = filledBlock();
  block.setupLinearConversion(2.0, 3.0);
  EXPECT_BYTES(written(block), filledBytes(1, {}, {2.0, 3.0}));
  block.setupAlgebraicConversion(5000);
  EXPECT_BYTES(written(block), filledBytes(3, {5000}, {}));
  block.setupV2TEXT_SCALETABConversion({{1, 10}, {2, 20}}, 30);
  EXPECT_BYTES(written(block), filledBytes(7, {10, 20, 30}, {1, 2}));
  block.setupV2TEXT_SCALETABConversion({{4, 40}}, 50);
  EXPECT_BYTES(written(block), filledBytes(7, {40, 50}, {4}));
  block.setupEqualConversion();
  EXPECT_BYTES(written(block), filledBytes(0, {}, {}));
}

TEST(CCBLOCKSetups, EntriesAddedAfterwardsStandAfterTheDefault) {
  CCBLOCK block = filledBlock();
  block.setupTEXT2VTABConversion({{5000, 1.5}}, -1);
  block.addReference(6000);
  block.addValue(2.5);
  EXPECT_BYTES(written(block), filledBytes(9, {5000, 6000}, {1.5, -1, 2.5}));
}

TEST(CCBLOCKSetups, BlockThatWasReadCanBeSetUp) {
  auto block = readBack<CCBLOCK>(filledBytes(7, {10, 20, 30}, {1, 2}));
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.setupTEXT2TEXTTABConversion({{1, 2}}, 3);
  EXPECT_BYTES(written(block), filledBytes(10, {1, 2, 3}, {}));
  EXPECT_EQ(block.header.length, 120U);
  EXPECT_EQ(block.header.link_count, 7U);
}

}  // namespace
