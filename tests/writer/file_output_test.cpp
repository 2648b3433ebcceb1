#include "writer/files/file_output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "../tools/support/scratch_folder.h"
#include "writer/mdf_writer.h"

namespace mdf_tests {
namespace {

namespace fs = std::filesystem;
using mdf_writer::Existing;
using mdf_writer::FileOutput;

std::vector<std::string> filesIn(const ScratchFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename());
  }
  return names;
}

using Names = std::vector<std::string>;

TEST(FileOutput, TakesItsNameWhenItIsPublished) {
  const ScratchFolder folder;
  const std::string path = folder / "run.mf4";
  {
    FileOutput output(path, Existing::keep);
    ASSERT_TRUE(output.isOpen()) << output.cause();
    EXPECT_TRUE(output.isSeekable());
    EXPECT_EQ(output.write(2, "cd", 2), 2U);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(output.publish() && output.sync());
    EXPECT_EQ(bytesOf(path), std::string("\0\0cd", 4));
    EXPECT_EQ(output.write(0, "ab", 2), 2U);
    EXPECT_TRUE(output.cut(3) && output.cut(10) && output.publish());
  }
  EXPECT_EQ(bytesOf(path), "abc");
  EXPECT_EQ(filesIn(folder), Names{"run.mf4"});
}

TEST(FileOutput, IsGoneWhenItIsNotPublished) {
  const ScratchFolder folder;
  FileOutput(folder / "run.mf4", Existing::keep).write(0, "ab", 2);
  EXPECT_EQ(filesIn(folder), Names());
}

TEST(FileOutput, KeepsOrReplacesWhatIsThere) {
  const ScratchFolder folder;
  const std::string path = folder / "run.mf4";
  folder.write("run.mf4", "old");
  const FileOutput kept(path, Existing::keep);
  EXPECT_FALSE(kept.isOpen());
  EXPECT_EQ(kept.cause(), "File exists");
  {
    FileOutput replacing(path, Existing::replace);
    replacing.write(0, "new", 3);
    EXPECT_EQ(bytesOf(path), "old");
    EXPECT_TRUE(replacing.publish());
  }
  EXPECT_EQ(bytesOf(path), "new");

  // A file that came meanwhile is kept, too.
  FileOutput late(folder / "late.mf4", Existing::keep);
  folder.write("late.mf4", "other");
  EXPECT_FALSE(late.publish());
  EXPECT_EQ(late.cause(), "File exists");
  EXPECT_EQ(bytesOf(folder / "late.mf4"), "other");
}

TEST(FileOutput, ReplacesWhatALinkLeadsTo) {
  const ScratchFolder folder;
  folder.write("real.mf4", "old");
  fs::create_symlink("real.mf4", folder / "link.mf4");
  FileOutput output(folder / "link.mf4", Existing::replace);
  output.write(0, "new", 3);
  EXPECT_TRUE(output.publish());
  EXPECT_TRUE(fs::is_symlink(folder / "link.mf4"));
  EXPECT_EQ(bytesOf(folder / "real.mf4"), "new");
}

TEST(FileOutput, SaysWhyItCannotBeMade) {
  const ScratchFolder folder;
  const FileOutput in_no_folder(folder / "none/run.mf4", Existing::keep);
  EXPECT_EQ(in_no_folder.cause(), "No such file or directory");
  EXPECT_FALSE(FileOutput("", Existing::keep).isOpen());
  const FileOutput on_a_folder(folder.path(), Existing::replace);
  EXPECT_FALSE(on_a_folder.isOpen());
  EXPECT_EQ(on_a_folder.cause(), "Is a directory");
  FileOutput full("/dev/full", Existing::keep);
  EXPECT_TRUE(full.isOpen() && full.isSeekable());
  EXPECT_EQ(full.write(0, "ab", 2), 0U);
  EXPECT_EQ(full.cause(), "No space left on device");
}

TEST(FileOutput, WritesToAPipeInOrder) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  {
    FileOutput output(ends[1]);
    EXPECT_FALSE(output.isSeekable());
    EXPECT_EQ(output.write(100, "ab", 2) + output.write(0, "cd", 2), 4U);
    EXPECT_TRUE(output.publish() && output.sync() && output.cut(1));
  }
  close(ends[1]);
  char bytes[8];
  EXPECT_EQ(read(ends[0], bytes, sizeof bytes), 4);
  EXPECT_EQ(std::string(bytes, 4), "abcd");
  close(ends[0]);
}

TEST(FileOutput, WritesInOrderToAFileThatIsAppendedTo) {
  const ScratchFolder folder;
  const std::string path = folder / "run.mf4";
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
  FileOutput output(descriptor);
  EXPECT_FALSE(output.isSeekable());
  EXPECT_EQ(output.write(100, "ab", 2) + output.write(0, "cd", 2), 4U);
  close(descriptor);
  EXPECT_EQ(bytesOf(path), "abcd");
}

TEST(Recording, SaysWhereItCannotRecord) {
  const ScratchFolder folder;
  const std::string path = folder / "run.mf4";
  folder.write("run.mf4", "old");
  mdf_writer::Plan plan;
  mdf_writer::Group& group = plan.addGroup("g");
  mdf_writer::Recording recording(path, plan);
  EXPECT_EQ(recording.cause(), "cannot record to " + path + ": File exists");
  EXPECT_FALSE(recording.append(group, 0));
  EXPECT_FALSE(recording.flush());
  EXPECT_FALSE(recording.finish());
  const mdf_writer::Recording full("/dev/full", plan);
  EXPECT_EQ(full.cause(),
            "cannot record to /dev/full: No space left on device; nothing was recorded");
  EXPECT_EQ(bytesOf(path), "old");
}

}  // namespace
}  // namespace mdf_tests
