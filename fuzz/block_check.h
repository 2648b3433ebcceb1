#ifndef MDF_FUZZ_BLOCK_CHECK_H_
#define MDF_FUZZ_BLOCK_CHECK_H_

#include <optional>
#include <sstream>
#include <string>
#include <type_traits>

#include "all_blocks.h"
#include "contents.h"
#include "expect.h"
#include "reading_oracle/expected_reading.h"
#include "support/actual_reading.h"

/// What must hold of every class, whatever the bytes.
namespace mdf_fuzz {

/// A block that was read, if the constructor returned, and the stream's state after it.
template <class Block>
struct Read {
  std::optional<Block> block;
  std::string outcome;
};

std::string outcomeOf(const mdf_tests::oracle::Reading& reading);

/// Expects bytes to be written from these contents, which have no fixed fields.
void expectForm(const std::string& bytes, const std::string& letters, Contents contents);

/// Expects a block to keep what no reader takes from a file.
void expectUnread(const GENERALBLOCK& block, const std::string& letters);

template <class Block>
std::string bytesOf(const Block& block) {
  std::ostringstream os;
  os << block;
  expect(os.good(), "a writer to leave the stream good");
  return os.str();
}

template <class Block>
std::string dumpOf(const Block& block) {
  std::ostringstream os;
  block.print(os);
  expect(os.good(), "a dump to leave the stream good");
  return os.str();
}

/// Writes the block and expects the bytes to follow from what the block holds.
template <class Block>
std::string writeChecked(const Block& block) {
  std::string bytes = bytesOf(block);
  Contents contents = frameOf(block);
  addLists(block, contents);
  expectForm(bytes, letters_of<Block>, std::move(contents));
  if constexpr (!std::is_same_v<Block, IDBLOCK>) {
    if (block.links.size() == mdf_tests::oracle::ownLinks(letters_of<Block>)) {
      expect(block.getSize() == bytes.size(), "the size that the block gives");
    }
  }
  expect(bytesOf(block) == bytes, "the same bytes when a block is written again");
  return bytes;
}

template <class Block>
void printChecked(const Block& block) {
  const std::string dump = dumpOf(block);
  expect(mdf_tests::oracle::isFramed(dump, letters_of<Block> + std::string("BLOCK")),
         "a dump between its banners");
  expect(dumpOf(block) == dump, "the same dump when a block is dumped again");
}

/// Reads a block and expects exactly what the bytes say, the stream's state included.
template <class Block>
Read<Block> readChecked(const std::string& bytes) {
  constexpr std::size_t data_limit = std::size_t{8} * 1024;
  const auto expected = mdf_tests::oracle::expectedReading(letters_of<Block>, bytes, data_limit);
  auto [block, found] = mdf_tests::readBlock<Block>(bytes, expected.heap_bytes);
  const std::string difference = differenceOf(expected, found);
  expect(difference.empty(), difference);
  if (block) {
    expectUnread(*block, letters_of<Block>);
  }
  return {std::move(block), outcomeOf(found)};
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_BLOCK_CHECK_H_
