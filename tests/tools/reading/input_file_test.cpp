#include "reader/bytes/input_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::InputFile;

namespace {

std::string readText(InputFile& file, std::uint64_t offset, std::size_t count) {
  std::string bytes(count, '?');
  bytes.resize(file.readAt(offset, bytes.data(), count));
  return bytes;
}

std::string openingFails(const std::string& path) {
  const InputFile file(path);
  return file.problem().empty() ? "opened" : file.problem();
}

TEST(InputFile, KnowsNameAndSize) {
  const TempFile file("0123456789");
  const InputFile input(file.path());
  EXPECT_EQ(input.name(), file.path());
  EXPECT_EQ(input.size(), 10U);
  EXPECT_EQ(input.sizeFrom(0), 10U);
  EXPECT_EQ(input.sizeFrom(9), 1U);
  EXPECT_EQ(input.sizeFrom(10), 0U);
  EXPECT_EQ(input.sizeFrom(UINT64_MAX), 0U);
}

TEST(InputFile, ReadsWhatIsThereInAnyOrder) {
  const TempFile file("0123456789");
  InputFile input(file.path());
  EXPECT_EQ(readText(input, 7, 3), "789");
  EXPECT_EQ(readText(input, 8, 3), "89");
  EXPECT_EQ(readText(input, 0, 2), "01");
  EXPECT_EQ(readText(input, 10, 1), "");
  EXPECT_EQ(readText(input, 1000, 1), "");
  EXPECT_EQ(readText(input, 4, 0), "");
  EXPECT_EQ(readText(input, 0, 100), "0123456789");
}

TEST(InputFile, StreamStandsAtTheOffsetAndIsGoodAfterAShortRead) {
  const TempFile file("0123456789");
  InputFile input(file.path());
  EXPECT_EQ(readText(input, 9, 5), "9");
  std::istream& stream = input.streamAt(4);
  EXPECT_TRUE(stream.good());
  std::array<char, 3> bytes;
  stream.read(bytes.data(), bytes.size());
  EXPECT_EQ(std::string(bytes.data(), bytes.size()), "456");
  EXPECT_EQ(static_cast<std::streamoff>(stream.tellg()), 7);
}

TEST(InputFile, EmptyFileHasNothing) {
  const TempFile file;
  InputFile input(file.path());
  EXPECT_EQ(input.size(), 0U);
  EXPECT_EQ(readText(input, 0, 1), "");
}

TEST(InputFile, ReadsBeyondFourGibibytes) {
  constexpr std::uint64_t far = (std::uint64_t{1} << 32U) + 5;
  TempFile file("begin");
  file.writeAt(far, "end");
  InputFile input(file.path());
  EXPECT_EQ(input.size(), far + 3);
  EXPECT_EQ(readText(input, far, 10), "end");
  EXPECT_EQ(readText(input, 5, 3), std::string(3, '\0'));
  EXPECT_EQ(input.streamAt(far).get(), 'e');
}

TEST(InputFile, ReadsAPipeIntoMemory) {
  const ScratchFolder folder;
  const std::string path = folder / "pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const std::string long_text(100000, 'x');
  std::thread writer([&] { std::ofstream(path) << "0123" << long_text << "789"; });
  InputFile input(path);
  writer.join();
  EXPECT_EQ(input.name(), path);
  EXPECT_EQ(input.size(), 100007U);
  EXPECT_EQ(readText(input, 100004, 10), "789");
  EXPECT_EQ(readText(input, 2, 3), "23x");
  EXPECT_EQ(input.streamAt(100006).get(), '9');
}

TEST(InputFile, ReadsAFileWithoutAnEndToGoToIntoMemory) {
  InputFile input("/proc/version");
  EXPECT_EQ(readText(input, 0, 6), "Linux ");
  EXPECT_LT(input.size(), 1000U);
  EXPECT_EQ(readText(input, input.size() - 1, 2), "\n");
}

TEST(InputFile, FileWhoseBytesCannotBeReadIsNamed) {
  EXPECT_EQ(openingFails("/proc/self/mem"), "cannot read /proc/self/mem: Input/output error");
}

TEST(InputFile, KnowsTheSizeItHadAndTheSizeItHas) {
  const TempFile file("0123456789");
  InputFile input(file.path());
  EXPECT_EQ(input.sizeNow(), 10U);
  std::filesystem::resize_file(file.path(), 4);
  EXPECT_EQ(input.sizeNow(), 4U);
  EXPECT_EQ(input.size(), 10U);
  EXPECT_EQ(readText(input, 2, 5), "23");
  EXPECT_EQ(readText(input, 7, 1), "");
}

}  // namespace
