#ifndef MDF_FUZZ_BLOCK_CHECK_H_
#define MDF_FUZZ_BLOCK_CHECK_H_

#include <algorithm>
#include <limits>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "expect.h"
#include "file_block.h"
#include "layout.h"
#include "lists.h"
#include "support/allocation_counter.h"

/// What must hold of every class, whatever the bytes.
namespace mdf_fuzz {

/// A block that was read, if the constructor returned, and what became of the stream.
template <class Block>
struct Read {
  std::optional<Block> block;
  std::string outcome;
};

/// A reader may take this much memory for what it was given. What a length says beyond this must
/// fail where memory is asked for, or not be asked for at all.
constexpr std::size_t memoryFor(std::size_t bytes) { return (std::size_t{80} << 10U) + 10 * bytes; }

std::string nameOf(std::ios_base::iostate state);

/// Expects links and header to be what the file has, or what the reader starts with.
void expectFrame(const GENERALBLOCK& block, const Layout& layout, const FileBlock& file);

/// Expects a block's bytes, but for the fields, to be in the form; returns the fields.
std::string_view expectForm(std::string_view bytes, const GENERALBLOCK& block, const Layout& layout,
                            const Written& form);

/// Expects the fields of a block that was read to be written as they stand in the file.
void expectFields(std::string_view fields, const Layout& layout, const FileBlock& file);

void expectDump(const std::string& dump, const std::string& class_name);

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
  const Layout& layout = layout_of<Block>;
  const Written form = written(block);
  std::string bytes = bytesOf(block);
  expectForm(bytes, block, layout, form);
  if constexpr (!std::is_same_v<Block, IDBLOCK>) {
    if (block.links.size() == layout.fixed_links) {
      expect(block.getSize() == bytes.size(), "the size that the block gives");
    }
  }
  expect(bytesOf(block) == bytes, "the same bytes when a block is written again");
  return bytes;
}

template <class Block>
void printChecked(const Block& block) {
  const std::string dump = dumpOf(block);
  expectDump(dump, std::string(layout_of<Block>.letters) + "BLOCK");
  expect(dumpOf(block) == dump, "the same dump when a block is dumped again");
}

/// Reads a block and expects exactly what the bytes say, the stream's state included.
template <class Block>
Read<Block> readChecked(std::string_view bytes) {
  const Layout& layout = layout_of<Block>;
  const FileBlock file = inspect(layout, bytes);
  const std::size_t memory = memoryFor(bytes.size());
  std::istringstream is{std::string(bytes)};
  Read<Block> read;
  try {
    const mdf_tests::AllocationLimit limit(memory);
    read.block.emplace(is);
  } catch (const std::bad_alloc&) {
    expect(file.sized > memory / 2, "memory to suffice for what is there");
    return {std::nullopt, "std::bad_alloc"};
  } catch (const std::length_error&) {
    expect(file.sized > std::numeric_limits<std::ptrdiff_t>::max(),
           "a length error for what no memory can hold alone");
    return {std::nullopt, "std::length_error"};
  }
  expect(file.sized <= memory, "a length beyond memory to fail");
  expect(is.rdstate() == file.state, "another state of the stream");
  expect(!is.good() || static_cast<std::size_t>(is.tellg()) == file.end,
         "the stream to stand behind what was read");
  expectFrame(*read.block, layout, file);
  expectLists(*read.block, file);
  if (file.is_whole) {
    const std::string again = bytesOf(*read.block);
    expectFields(expectForm(again, *read.block, layout, written(*read.block)), layout, file);
  }
  read.outcome = nameOf(file.state);
  return read;
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_BLOCK_CHECK_H_
