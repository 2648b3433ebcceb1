#include "block_types.h"

#include <algorithm>
#include <iterator>

#include "mdf_v4_10.h"

namespace mdf_tools {

using namespace mdf_v4_10;

namespace {

template <class Block>
constexpr BlockType sized(std::string_view letters, std::uint64_t fixed_size) {
  return {letters, fixed_size, dumpFromStream<Block>};
}

template <class Block>
constexpr BlockType byLength(std::string_view letters) {
  return {letters, BlockType::by_length, dumpFromStream<Block>};
}

constexpr BlockType block_types[] = {
    sized<HDBLOCK>("HD", HDBLOCK::HDBLOCK_SIZE),
    sized<FHBLOCK>("FH", FHBLOCK::FHBLOCK_SIZE),
    byLength<TXBLOCK>("TX"),
    byLength<MDBLOCK>("MD"),
    sized<DGBLOCK>("DG", DGBLOCK::DGBLOCK_SIZE),
    sized<CGBLOCK>("CG", CGBLOCK::CGBLOCK_SIZE),
    byLength<CNBLOCK>("CN"),
    byLength<DTBLOCK>("DT"),
    byLength<RDBLOCK>("RD"),
    byLength<SDBLOCK>("SD"),
};

}  // namespace

const BlockType* findBlockType(std::string_view letters) {
  const auto* type = std::find_if(std::begin(block_types), std::end(block_types),
                                  [&](const BlockType& each) { return each.letters == letters; });
  return type == std::end(block_types) ? nullptr : type;
}

}  // namespace mdf_tools
