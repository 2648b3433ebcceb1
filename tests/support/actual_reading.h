#ifndef MDF_TESTS_SUPPORT_ACTUAL_READING_H_
#define MDF_TESTS_SUPPORT_ACTUAL_READING_H_

#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "reading_oracle/reading.h"
#include "support/allocation_counter.h"

namespace mdf_tests {

template <class Block>
std::vector<std::int64_t> unwrittenMembers(const Block& /*block*/) {
  return {};
}

inline std::vector<std::int64_t> unwrittenMembers(const mdf_v4_10::CNBLOCK& block) {
  return {block.cn_default_x_dgblock, block.cn_default_x_cgblock, block.cn_default_x_cnblock};
}

inline std::vector<std::int64_t> unwrittenMembers(const mdf_v4_10::DLBLOCK& block) {
  std::vector<std::int64_t> members = {static_cast<std::int64_t>(block.dl_equal_length)};
  for (const auto& pair : block.dl_data) {
    members.push_back(static_cast<std::int64_t>(pair.second));
  }
  return members;
}

/// A block that was read, if the constructor returned, and what reading left.
template <class Block>
struct ActualReading {
  std::optional<Block> block;
  oracle::Reading reading;
};

/// Constructs a block from the stream, holding no more on the heap than stated. No exception but
/// the standard ones for memory and length is caught.
template <class Block>
ActualReading<Block> construct(std::istream& is, std::size_t heap_bytes) {
  ActualReading<Block> actual;
  const AllocationLimit limit(heap_bytes);
  try {
    actual.block.emplace(is);
  } catch (const std::bad_alloc&) {
    actual.reading.thrown = "std::bad_alloc";
  } catch (const std::length_error&) {
    actual.reading.thrown = "std::length_error";
  }
  return actual;
}

/// Reads a block from the bytes and writes it.
/// @throws std::runtime_error when its writer does not leave the stream good.
template <class Block>
ActualReading<Block> readBlock(const std::string& bytes, std::size_t heap_bytes) {
  std::istringstream is(bytes);
  ActualReading<Block> actual = construct<Block>(is, heap_bytes);
  const std::optional<Block>& block = actual.block;
  oracle::Reading& reading = actual.reading;
  reading.state = is.rdstate();
  is.clear();
  reading.position = static_cast<std::size_t>(is.tellg());
  if (block) {
    std::ostringstream os;
    os << *block;
    if (!os.good()) {
      throw std::runtime_error("a writer to leave the stream good");
    }
    reading.length = block->header.length;
    reading.link_count = block->header.link_count;
    reading.links.assign(block->links.begin(), block->links.end());
    reading.unwritten = unwrittenMembers(*block);
    reading.written = os.str();
  }
  return actual;
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_ACTUAL_READING_H_
