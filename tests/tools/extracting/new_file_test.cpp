#include "extracting/new_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "tools/support/file_size_limit.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using mdf_tools::NewFile;
using mdf_tools::Unwritable;

namespace {

std::ptrdiff_t filesIn(const ScratchFolder& folder) {
  return std::distance(std::filesystem::directory_iterator(folder.path()), {});
}

TEST(NewFile, AppearsWhenItIsComplete) {
  const ScratchFolder folder;
  {
    NewFile file(folder.path(), "a");
    file.write("one ");
    file.write("two");
    EXPECT_FALSE(std::filesystem::exists(folder / "a"));
    EXPECT_TRUE(file.complete(false));
  }
  EXPECT_EQ(bytesOf(folder / "a"), "one two");
  EXPECT_EQ(filesIn(folder), 1);
}

TEST(NewFile, NothingIsLeftOfOneThatIsNotCompleted) {
  const ScratchFolder folder;
  { NewFile(folder.path(), "a").write("bytes"); }
  EXPECT_EQ(filesIn(folder), 0);
}

TEST(NewFile, ReplacesOnlyWhenItMay) {
  const ScratchFolder folder;
  folder.write("a", "old");
  {
    NewFile file(folder.path(), "a");
    file.write("new");
    EXPECT_FALSE(file.complete(false));
  }
  EXPECT_EQ(bytesOf(folder / "a"), "old");
  {
    NewFile file(folder.path(), "a");
    file.write("new");
    EXPECT_TRUE(file.complete(true));
  }
  EXPECT_EQ(bytesOf(folder / "a"), "new");
  EXPECT_EQ(filesIn(folder), 1);
}

TEST(NewFile, DoesNotFollowLinks) {
  const ScratchFolder folder;
  const ScratchFolder elsewhere;
  elsewhere.write("victim", "old");
  std::filesystem::create_symlink(elsewhere / "victim", folder / "a");
  {
    NewFile file(folder.path(), "a");
    file.write("new");
    EXPECT_FALSE(file.complete(false));
    EXPECT_TRUE(file.complete(true));
  }
  EXPECT_EQ(bytesOf(elsewhere / "victim"), "old");
  EXPECT_EQ(bytesOf(folder / "a"), "new");
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "a"));
}

TEST(NewFile, AFolderThatIsNotThere) {
  const ScratchFolder folder;
  try {
    NewFile file(folder / "none", "a");
    FAIL();
  } catch (const Unwritable& error) {
    EXPECT_EQ(std::string(error.what()), "cannot open the folder " + (folder / "none").string() +
                                             ": No such file or directory");
  }
}

TEST(NewFile, AFullDisk) {
  const ScratchFolder folder;
  {
    NewFile file(folder.path(), "a");
    const FileSizeLimit limit(10);
    EXPECT_THROW(file.write(std::string(20, 'x')), Unwritable);
  }
  EXPECT_EQ(filesIn(folder), 0);
}

}  // namespace
