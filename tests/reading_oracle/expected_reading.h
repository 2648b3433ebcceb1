#ifndef MDF_TESTS_READING_ORACLE_EXPECTED_READING_H_
#define MDF_TESTS_READING_ORACLE_EXPECTED_READING_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "reading_oracle/reading.h"

/// What every class must make of any bytes, derived from the layouts alone; shares nothing with the
/// library. A class is named by its two letters.
namespace mdf_tests::oracle {

constexpr std::size_t header_size = 24;
constexpr std::size_t link_size = 8;

struct ExpectedReading : Reading {
  std::size_t heap_bytes = 0;  ///< that reading may hold at any one time
};

/// What a class makes of a stream. Data that is announced larger than the limit must fail.
ExpectedReading expectedReading(const std::string& letters, const std::string& stream,
                                std::size_t data_limit);

/// What an object holds.
struct Contents {
  std::uint64_t length;
  std::uint64_t link_count;
  Links links;
  Links more_links;     ///< of the lists that the writer puts after the links
  std::string section;  ///< the fixed fields, reserved bytes zero
  std::string tail;     ///< what the writer puts after them
  std::vector<std::int64_t> unwritten = {};
  std::string reserved = std::string(4, '\0');  ///< in the header
};

std::string writtenBytes(const std::string& letters, const Contents& block);

/// The fixed fields of a block with so many links, filled up with zeros if the bytes end before.
std::string sectionOf(const std::string& letters, const std::string& block, std::size_t link_count);

/// How many links the format gives every block of the type.
std::size_t ownLinks(const std::string& letters);

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

/// Whether a dump stands between the banners with this name.
bool isFramed(const std::string& dump, const std::string& name);

}  // namespace mdf_tests::oracle

#endif  // MDF_TESTS_READING_ORACLE_EXPECTED_READING_H_
