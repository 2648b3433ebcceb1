#include "library_classes.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "framework/wire.h"
#include "mdf_v4_10.h"

namespace mdf_tools {

using namespace mdf_v4_10;

namespace {

template <class Block>
std::string dumpFromStream(const RawBlock& raw, std::istream& is, std::ostream& os) {
  const Block block(is);
  if (!is.good()) {
    return misfit(raw);
  }
  block.print(os);
  return {};
}

/// The class reads its data from after the block, as much as the compressed length says. So compare
/// that length with the block's own first. A stream that ends while the data is read is no fault of
/// a block that ends the file.
std::string dumpZippedData(const RawBlock& raw, std::istream& is, std::ostream& os) {
  const auto begin = is.tellg();
  std::array<char, DZBLOCK::DZBLOCK_CONSTANT_SIZE> bytes;
  if (raw.length < bytes.size() || !is.read(bytes.data(), bytes.size())) {
    return misfit(raw);
  }
  const auto compressed = detail::loadLe<UINT64>(bytes.data() + bytes.size() - sizeof(UINT64));
  if (compressed > raw.length - bytes.size()) {
    return "expected the compressed length in " + raw.name() + " to fit its length of " +
           std::to_string(raw.length) + ", found " + std::to_string(compressed);
  }
  is.seekg(begin);
  DZBLOCK(is).print(os);
  return {};
}

template <class Block>
constexpr LibraryClass fixed(std::string_view letters, std::uint64_t size) {
  return {letters, size, dumpFromStream<Block>};
}

template <class Block>
constexpr LibraryClass byLength(std::string_view letters) {
  return {letters, LibraryClass::by_length, dumpFromStream<Block>};
}

constexpr LibraryClass classes[] = {
    fixed<HDBLOCK>("HD", HDBLOCK::HDBLOCK_SIZE),
    fixed<FHBLOCK>("FH", FHBLOCK::FHBLOCK_SIZE),
    byLength<TXBLOCK>("TX"),
    byLength<MDBLOCK>("MD"),
    byLength<CHBLOCK>("CH"),
    byLength<ATBLOCK>("AT"),
    byLength<EVBLOCK>("EV"),
    fixed<DGBLOCK>("DG", DGBLOCK::DGBLOCK_SIZE),
    fixed<CGBLOCK>("CG", CGBLOCK::CGBLOCK_SIZE),
    fixed<SIBLOCK>("SI", SIBLOCK::SIBLOCK_SIZE),
    byLength<CNBLOCK>("CN"),
    byLength<CCBLOCK>("CC"),
    byLength<DTBLOCK>("DT"),
    byLength<RDBLOCK>("RD"),
    byLength<SDBLOCK>("SD"),
    byLength<DLBLOCK>("DL"),
    fixed<HLBLOCK>("HL", HLBLOCK::HLBLOCK_SIZE),
    fixed<SRBLOCK>("SR", SRBLOCK::SRBLOCK_SIZE),
    {"DZ", LibraryClass::by_length, dumpZippedData},
};

}  // namespace

const LibraryClass* findLibraryClass(std::string_view letters) {
  const auto* found =
      std::find_if(std::begin(classes), std::end(classes),
                   [&](const LibraryClass& each) { return each.letters == letters; });
  return found == std::end(classes) ? nullptr : found;
}

std::string misfit(const RawBlock& block) {
  return "expected length and link count to fit " + block.name() + ", found length " +
         std::to_string(block.length) + " and " + std::to_string(block.link_count) + " links";
}

}  // namespace mdf_tools
