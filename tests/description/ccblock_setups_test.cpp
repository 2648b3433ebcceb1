#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

using Range = std::pair<REAL, REAL>;

/// A block of which every part holds something.
CCBLOCK filledBlock() {
  CCBLOCK block(static_cast<CCBLOCK::MDF_CC_TYPE_t>(99));
  block.links = {100, 200, 300, 400};
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

/// Calls setUp(block) for a new block and for a filled one, and expects that both hold the type and
/// the lists afterwards and that nothing else has changed.
template <class SetUp>
void expectSetUp(SetUp setUp, int type, const std::vector<LINK>& references,
                 const std::vector<REAL>& values) {
  const std::size_t list_bytes = 8 * (references.size() + values.size());
  const std::string counts = u16(references.size(), values.size());
  std::string reals;
  for (const REAL value : values) {
    reals += f64(value);
  }
  CCBLOCK fresh(static_cast<CCBLOCK::MDF_CC_TYPE_t>(99));
  setUp(fresh);
  EXPECT_BYTES(written(fresh), header("CC", 80 + list_bytes, 4 + references.size()) + zeros(32) +
                                   listed(references) + u8(type, 255) + u16(0) + counts +
                                   zeros(16) + reals);
  EXPECT_BYTES(written(fresh.header), header("CC", 80, 4));

  CCBLOCK filled = filledBlock();
  setUp(filled);
  EXPECT_BYTES(written(filled), header("CC", 80 + list_bytes, 4 + references.size(), {1, 2, 3, 4}) +
                                    links(100, 200, 300, 400) + listed(references) + u8(type, 3) +
                                    u16(0xA5C7) + counts + f64(-1.5, 2.25) + reals);
  EXPECT_BYTES(written(filled.header), header("CC", 9999, 77, {1, 2, 3, 4}));
  EXPECT_EQ(filled.getPadding(), 5);
}

TEST(CCBLOCKSetups, ConversionsWithoutATable) {
  expectSetUp([](CCBLOCK& block) { block.setupEqualConversion(); }, 0, {}, {});
  expectSetUp([](CCBLOCK& block) { block.setupLinearConversion(2.5, -3); }, 1, {}, {2.5, -3});
  expectSetUp([](CCBLOCK& block) { block.setupRationalConversion(1.5, -2, 6, 3, 4, 1e300); }, 2, {},
              {1.5, -2, 6, 3, 4, 1e300});
  expectSetUp([](CCBLOCK& block) { block.setupAlgebraicConversion(5000); }, 3, {5000}, {});
}

TEST(CCBLOCKSetups, ValueTableHasKeyAndValueForEachEntryAndNoDefault) {
  for (const bool interpolate : {true, false}) {
    SCOPED_TRACE(interpolate);
    const int type = interpolate ? 4 : 5;
    const auto setUpWith = [&](const std::map<REAL, REAL>& table) {
      return [&](CCBLOCK& block) { block.setupV2VTABConversion(interpolate, table); };
    };
    expectSetUp(setUpWith({}), type, {}, {});
    expectSetUp(setUpWith({{3, 0.5}, {-1, 30}, {2, -20}}), type, {}, {-1, 30, 2, -20, 3, 0.5});
  }
}

/// The set-up of a table with a default.
template <class Key, class Value>
auto setUpWith(void (CCBLOCK::*setUp)(const std::map<Key, Value>&, Value),
               const std::map<Key, Value>& table, Value default_value) {
  return [=](CCBLOCK& block) { (block.*setUp)(table, default_value); };
}

TEST(CCBLOCKSetups, RangeTableHasRangeAndValueForEachEntryAndTheDefaultLast) {
  const auto setUp = &CCBLOCK::setupVRANGE2VTABConversion;
  expectSetUp(setUpWith(setUp, {}, -1.0), 6, {}, {-1});
  expectSetUp(setUpWith(setUp, {{{10, 20}, 1.5}, {{-5, 0}, 7}, {{0, 10}, 0.5}, {{0, -2}, 3}}, 99.0),
              6, {}, {-5, 0, 7, 0, -2, 3, 0, 10, 0.5, 10, 20, 1.5, 99});
}

TEST(CCBLOCKSetups, ValueToTextTableHasKeysAsValuesAndLinksAsReferencesWithTheDefaultLast) {
  const auto setUp = &CCBLOCK::setupV2TEXT_SCALETABConversion;
  expectSetUp(setUpWith(setUp, {}, LINK{6000}), 7, {6000}, {});
  expectSetUp(setUpWith(setUp, {{3, 1000}, {-1, 5000}, {2, 3000}}, LINK{0}), 7,
              {5000, 3000, 1000, 0}, {-1, 2, 3});
}

TEST(CCBLOCKSetups, RangeToTextTableHasRangesAsValuesAndLinksAsReferencesWithTheDefaultLast) {
  const auto setUp = &CCBLOCK::setupVRANGE2TEXT_SCALETABConversion;
  expectSetUp(setUpWith(setUp, {}, LINK{6000}), 8, {6000}, {});
  expectSetUp(setUpWith(setUp, {{{3, 4}, 1000}, {{-1, 0}, 0}, {{2, 3}, -3000}}, LINK{0}), 8,
              {0, -3000, 1000, 0}, {-1, 0, 2, 3, 3, 4});
}

TEST(CCBLOCKSetups, TextToValueTableHasKeyLinksAsReferencesAndValuesWithTheDefaultLast) {
  const auto setUp = &CCBLOCK::setupTEXT2VTABConversion;
  expectSetUp(setUpWith(setUp, {}, -1.0), 9, {}, {-1});
  expectSetUp(setUpWith(setUp, {{5000, 1.5}, {1000, 9}, {3000, -4}}, 0.25), 9, {1000, 3000, 5000},
              {9, -4, 1.5, 0.25});
}

TEST(CCBLOCKSetups, TextToTextTableHasKeyAndResultLinksAsReferencesWithTheDefaultLast) {
  const auto setUp = &CCBLOCK::setupTEXT2TEXTTABConversion;
  expectSetUp(setUpWith(setUp, {}, LINK{6000}), 10, {6000}, {});
  expectSetUp(setUpWith(setUp, {{5000, 100}, {1000, 900}, {3000, 0}}, LINK{0}), 10,
              {1000, 900, 3000, 0, 5000, 100, 0}, {});
}

}  // namespace
