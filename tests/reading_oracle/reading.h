#ifndef MDF_TESTS_READING_ORACLE_READING_H_
#define MDF_TESTS_READING_ORACLE_READING_H_

#include <cstddef>
#include <cstdint>
#include <ios>
#include <string>
#include <vector>

namespace mdf_tests::oracle {

using Links = std::vector<std::int64_t>;

/// What reading a block from a stream leaves, and what its writer makes of it.
struct Reading {
  std::string thrown;  ///< for want of memory; then only the state and the position are of interest
  std::ios_base::iostate state = std::ios_base::goodbit;
  std::size_t position = 0;  ///< where the stream stands
  std::uint64_t length = 0;
  std::uint64_t link_count = 0;
  Links links;
  std::string written;
  std::vector<std::int64_t> unwritten;  ///< members that may not be among the bytes written
};

/// What is expected and what is found instead; empty when they are the same.
std::string differenceOf(const Reading& expected, const Reading& found);

}  // namespace mdf_tests::oracle

#endif  // MDF_TESTS_READING_ORACLE_READING_H_
