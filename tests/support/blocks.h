#ifndef MDF_TESTS_SUPPORT_BLOCKS_H_
#define MDF_TESTS_SUPPORT_BLOCKS_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"

namespace mdf_tests {

constexpr auto state_good = std::ios_base::goodbit;
constexpr auto state_bad = std::ios_base::badbit;
constexpr auto state_eof_fail = std::ios_base::eofbit | std::ios_base::failbit;

/// The states in which a stream gives nothing any more.
constexpr std::ios_base::iostate failed_states[] = {std::ios_base::failbit, std::ios_base::eofbit,
                                                    std::ios_base::badbit, state_eof_fail};

/// Link counts that are too large where `first` is the first one that does not fit. Some of them
/// look small when the count in bytes is cut to 64 bits.
inline std::vector<std::uint64_t> lyingLinkCounts(std::uint64_t first) {
  const std::uint64_t wraps = std::uint64_t{1} << 61U;
  return {first, first + 1, 1000, wraps, wraps + 1, wraps + first - 1, 4 * wraps, UINT64_MAX};
}

/// The bytes that a block's writer writes.
template <class Block>
std::string written(const Block& block) {
  std::ostringstream os;
  os << block;
  return os.str();
}

/// The whole dump of a block.
template <class Block>
std::string dumped(const Block& block) {
  std::ostringstream os;
  block.print(os);
  return os.str();
}

/// A dump with these lines between its banners.
inline std::string inBanners(const std::string& name, const std::string& lines) {
  return "[DEBUG] ==================== " + name + " ===================\n" + lines +
         "[DEBUG] ==================== End of " + name + " ===================\n";
}

/// The values that a dump shows, in its order and without its labels, separated by blanks.
std::string valuesIn(const std::string& dump);

/// The values that a block's dump shows.
template <class Block>
std::string shownValues(const Block& block) {
  return valuesIn(dumped(block));
}

/// The same in a stream that is told so beforehand: `shownValues(block, std::hex, std::boolalpha)`.
template <class Block, class... Manipulators>
std::string shownValues(const Block& block, Manipulators... manipulators) {
  std::ostringstream os;
  (os << ... << manipulators);
  block.print(os);
  return valuesIn(os.str());
}

/// Reads a block from bytes that hold all of it, and expects that the stream stands after it.
template <class Block>
Block readBack(const std::string& bytes) {
  std::istringstream is(bytes);
  Block block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<std::size_t>(is.tellg()), bytes.size());
  return block;
}

/// The entries of a block's link section.
inline std::vector<mdf_v4_10::LINK> linksOf(const mdf_v4_10::GENERALBLOCK& block) {
  return {block.links.begin(), block.links.end()};
}

/// Calls check(stream, length) with a stream that holds each prefix of the bytes, from none of them
/// to all but the last.
template <class Check>
void forEachPrefix(const std::string& bytes, Check check) {
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    SCOPED_TRACE("stream cut at byte " + std::to_string(length));
    std::istringstream is(bytes.substr(0, length));
    check(is, length);
  }
}

/// A real file, for the operations that position an input file stream. It is removed again with the
/// object.
class LinkTargetFile {
 public:
  /// 4,096 bytes, all zero.
  LinkTargetFile();
  explicit LinkTargetFile(const std::string& contents);
  ~LinkTargetFile();
  LinkTargetFile(const LinkTargetFile&) = delete;
  LinkTargetFile& operator=(const LinkTargetFile&) = delete;

  const std::string& path() const { return path_; }

  /// A stream that stands at the file's first byte.
  std::ifstream open() const { return std::ifstream(path_, std::ios_base::binary); }

  /// Calls `follow(stream)` with the stream standing at byte 7 of the file, and expects it to
  /// return `link` and to leave the stream good and positioned at `link`, which may be nil.
  template <class Follow>
  void expectFollows(Follow follow, mdf_v4_10::LINK link) const {
    std::ifstream ifs = open();
    ifs.seekg(7);
    EXPECT_EQ(follow(ifs), link);
    EXPECT_EQ(ifs.rdstate(), state_good);
    EXPECT_EQ(static_cast<mdf_v4_10::LINK>(ifs.tellg()), link);
  }

  /// The same for a call that must return 0 and leave the stream where it stands.
  template <class Follow>
  void expectStays(Follow follow) const {
    std::ifstream ifs = open();
    ifs.seekg(7);
    EXPECT_EQ(follow(ifs), 0);
    EXPECT_EQ(ifs.rdstate(), state_good);
    EXPECT_EQ(static_cast<mdf_v4_10::LINK>(ifs.tellg()), 7);
  }

 private:
  std::string path_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_BLOCKS_H_
