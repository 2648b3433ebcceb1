#include "recording/output_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using mdf_tools::OutputFile;
using mdf_tools::UnusablePath;

namespace fs = std::filesystem;

namespace {

std::string complaint(const fs::path& path) {
  try {
    const OutputFile file(path);
    return "opened";
  } catch (const UnusablePath& error) {
    return error.what();
  }
}

bool append(OutputFile& file, const std::string& text) {
  return file.append(text.data(), text.size());
}

TEST(OutputFile, BytesAreInTheFileAtOnce) {
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  EXPECT_TRUE(append(file, "abc"));
  EXPECT_EQ(bytesOf(folder / "out"), "abc");
  EXPECT_TRUE(append(file, "def"));
  EXPECT_EQ(bytesOf(folder / "out"), "abcdef");
}

TEST(OutputFile, PartsAreRewrittenInPlace) {
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  append(file, "abcdef");
  EXPECT_TRUE(file.rewrite([](std::ostream& os) {
    os.seekp(1);
    os << "XY";
  }));
  EXPECT_EQ(file.size(), 6U);
  EXPECT_TRUE(file.close());
  EXPECT_EQ(bytesOf(folder / "out"), "aXYdef");
}

TEST(OutputFile, IsCutAndThenRewrittenInPlace) {
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  append(file, "abcdef");
  EXPECT_TRUE(file.cutTo(4));
  EXPECT_EQ(file.size(), 4U);
  EXPECT_TRUE(file.rewrite([](std::ostream& os) {
    os.seekp(0);
    os << "X";
  }));
  EXPECT_TRUE(file.close());
  EXPECT_EQ(bytesOf(folder / "out"), "Xbcd");
}

TEST(OutputFile, FileThatWasMovedIsNotCutAndNeitherIsTheOneInItsPlace) {
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  append(file, "abcdef");
  fs::rename(folder / "out", folder / "moved");
  EXPECT_FALSE(file.cutTo(4));
  EXPECT_FALSE(fs::exists(folder / "out"));

  OutputFile other(folder / "out");
  append(other, "abcdef");
  fs::rename(folder / "out", folder / "moved");
  folder.write("out", "another");
  EXPECT_FALSE(other.cutTo(4));
  EXPECT_EQ(bytesOf(folder / "out"), "another");
  EXPECT_EQ(bytesOf(folder / "moved"), "abcdef");
}

TEST(OutputFile, OverwritesWhatIsThere) {
  const ScratchFolder folder;
  folder.write("out", "a longer text");
  OutputFile file(folder / "out");
  append(file, "new");
  EXPECT_EQ(bytesOf(folder / "out"), "new");
}

TEST(OutputFile, GrowsBeyondFourGibibytes) {
  constexpr std::int64_t far = (std::int64_t{1} << 32U) + 5;
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  EXPECT_TRUE(file.rewrite([](std::ostream& os) { os.seekp(far); }));
  EXPECT_TRUE(append(file, "abc"));
  EXPECT_EQ(file.size(), std::uint64_t{far + 3});
  EXPECT_TRUE(file.cutTo(far + 1));
  EXPECT_EQ(file.size(), std::uint64_t{far + 1});
  EXPECT_TRUE(file.close());
  EXPECT_EQ(fs::file_size(folder / "out"), std::uint64_t{far + 1});
}

TEST(OutputFile, DiscardedFileIsRemovedOrLeftEmptyWhenItWasThereBefore) {
  const ScratchFolder folder;
  OutputFile made(folder / "made");
  append(made, "abc");
  made.discard();
  EXPECT_FALSE(fs::exists(folder / "made"));

  folder.write("there", "before");
  OutputFile there(folder / "there");
  append(there, "abc");
  there.discard();
  EXPECT_EQ(fs::file_size(folder / "there"), 0U);
}

TEST(OutputFile, DeviceIsNeverRemoved) {
  OutputFile file("/dev/full");
  EXPECT_FALSE(append(file, "abc"));
  EXPECT_EQ(file.cause(), "No space left on device");
  EXPECT_EQ(file.size(), 0U);
  file.discard();
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(OutputFile, PathsThatAreNoFileAreRefusedWithOneSentence) {
  const ScratchFolder folder;
  const std::string path = folder.path().string();
  EXPECT_EQ(complaint(path), "cannot record to " + path + ": it is a directory");
  EXPECT_EQ(complaint(path + "/a/b"),
            "cannot record to " + path + "/a/b: there is no directory " + path + "/a");
  EXPECT_EQ(complaint("/proc/1/stat/x"), "cannot record to /proc/1/stat/x: Not a directory");
  EXPECT_EQ(complaint(""), "cannot record to : No such file or directory");
  EXPECT_EQ(complaint(path + "/" + std::string(300, 'x')),
            "cannot record to " + path + "/" + std::string(300, 'x') + ": File name too long");
}

TEST(OutputFile, PipeIsRefusedWithoutWaitingForItsReader) {
  const ScratchFolder folder;
  const std::string path = folder / "pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(complaint(path), "cannot record to " + path +
                                 ": finishing a recording goes back to its start, which works in a "
                                 "file only");
}

TEST(OutputFile, LinkToAFileIsFollowed) {
  const ScratchFolder folder;
  folder.write("file", "old");
  fs::create_symlink(folder / "file", folder / "link");
  fs::create_symlink(folder / "new", folder / "dangling");
  OutputFile link(folder / "link");
  append(link, "abc");
  EXPECT_EQ(bytesOf(folder / "file"), "abc");
  OutputFile dangling(folder / "dangling");
  append(dangling, "def");
  EXPECT_EQ(bytesOf(folder / "new"), "def");
}

}  // namespace
