#include "reader/model/attachments.h"

#include <gtest/gtest.h>

#include <string>

#include "reader/bytes/digest.h"
#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/data_blocks.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using namespace mdf_reader;

namespace {

/// The one attachment of a file, and what reading its data gives.
struct ReadBack {
  explicit ReadBack(const FileBuilder& builder, std::uint64_t offset)
      : temp(builder.bytes()), file(temp.path()) {
    attachment = readAttachments(file, offset, texts, [](const Finding&) {}).at(0);
    state = readAttachmentData(file, attachment, [&](std::string_view piece) { data += piece; });
  }

  TempFile temp;
  InputFile file;
  Texts texts;
  Attachment attachment;
  AttachmentData state;
  std::string data;
};

ReadBack readBack(const AttachmentSpec& spec) {
  FileBuilder builder;
  const auto at = addAttachment(builder, spec);
  return ReadBack(builder, at);
}

TEST(Attachments, Plain) {
  const ReadBack read = readBack({"a.txt", "text/plain", 1, std::string(16, 'd'), 3, "abc"});
  EXPECT_EQ(read.attachment.name, "a.txt");
  EXPECT_EQ(read.attachment.mime_type, "text/plain");
  EXPECT_TRUE(read.attachment.is_embedded);
  EXPECT_FALSE(read.attachment.is_compressed);
  EXPECT_FALSE(read.attachment.has_digest) << "it is stored, but its flag is not set";
  EXPECT_EQ(read.attachment.original_size, 3U);
  EXPECT_EQ(read.attachment.embedded_size, 3U);
  EXPECT_EQ(read.state, AttachmentData::fine);
  EXPECT_EQ(read.data, "abc");
}

TEST(Attachments, CompressedWithDigest) {
  const ReadBack read = readBack({"a", "", 7, digestOfAbc(), 3, zippedAbc()});
  EXPECT_TRUE(read.attachment.is_compressed);
  EXPECT_TRUE(read.attachment.has_digest);
  EXPECT_EQ(read.state, AttachmentData::fine);
  EXPECT_EQ(read.data, "abc");
  EXPECT_EQ(hexDigest(read.attachment.digest), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(Attachments, CutOffDataGivesNothing) {
  FileBuilder builder;
  const auto at = addAttachment(builder, {"a", "", 1, std::string(16, '\0'), 3, "abc"});
  builder.write(at + 56 + 32, Bytes().u64(UINT64_MAX));
  const ReadBack read(builder, at);
  EXPECT_EQ(read.state, AttachmentData::cut_off);
  EXPECT_EQ(read.data, "");
  EXPECT_EQ(read.attachment.data_there, 3U);
}

TEST(Attachments, LargeOnesComeInPieces) {
  std::string data;
  for (int i = 0; i < 200000; ++i) {
    data += static_cast<char>(i % 251);
  }
  const ReadBack read = readBack({"a", "", 1, std::string(16, '\0'), data.size(), data});
  EXPECT_EQ(read.state, AttachmentData::fine);
  EXPECT_EQ(read.data, data);
}

}  // namespace
