#ifndef MDF_TESTS_DESCRIPTION_ACCESSORS_H_
#define MDF_TESTS_DESCRIPTION_ACCESSORS_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"

namespace mdf_tests {

/// The accessors of one of a block's fixed links.
template <class Block>
struct LinkAccessors {
  std::size_t index;
  void (Block::*set)(mdf_v4_10::LINK);
  mdf_v4_10::LINK (Block::*get)() const;
  mdf_v4_10::LINK (Block::*follow)(std::ifstream&) const;
};

/// Expects that a link's accessors work on the entry at its index and on no other.
template <class Block>
void expectLinkAccessors(Block block, const std::vector<LinkAccessors<Block>>& accessors) {
  const LinkTargetFile file;
  std::vector<mdf_v4_10::LINK> links;
  for (std::size_t i = 0; i < accessors.size(); ++i) {
    links.push_back(static_cast<mdf_v4_10::LINK>(100 + i));
  }
  for (const auto& link : accessors) {
    SCOPED_TRACE("link " + std::to_string(link.index));
    block.links.assign(links.begin(), links.end());
    EXPECT_EQ((block.*link.get)(), links[link.index]);
    file.expectFollows([&](std::ifstream& ifs) { return (block.*link.follow)(ifs); },
                       links[link.index]);
    (block.*link.set)(4000);
    auto changed = links;
    changed[link.index] = 4000;
    EXPECT_EQ(linksOf(block), changed);
  }
}

/// Expects that following a nil link, and one that the block does not have, leads to offset 0, and
/// that setting a link that the block does not have puts nil links in front of it.
template <class Block>
void expectNilAndMissingLinks(Block block, const std::vector<LinkAccessors<Block>>& accessors) {
  const LinkTargetFile file;
  for (const auto& link : accessors) {
    SCOPED_TRACE("link " + std::to_string(link.index));
    for (const std::size_t count : {accessors.size(), link.index}) {
      block.links.assign(count, 0);
      EXPECT_EQ((block.*link.get)(), 0);
      file.expectFollows([&](std::ifstream& ifs) { return (block.*link.follow)(ifs); }, 0);
    }
    (block.*link.set)(-5);
    std::vector<mdf_v4_10::LINK> grown(link.index, 0);
    grown.push_back(-5);
    EXPECT_EQ(linksOf(block), grown);
  }
}

/// The accessors of one flag of a bit field.
template <class Block, class Bits>
struct FlagAccessors {
  Bits bit;
  void (Block::*set)(bool);
  bool (Block::*test)() const;
};

/// Expects that a flag's accessors see and change its own bit and no other, whether all other bits
/// are clear or set.
template <class Block, class Bits>
void expectFlagAccessors(Block block, Bits Block::*flags,
                         const std::vector<FlagAccessors<Block, Bits>>& accessors) {
  for (const auto& flag : accessors) {
    for (const Bits others : {Bits{0}, static_cast<Bits>(~Bits{0})}) {
      SCOPED_TRACE("flag " + std::to_string(flag.bit) + " among " + std::to_string(others));
      const auto without = static_cast<Bits>(others & ~flag.bit);
      const auto with = static_cast<Bits>(others | flag.bit);
      for (const Bits before : {without, with}) {
        block.*flags = before;
        EXPECT_EQ((block.*flag.test)(), before == with);
        (block.*flag.set)(true);
        EXPECT_EQ(block.*flags, with);
        block.*flags = before;
        (block.*flag.set)(false);
        EXPECT_EQ(block.*flags, without);
      }
    }
  }
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_DESCRIPTION_ACCESSORS_H_
