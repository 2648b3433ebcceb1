#include "array_check.h"

#include <cstddef>

#include "block_check.h"
#include "reader/blocks/later_types.h"

namespace mdf_tools {

namespace {

constexpr std::size_t number_size = 8;

std::uint64_t sumUpToMost(std::uint64_t left, std::uint64_t right) {
  return right > UINT64_MAX - left ? UINT64_MAX : left + right;
}

std::uint64_t productUpToMost(std::uint64_t left, std::uint64_t right) {
  return left != 0 && right > UINT64_MAX / left ? UINT64_MAX : left * right;
}

struct ElementCounts {
  std::uint64_t in_all = 1;
  std::uint64_t along_axes = 0;  ///< the sum of the sizes of the dimensions
};

/// An array with an empty dimension has no elements, however large the others are.
ElementCounts countElements(const Subject& subject, const BlockFields& block) {
  ElementCounts counts;
  bool is_empty = false;
  for (std::uint64_t i = 0; i < block.number("ca_ndim"); ++i) {
    const std::uint64_t size = numberAt(subject.file, block.tailAt() + number_size * i);
    is_empty = is_empty || size == 0;
    counts.in_all = productUpToMost(counts.in_all, size);
    counts.along_axes = sumUpToMost(counts.along_axes, size);
  }
  counts.in_all = is_empty ? 0 : counts.in_all;
  return counts;
}

/// Links after the composition. A quantity is a channel, given by three links: its two groups and
/// itself.
std::uint64_t linksOf(const BlockFields& block, std::uint64_t elements) {
  constexpr std::uint64_t quantity = 3;
  const std::uint64_t dimensions = block.number("ca_ndim");
  const auto ifSet = [&](CABLOCK::Flag flag, std::uint64_t links) {
    return block.hasFlag("ca_flags", flag) ? links : 0;
  };
  const bool has_axis_channels =
      block.hasFlag("ca_flags", CABLOCK::axis) && !block.hasFlag("ca_flags", CABLOCK::fixed_axis);
  const std::uint64_t others =
      ifSet(CABLOCK::dynamic_size, quantity * dimensions) +
      ifSet(CABLOCK::input_quantity, quantity * dimensions) +
      ifSet(CABLOCK::output_quantity, quantity) + ifSet(CABLOCK::comparison_quantity, quantity) +
      ifSet(CABLOCK::axis, dimensions) + (has_axis_channels ? quantity * dimensions : 0);
  const bool has_data = block.number("ca_storage") == CABLOCK::in_data_groups;
  return sumUpToMost(has_data ? elements : 0, others);
}

/// Sizes of dimensions, values of fixed axes, counts of elements that have records of their own.
std::uint64_t numbersOf(const BlockFields& block, const ElementCounts& counts) {
  const bool has_counts = block.number("ca_storage") != CABLOCK::in_records;
  return sumUpToMost(sumUpToMost(block.number("ca_ndim"), has_counts ? counts.in_all : 0),
                     block.hasFlag("ca_flags", CABLOCK::fixed_axis) ? counts.along_axes : 0);
}

}  // namespace

std::optional<std::uint64_t> checkArray(Subject& subject, const BlockFields& block,
                                        std::uint32_t index) {
  const std::uint64_t bytes = number_size * block.number("ca_ndim");
  if (bytes > block.tailBytes() || !subject.contents.take(bytes)) {
    return std::nullopt;
  }
  const ElementCounts counts = countElements(subject, block);
  checkMoreLinks(subject, block, index, linksOf(block, counts.in_all));
  checkNumbers(subject, block, index, "ca_dim_size, ca_axis_value and ca_cycle_count",
               numbersOf(block, counts));
  return counts.in_all;
}

}  // namespace mdf_tools
