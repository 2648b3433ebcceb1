#include "reader/bytes/paged_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tools/support/file_reads.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::Descriptor;
using mdf_reader::PagedFile;

namespace {

/// Bytes that tell where they stand: no two neighbouring pages are alike.
std::string numberedBytes(std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<char>(i ^ (i >> 8U) ^ (i >> 16U));
  }
  return bytes;
}

PagedFile opened(const std::string& path) {
  return PagedFile(Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)));
}

std::string readText(PagedFile& file, std::uint64_t offset, std::size_t count) {
  std::string bytes(count, '?');
  bytes.resize(file.read(offset, bytes.data(), count));
  return bytes;
}

constexpr std::size_t large = 9 << 20;  // more than twice what the cache takes

TEST(PagedFile, BytesAreTheSameInAnyOrderAndLength) {
  const std::string bytes = numberedBytes(large + 77);
  const TempFile temp(bytes);
  PagedFile file = opened(temp.path());
  std::mt19937 random(4);
  std::uint64_t offset = 0;
  for (int i = 0; i < 20000; ++i) {
    // Now elsewhere, now a little on or back.
    const std::uint64_t step = random() % 6000;
    offset = i % 50 == 0 ? random() % (large + 100)
                         : (i % 100 < 50 ? offset + step : offset - std::min(offset, step));
    const std::size_t count = i % 97 == 0 ? random() % 300000 : random() % 5000;
    if (i % 11 == 0) {
      file.expect(offset, random() % 100);
    }
    const std::string expected =
        offset < bytes.size() ? bytes.substr(static_cast<std::size_t>(offset), count) : "";
    ASSERT_EQ(readText(file, offset, count) == expected, true) << offset << " " << count;
  }
}

TEST(PagedFile, BytesAtAnOffsetReachToThePagesEndOrTheFilesEnd) {
  const std::string bytes = numberedBytes(5000);
  const TempFile temp(bytes);
  PagedFile file = opened(temp.path());
  EXPECT_EQ(file.bytesAt(600), bytes.substr(600, 1024 - 600));
  EXPECT_EQ(file.bytesAt(0), bytes.substr(0, 4096));
  EXPECT_EQ(file.bytesAt(4095), bytes.substr(4095, 1));
  EXPECT_EQ(file.bytesAt(4096), bytes.substr(4096));
  EXPECT_EQ(file.bytesAt(4999), bytes.substr(4999));
  for (const std::uint64_t outside :
       {std::uint64_t{5000}, std::uint64_t{8192}, std::uint64_t{1} << 63U, UINT64_MAX}) {
    EXPECT_EQ(file.bytesAt(outside), "") << outside;
    EXPECT_EQ(readText(file, outside, 10), "") << outside;
    EXPECT_EQ(readText(file, outside, 100000), "") << outside;
  }
}

TEST(PagedFile, FileThatIsCutHasLess) {
  const std::string bytes = numberedBytes(100000);
  const TempFile temp(bytes);
  PagedFile file = opened(temp.path());
  EXPECT_EQ(readText(file, 0, 10), bytes.substr(0, 10));
  std::filesystem::resize_file(temp.path(), 50001);
  EXPECT_EQ(file.size(), 50001U);
  EXPECT_EQ(readText(file, 49999, 10), bytes.substr(49999, 2));
  EXPECT_EQ(readText(file, 60000, 10), "");
  EXPECT_EQ(readText(file, 4096, 90000), bytes.substr(4096, 50001 - 4096));
}

TEST(PagedFile, FileThatCannotBeReadHasNothing) {
  PagedFile memory = opened("/proc/self/mem");  // nothing is mapped at its beginning
  EXPECT_EQ(readText(memory, 0, 10), "");
  EXPECT_EQ(readText(memory, 0, 100000), "");
  PagedFile none(Descriptor(-1));
  EXPECT_EQ(none.size(), 0U);
  EXPECT_EQ(readText(none, 0, 10), "");
}

/// Calls for reading 9 MiB in pieces of 1000 bytes, from these offsets.
std::uint64_t callsFor(const std::vector<std::uint64_t>& offsets) {
  const TempFile temp;
  std::filesystem::resize_file(temp.path(), large);
  PagedFile file = opened(temp.path());
  const FileReads reads;
  std::array<char, 1000> bytes;
  for (const std::uint64_t offset : offsets) {
    EXPECT_EQ(file.read(offset, bytes.data(), bytes.size()), bytes.size());
  }
  return reads.calls();
}

std::vector<std::uint64_t> offsetsInOrder() {
  std::vector<std::uint64_t> offsets;
  for (std::uint64_t offset = 0; offset + 1000 <= large; offset += 1000) {
    offsets.push_back(offset);
  }
  return offsets;
}

TEST(PagedFile, ReadingOnInEitherDirectionTakesFewCalls) {
  std::vector<std::uint64_t> offsets = offsetsInOrder();
  EXPECT_LT(callsFor(offsets), large / 65536 + 20);
  std::reverse(offsets.begin(), offsets.end());
  EXPECT_LT(callsFor(offsets), large / 65536 + 20);
}

TEST(PagedFile, SeveralPlacesAreReadInTurnWithFewCalls) {
  std::vector<std::uint64_t> offsets;
  for (std::uint64_t i = 0; i < 1000; ++i) {
    for (std::uint64_t place = 0; place < 9; ++place) {
      offsets.push_back((place << 20U) + place * 70000 + 300 * i);
    }
  }
  EXPECT_LT(callsFor(offsets), 9 * (300000 / 65536 + 10));
}

TEST(PagedFile, LeapsReadLittle) {
  const TempFile temp;
  std::filesystem::resize_file(temp.path(), std::uint64_t{1} << 33U);
  for (const bool are_expected : {false, true}) {
    PagedFile file = opened(temp.path());
    const FileReads reads;
    for (std::uint64_t i = 0; i < 1000; ++i) {
      const std::uint64_t offset = (i * 7919 % 1000) << 23U;
      if (are_expected) {
        file.expect(offset, 24);
      }
      readText(file, offset, 24);
    }
    EXPECT_EQ(file.bytesRead(), 1000 * (are_expected ? 24U : 512U));
    EXPECT_LE(reads.bytes(), file.bytesRead() + 100000);
  }
}

}  // namespace
