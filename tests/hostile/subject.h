#ifndef MDF_TESTS_HOSTILE_SUBJECT_H_
#define MDF_TESTS_HOSTILE_SUBJECT_H_

#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "hostile/expected_reading.h"
#include "mdf_v4_10.h"
#include "support/allocation_counter.h"
#include "support/blocks.h"
#include "support/golden_blocks.h"

namespace mdf_tests::hostile {

template <class Block>
std::vector<std::int64_t> unwrittenMembers(const Block& /*block*/) {
  return {};
}

inline std::vector<std::int64_t> unwrittenMembers(const mdf_v4_10::CNBLOCK& block) {
  return {block.cn_default_x_dgblock, block.cn_default_x_cgblock, block.cn_default_x_cnblock};
}

inline std::vector<std::int64_t> unwrittenMembers(const mdf_v4_10::DLBLOCK& block) {
  return {static_cast<std::int64_t>(block.dl_equal_length)};
}

/// Constructs a block from the stream within the memory limit. No exception but the standard ones
/// for memory and length is caught.
template <class Block>
std::optional<Block> construct(std::istream& is, Reading& reading) {
  const AllocationLimit limit(memory_limit);
  const AllocationMeter meter;
  std::optional<Block> block;
  try {
    block.emplace(is);
  } catch (const std::bad_alloc&) {
    reading.out_of_memory = true;
  } catch (const std::length_error&) {
    reading.out_of_memory = true;
  }
  reading.peak_bytes = meter.peakBytes();
  return block;
}

/// Reads a block from the bytes, writes it and dumps it.
template <class Block>
Reading readBlock(const std::string& bytes, std::string& dump) {
  std::istringstream is(bytes);
  Reading reading;
  const std::optional<Block> block = construct<Block>(is, reading);
  reading.state = is.rdstate();
  is.clear();
  reading.position = static_cast<std::size_t>(is.tellg());
  if (block) {
    reading.length = block->header.length;
    reading.link_count = block->header.link_count;
    reading.links = linksOf(*block);
    reading.unwritten = unwrittenMembers(*block);
    reading.written = written(*block);
    dump = dumped(*block);
  }
  return reading;
}

/// A class under test, with its type out of the way.
struct Subject {
  std::string letters;
  std::vector<std::string> blocks;
  Reading (*read)(const std::string& bytes, std::string& dump);
};

template <class Block>
Subject subjectOf() {
  return {BlockNames::GetName<Block>(0).substr(0, 2), goldenBlocks<Block>(), readBlock<Block>};
}

}  // namespace mdf_tests::hostile

#endif  // MDF_TESTS_HOSTILE_SUBJECT_H_
