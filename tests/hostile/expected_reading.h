#ifndef MDF_TESTS_HOSTILE_EXPECTED_READING_H_
#define MDF_TESTS_HOSTILE_EXPECTED_READING_H_

#include <cstddef>
#include <cstdint>
#include <ios>
#include <string>
#include <vector>

namespace mdf_tests::hostile {

/// The most that reading may hold on the heap here. Data that is announced larger fails.
constexpr std::size_t memory_limit = std::size_t{1} << 20U;

/// What reading a block from a stream leaves, and what its writer makes of it.
struct Reading {
  bool out_of_memory = false;  ///< nothing but the state and the position is of interest then
  std::ios_base::iostate state = std::ios_base::goodbit;
  std::size_t position = 0;  ///< where the stream stands
  std::uint64_t length = 0;
  std::uint64_t link_count = 0;
  std::vector<std::int64_t> links;
  std::string written;
  std::vector<std::int64_t> unwritten;  ///< members that may not be among the bytes written
  std::size_t peak_bytes = 0;           ///< held on the heap at any one time
};

/// What a class makes of any stream, derived from the layouts alone; shares nothing with the
/// library. `peak_bytes` is what may be held at most. The class is named by its two letters.
Reading expectedReading(const std::string& letters, const std::string& stream);

/// A number that stands in a block, little-endian.
struct Number {
  std::size_t offset;
  std::size_t width;
};

std::uint64_t numberAt(const std::string& bytes, const Number& where);

/// Puts as many low bytes of a value as the number is wide.
void setNumber(std::string& bytes, const Number& where, std::uint64_t value);

/// Where a block has its length, its link count, its numbers of 16 bits and more, and the first 64
/// bits of its variable part.
std::vector<Number> numbersOf(const std::string& letters, const std::string& block);

}  // namespace mdf_tests::hostile

#endif  // MDF_TESTS_HOSTILE_EXPECTED_READING_H_
