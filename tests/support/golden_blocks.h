#ifndef MDF_TESTS_SUPPORT_GOLDEN_BLOCKS_H_
#define MDF_TESTS_SUPPORT_GOLDEN_BLOCKS_H_

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "blocks.h"
#include "mdf_v4_10.h"

namespace mdf_tests {

/// Every class that is read from a stream, for a typed test suite.
using EveryBlock =
    ::testing::Types<mdf_v4_10::IDBLOCK, mdf_v4_10::HDBLOCK, mdf_v4_10::TXBLOCK, mdf_v4_10::MDBLOCK,
                     mdf_v4_10::FHBLOCK, mdf_v4_10::CHBLOCK, mdf_v4_10::ATBLOCK, mdf_v4_10::EVBLOCK,
                     mdf_v4_10::DGBLOCK, mdf_v4_10::CGBLOCK, mdf_v4_10::SIBLOCK, mdf_v4_10::CNBLOCK,
                     mdf_v4_10::CCBLOCK, mdf_v4_10::DTBLOCK, mdf_v4_10::RDBLOCK, mdf_v4_10::SDBLOCK,
                     mdf_v4_10::DLBLOCK, mdf_v4_10::DZBLOCK, mdf_v4_10::HLBLOCK,
                     mdf_v4_10::SRBLOCK>;

/// Whole blocks as they stand in a file, each with all of its variable parts, and one for each form
/// that a flag or a count gives the block. Every field, reserved bytes included, has a value of its
/// own. A zipped block's reader takes as many bytes again as the block has compressed ones.
std::vector<std::string> goldenBlocksOf(const std::string& letters);

/// The letters of a class's blocks, "ID" for the identification.
template <class Block>
std::string lettersOf() {
  std::istringstream nothing;
  return written(Block(nothing).header).substr(2, 2);
}

template <class Block>
std::vector<std::string> goldenBlocks() {
  return goldenBlocksOf(lettersOf<Block>());
}

template <class Block, class... Blocks>
constexpr bool is_one_of = (std::is_same_v<Block, Blocks> || ...);

/// Names the tests of a typed suite over EveryBlock after their classes.
struct BlockNames {
  template <class Block>
  static std::string GetName(int /*index*/) {
    return lettersOf<Block>() + "BLOCK";
  }
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_GOLDEN_BLOCKS_H_
