#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tools/support/data_blocks.h"
#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// A file with these attachments.
FileBuilder fileWith(const std::vector<AttachmentSpec>& specs) {
  FileBuilder file;
  std::vector<std::uint64_t> attachments;
  for (const AttachmentSpec& spec : specs) {
    attachments.push_back(addAttachment(file, spec));
  }
  file.chain(attachments);
  file.link(64, 3, attachments.at(0));
  return file;
}

const std::string no_digest(16, '\0');

TEST(ExtractCommand, PlainAndCompressed) {
  const TempFile file(fileWith({{"logs/a.txt", "", 5, digestOfAbc(), 3, "abc"},
                                {"b.txt", "", 3, no_digest, 3, zippedAbc()},
                                {"c.txt", "", 0, no_digest, 0, ""}})
                          .bytes());
  const ScratchFolder folder;
  const std::string to = folder.path();
  EXPECT_EQ(run({"extract", file.path(), "--to", to}),
            wrote(to + "/a.txt: 3 bytes, digest verified\n" + to +
                  "/b.txt: 3 bytes\n\"c.txt\" is not in the file\n"));
  EXPECT_EQ(bytesOf(folder / "a.txt"), "abc");
  EXPECT_EQ(bytesOf(folder / "b.txt"), "abc");
}

TEST(ExtractCommand, AsJson) {
  const TempFile file(
      fileWith({{"logs/a.txt", "", 5, digestOfAbc(), 3, "abc"}, {"c.txt", "", 0, no_digest, 0, ""}})
          .bytes());
  const ScratchFolder folder;
  const std::string to = folder.path();
  EXPECT_EQ(run({"extract", "--json", file.path(), "--to", to}),
            wrote("{\"schema\":2,\"file\":\"" + file.path() +
                  "\",\"offset\":208,\"name\":\"logs/a.txt\",\"path\":\"" + to +
                  "/a.txt\",\"bytes\":3,\"digest_verified\":true}\n{\"schema\":2,\"file\":\"" +
                  file.path() +
                  "\",\"offset\":344,\"name\":\"c.txt\",\"path\":null,\"bytes\":null,"
                  "\"digest_verified\":false}\n"));
}

TEST(ExtractCommand, NothingToExtractIsNoted) {
  const TempFile file(fileWith({{"a", "", 1, no_digest, 1, "1"}}).bytes());
  EXPECT_EQ(run({"extract", file.path(), "--name", "b*"}),
            said(0, file.path() + ": note: no attachment matches \"b*\""));
  const TempFile empty(FileBuilder().bytes());
  EXPECT_EQ(run({"extract", empty.path()}), said(0, empty.path() + ": note: no attachment"));
}

TEST(ExtractCommand, NeverLeavesTheFolder) {
  const ScratchFolder outer;
  std::filesystem::create_directory(outer / "inner");
  const TempFile file(fileWith({{"../up", "", 1, no_digest, 1, "1"},
                                {(outer / "absolute").string(), "", 1, no_digest, 1, "2"},
                                {"..", "", 1, no_digest, 1, "3"},
                                {"", "", 1, no_digest, 1, "4"},
                                {"..\\up", "", 1, no_digest, 1, "5"}})
                          .bytes());
  const std::string to = outer / "inner";
  EXPECT_EQ(run({"extract", file.path(), "-o", to}),
            wrote(to + "/up: 1 byte\n" + to + "/absolute: 1 byte\n" + to + "/attachment: 1 byte\n" +
                  to + "/attachment (2): 1 byte\n" + to + "/up (2): 1 byte\n"));
  EXPECT_FALSE(std::filesystem::exists(outer / "up"));
  EXPECT_FALSE(std::filesystem::exists(outer / "absolute"));
}

TEST(ExtractCommand, NumbersDoNotMeetNamesThatHaveThem) {
  const TempFile file(fileWith({{"a (2)", "", 1, no_digest, 1, "1"},
                                {"a", "", 1, no_digest, 1, "2"},
                                {"a", "", 1, no_digest, 1, "3"},
                                {"a (2)", "", 1, no_digest, 1, "4"}})
                          .bytes());
  const ScratchFolder folder;
  EXPECT_EQ(run({"extract", file.path(), "-o", folder.path()}).exit_code, 0);
  EXPECT_EQ(bytesOf(folder / "a (2)"), "1");
  EXPECT_EQ(bytesOf(folder / "a"), "2");
  EXPECT_EQ(bytesOf(folder / "a (3)"), "3");
  EXPECT_EQ(bytesOf(folder / "a (2) (2)"), "4");
}

TEST(ExtractCommand, OverwritesOnlyByForce) {
  const TempFile file(fileWith({{"a", "", 1, no_digest, 3, "new"}}).bytes());
  const ScratchFolder folder;
  folder.write("a", "old");
  EXPECT_EQ(run({"extract", file.path(), "-o", folder.path()}),
            said(1, file.path() + ": 200 (0xc8): expected no file " + (folder / "a").string() +
                        ", found one; --force replaces it"));
  EXPECT_EQ(bytesOf(folder / "a"), "old");
  EXPECT_EQ(run({"extract", file.path(), "-o", folder.path(), "--force"}).exit_code, 0);
  EXPECT_EQ(bytesOf(folder / "a"), "new");
}

TEST(ExtractCommand, DamagedOnesAreNotWritten) {
  const TempFile file(fileWith({{"wrong", "", 5, digestOfAbc(), 3, "abd"},
                                {"broken", "", 3, no_digest, 3, "abc"},
                                {"fine", "", 1, no_digest, 3, "abc"}})
                          .bytes());
  const ScratchFolder folder;
  const RunResult result = run({"extract", file.path(), "-o", folder.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_PRED2(contains, result.messages,
               "expected the data of the attachment \"wrong\", found another MD5 "
               "digest than stated\n");
  EXPECT_PRED2(contains, result.messages,
               "expected the data of the attachment \"broken\", found a compressed "
               "stream that is damaged or has another size than stated\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "wrong"));
  EXPECT_FALSE(std::filesystem::exists(folder / "broken"));
  EXPECT_EQ(bytesOf(folder / "fine"), "abc");
}

TEST(ExtractCommand, ChoosesByName) {
  const TempFile file(
      fileWith({{"a.txt", "", 1, no_digest, 1, "1"}, {"b.dbc", "", 1, no_digest, 1, "2"}}).bytes());
  const ScratchFolder folder;
  EXPECT_EQ(run({"extract", file.path(), "-o", folder.path(), "--name", "*.dbc"}).exit_code, 0);
  EXPECT_FALSE(std::filesystem::exists(folder / "a.txt"));
  EXPECT_EQ(bytesOf(folder / "b.dbc"), "2");
}

TEST(ExtractCommand, AFolderThatIsNotThereIsAWrongArgument) {
  const TempFile file(fileWith({{"a", "", 1, no_digest, 1, "1"}}).bytes());
  EXPECT_EQ(run({"extract", file.path(), "-o", "/nowhere"}).exit_code, 2);
}

}  // namespace
