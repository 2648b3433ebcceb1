#include "viewing/outline_cache.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>

#include "memory_samples.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/scratch_folder.h"
#include "viewing/outline_file.h"
#include "viewing/viewed_file.h"

namespace mdf_tests {

using namespace mdf_tools;

namespace fs = std::filesystem;

namespace {

Outline outlineOf(const MemorySamples& samples, bool has_texts = false) {
  const auto source = has_texts ? samples.texts() : samples.source();
  return Series(source, has_texts ? ColumnType::text : ColumnType::float64).outline();
}

MemorySamples manySamples() {
  std::mt19937 random(1);
  return randomSamples(random, 3000, Times::falling);
}

/// 7 and a gap at 1 and 2 s, as bytes without their head.
Bytes twoSamples() {
  Bytes bytes;
  bytes.u64(3).text("key").u64(2).u64(0).u64(0).f64(1).f64(2).f64(-infinity);
  bytes.u64(1).u64(1).f64(7).f64(7).f64(7).f64(7).f64(7).f64(0);
  return bytes.u64(0).u64(0).u64(0);
}

/// "0" at 1 s.
Bytes oneText() {
  Bytes bytes;
  bytes.u64(3).text("key").u64(1).u64(0).u64(0).f64(1).f64(1).f64(-infinity);
  bytes.u64(1).u64(0).f64(0).f64(0).f64(0).f64(0).f64(0).f64(0);
  return bytes.u64(1).u64(1).text("0").u64(1).f64(1).u64(0).u64(0);
}

/// Whether bytes with something else at an offset are still an outline.
bool isOutline(const Bytes& bytes, std::size_t offset, const Bytes& other) {
  std::string changed = bytes.str();
  changed.replace(offset, other.str().size(), other.str());
  return OutlineFile::unpack(OutlineFile::withHead(changed), "key").has_value();
}

}  // namespace

TEST(OutlineFile, IsWrittenAsItsFormSays) {
  const std::string head = Bytes().text("MDFVIEW\n").u64(1).u64(147).u64(0xA52C45B4).str();
  EXPECT_EQ(OutlineFile::pack("key", outlineOf({{1, 2}, {7, gap}})), head + twoSamples().str());
  EXPECT_EQ(OutlineFile::pack("key", outlineOf({{1}, {0}}, true)).substr(32), oneText().str());
}

TEST(OutlineFile, WhatWasWrittenIsReadAndGoesOn) {
  const MemorySamples all = manySamples();
  for (const bool has_texts : {false, true}) {
    for (const std::size_t count : {0U, 1U, 128U, 3000U}) {
      const std::string bytes = OutlineFile::pack("key", outlineOf(all.first(count), has_texts));
      const auto outline = OutlineFile::unpack(bytes, "key");
      ASSERT_TRUE(outline) << count;
      EXPECT_EQ(OutlineFile::pack("key", *outline), bytes);
      EXPECT_FALSE(OutlineFile::unpack(bytes, "kez"));
    }
  }
}

TEST(OutlineFile, BytesThatAreCutOrChangedAreNone) {
  const std::string bytes = OutlineFile::pack("key", outlineOf(manySamples().first(200), true));
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::string changed = bytes;
    changed[i] = static_cast<char>(changed[i] ^ 0x10);
    EXPECT_FALSE(OutlineFile::unpack(changed, "key")) << i;
    EXPECT_FALSE(OutlineFile::unpack(bytes.substr(0, i), "key")) << i;
  }
  EXPECT_FALSE(OutlineFile::unpack(bytes + '\0', "key"));
}

TEST(OutlineFile, WhatCannotBeIsRefusedWithTheRightChecksum) {
  const auto number = [](std::uint64_t value) { return Bytes().u64(value); };
  const auto real = [](double value) { return Bytes().f64(value); };
  const Bytes good = twoSamples();
  EXPECT_TRUE(isOutline(good, 0, number(3)));
  EXPECT_FALSE(isOutline(good, 0, number(UINT64_MAX))) << "length of the key";
  for (const std::uint64_t records : {std::uint64_t{0}, std::uint64_t{3}, std::uint64_t{129},
                                      std::uint64_t{1} << 60U, UINT64_MAX}) {
    EXPECT_FALSE(isOutline(good, 11, number(records))) << "records " << records;
  }
  EXPECT_FALSE(isOutline(good, 19, number(3))) << "records out of order";
  EXPECT_FALSE(isOutline(good, 27, number(1))) << "more out of order before";
  for (const double time : {3.0, gap, -infinity, infinity}) {
    EXPECT_FALSE(isOutline(good, 35, real(time))) << "first time " << time;
  }
  for (const double time : {0.5, gap, -infinity, infinity}) {
    EXPECT_FALSE(isOutline(good, 43, real(time))) << "last time " << time;
  }
  EXPECT_FALSE(isOutline(good, 51, real(1))) << "first bucket begins after a record";
  EXPECT_FALSE(isOutline(good, 59, number(2))) << "more values";
  EXPECT_FALSE(isOutline(good, 75, real(8))) << "lowest above the first";
  EXPECT_FALSE(isOutline(good, 83, real(infinity))) << "highest is none";
  const Bytes text = oneText();
  EXPECT_FALSE(isOutline(text, 123, number(UINT64_MAX))) << "number of texts";
  EXPECT_FALSE(isOutline(text, 131, number(201))) << "length of a text";
  EXPECT_FALSE(isOutline(text, 140, number(UINT64_MAX))) << "number of runs";
  EXPECT_FALSE(isOutline(text, 148, real(gap))) << "time of a run";
  EXPECT_FALSE(isOutline(text, 156, number(1))) << "text of a run";
  EXPECT_FALSE(isOutline(text, 164, number(2))) << "runs before";
}

namespace {

class OutlineCacheTest : public testing::Test {
 protected:
  std::vector<fs::path> files() const {
    std::vector<fs::path> all;
    for (const auto& entry : fs::directory_iterator(path_)) {
      all.push_back(entry.path());
    }
    return all;
  }

  ScratchFolder folder_;
  fs::path path_ = folder_.path() / "deep" / "mdf";
  Outline outline_ = outlineOf(manySamples());
};

}  // namespace

TEST_F(OutlineCacheTest, IsAFolderForItsUserAlone) {
  OutlineCache cache(path_);
  EXPECT_EQ(cache.problem(), "");
  struct stat status {};
  ASSERT_EQ(stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(OutlineCacheTest, GivesWhatItWasGivenForTheSameKeyAlone) {
  OutlineCache cache(path_);
  cache.add("place", "key", outline_);
  const auto found = OutlineCache(path_).find("place", "key");
  ASSERT_TRUE(found);
  EXPECT_EQ(OutlineFile::pack("key", *found), OutlineFile::pack("key", outline_));
  EXPECT_FALSE(cache.find("elsewhere", "key"));
  EXPECT_FALSE(cache.find("place", "another key"));
  EXPECT_EQ(files().size(), 0U) << "it will not be wanted any more";
}

TEST_F(OutlineCacheTest, DamagedFilesAreRemoved) {
  OutlineCache cache(path_);
  cache.add("place", "key", outline_);
  ASSERT_EQ(files().size(), 1U);
  fs::resize_file(files().front(), 1000);
  EXPECT_FALSE(cache.find("place", "key"));
  EXPECT_EQ(files().size(), 0U);
}

TEST_F(OutlineCacheTest, LinksAreNotFollowed) {
  OutlineCache cache(path_);
  cache.add("place", "key", outline_);
  const fs::path file = files().front();
  folder_.write("elsewhere", "untouched");
  fs::remove(file);
  fs::create_symlink(folder_ / "elsewhere", file);
  EXPECT_FALSE(cache.find("place", "key"));
  cache.add("place", "key", outline_);
  EXPECT_TRUE(cache.find("place", "key"));
  EXPECT_EQ(bytesOf(folder_ / "elsewhere"), "untouched");
}

TEST_F(OutlineCacheTest, WhatWasNotUsedForLongestGoesFirst) {
  const std::size_t size = OutlineFile::pack("key", outline_).size();
  OutlineCache cache(path_, 3 * size);
  const auto now = fs::file_time_type::clock::now();
  for (int i = 0; i < 3; ++i) {
    const auto before = files();
    cache.add("place " + std::to_string(i), "key", outline_);
    for (const fs::path& path : files()) {
      if (std::find(before.begin(), before.end(), path) == before.end()) {
        fs::last_write_time(path, now - std::chrono::hours(3 - i));
      }
    }
  }
  EXPECT_TRUE(cache.find("place 0", "key"));
  cache.add("place 3", "key", outline_);
  EXPECT_EQ(files().size(), 3U);
  EXPECT_TRUE(cache.find("place 0", "key"));
  EXPECT_FALSE(cache.find("place 1", "key"));
  EXPECT_TRUE(cache.find("place 2", "key"));
}

TEST_F(OutlineCacheTest, FileOrLinkInPlaceOfTheFolderIsNotUsed) {
  folder_.write("file", "text");
  EXPECT_EQ(OutlineCache(folder_ / "file").problem(),
            "cannot use " + (folder_ / "file").string() + ": it is no folder of this user's own");
  fs::create_directory_symlink(folder_.path(), folder_ / "link");
  OutlineCache cache(folder_ / "link");
  cache.add("place", "key", outline_);
  EXPECT_NE(cache.problem(), "");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 2);
  EXPECT_NE(OutlineCache(folder_ / "file" / "mdf").problem(), "");
}

namespace {

/// A byte for each second.
std::string bytesAtSeconds(std::uint8_t byte) {
  FileBuilder file;
  Bytes records;
  for (int second = 0; second < 300; ++second) {
    records.f64(second).u8(byte);
  }
  const std::uint64_t data = file.addData(records.str());
  file.addSortedGroup({300, 9}, {timeChannel(), channelOf("level", 0, 8, 8)}, data);
  return file.bytes();
}

/// The highest value, by a program that is started anew.
double look(const fs::path& path, OutlineCache* cache) {
  SeriesStore store(std::size_t{1} << 20U);
  ViewedFile viewed(path.string(), 0, store, cache);
  double highest = 0;
  viewed.withSeries(0, 1, [&](const Series& series) {
    highest = series.outline().pyramid().of(0, series.axis().buckets()).maximum;
  });
  return highest;
}

}  // namespace

TEST_F(OutlineCacheTest, ServesAFileThatHasNotChanged) {
  OutlineCache cache(path_);
  const fs::path file = folder_ / "file.mf4";
  const auto now = fs::file_time_type::clock::now();
  const auto writeAt = [&](std::uint8_t byte, int hours_ago) {
    folder_.write("file.mf4", bytesAtSeconds(byte));
    fs::last_write_time(file, now - std::chrono::hours(hours_ago));
  };
  writeAt(5, 1);
  EXPECT_EQ(look(file, &cache), 5);
  ASSERT_EQ(files().size(), 1U);
  // What is kept of a file that has not changed is used, which its time tells.
  const fs::path kept = fs::directory_iterator(path_)->path();
  fs::last_write_time(kept, now - std::chrono::hours(5));
  EXPECT_EQ(look(file, &cache), 5);
  EXPECT_GE(fs::last_write_time(kept), now - std::chrono::hours(1));
  // The time lies.
  writeAt(6, 1);
  EXPECT_EQ(look(file, &cache), 6);
  writeAt(7, 2);
  EXPECT_EQ(look(file, &cache), 7);
  EXPECT_EQ(files().size(), 1U);
}

TEST_F(OutlineCacheTest, KeepsNothingOfAFileThatHasJustChanged) {
  OutlineCache cache(path_);
  folder_.write("file.mf4", bytesAtSeconds(5));
  const auto later = fs::file_time_type::clock::now() + std::chrono::hours(1);
  fs::last_write_time(folder_ / "file.mf4", later);
  EXPECT_EQ(look(folder_ / "file.mf4", &cache), 5);
  EXPECT_EQ(files().size(), 0U);
}

TEST_F(OutlineCacheTest, KeepsNothingUnderTheStampOfAFileThatCannotBeOpened) {
  OutlineCache cache(path_);
  const fs::path file = folder_ / "file.mf4";
  const auto now = fs::file_time_type::clock::now();
  folder_.write("file.mf4", bytesAtSeconds(5));
  fs::last_write_time(file, now - std::chrono::hours(2));
  SeriesStore store(std::size_t{1} << 20U);
  ViewedFile viewed(file.string(), 0, store, &cache);
  folder_.write("file.mf4", "no measurement");
  fs::last_write_time(file, now - std::chrono::hours(1));
  EXPECT_EQ(viewed.refresh(), 0U);
  viewed.withSeries(0, 1, [](const Series& /*series*/) {});
  EXPECT_EQ(files().size(), 0U);
}

}  // namespace mdf_tests
