#include <string>

#include "block_check.h"
#include "build_datablocks.h"
#include "build_description.h"
#include "build_fileblocks.h"
#include "input.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

/// Expects that a block that was written can be read, with the class's own oddities, and that its
/// fields are in the file.
template <class Block>
std::string tryBuildOf(Input& input) {
  Block block = make(input, static_cast<const Block*>(nullptr));
  while (!input.empty()) {
    if (input.take<UINT8>() == 0) {
      changeFrame(block, input);
    } else {
      change(block, input);
    }
  }
  printChecked(block);
  expect(mdf_tests::oracle::isFramed(dumpOf(block.header), "HeaderSection"),
         "a header's dump between its banners");
  expect(bytesOf(block.header).size() == mdf_tests::oracle::header_size, "24 bytes of header");
  const std::string bytes = writeChecked(block);
  return readChecked<Block>(bytes + bytes).outcome;
}

template <class... Blocks>
std::string tryBuildNumber(std::size_t number, Input& input, BlockList<Blocks...> /*blocks*/) {
  constexpr std::string (*tries[])(Input&) = {tryBuildOf<Blocks>...};
  return tries[number % sizeof...(Blocks)](input);
}

}  // namespace

std::string tryBuild(std::string_view bytes) {
  Input input(bytes);
  return tryBuildNumber(input.take<UINT8>(), input, AllBlocks{});
}

}  // namespace mdf_fuzz
