#include "printing/file_dump.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <string>

#include "printing/output_buffer.h"
#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/c_file.h"
#include "tools/support/dumped.h"
#include "tools/support/file_size_limit.h"
#include "tools/support/healthy_file.h"
#include "tools/support/mdf_bytes.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"
#include "tools/support/walker_findings.h"

using namespace mdf_tests;
using namespace mdf_reader;
using mdf_tools::OutputBuffer;

namespace {

/// The part of the healthy file's dump that belongs to the block at an offset.
std::string partOf(const std::string& offset, const std::string& next_offset) {
  const std::string dump = healthyDump();
  const std::size_t begin = dump.find(offset + " (0x");
  return dump.substr(begin, dump.find("\n" + next_offset + " (0x") + 1 - begin);
}

TEST(FileDump, FileCutAnywhereShowsWhatIsWhole) {
  const std::string identification = partOf("0", "64");
  const std::string header_block = partOf("64", "168");
  const std::string file_history = partOf("168", "224");
  const std::string comment = partOf("224", "264");
  const std::string unknown = partOf("264", "312");
  const std::string groups = partOf("312", "480");
  const std::string channel = partOf("480", "640");
  const std::string bytes = healthyFile();
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    SCOPED_TRACE(size);
    const Dumped dump = dumpedBytes(bytes.substr(0, size));
    const auto shows = [&](const std::string& part) {
      return dump.output.find(part) != std::string::npos;
    };
    EXPECT_NE(dump.findings, "");
    EXPECT_EQ(shows(identification), size >= 64);
    EXPECT_EQ(shows(header_block), size >= 168);
    EXPECT_EQ(shows(file_history), size >= 224);
    EXPECT_EQ(shows(comment), size >= 264);
    EXPECT_EQ(shows(unknown), size >= 520);  // the channel's link to it is there
    EXPECT_EQ(shows(groups), size >= 480);
    EXPECT_EQ(shows(channel), size >= 640);
  }
}

TEST(FileDump, AnyByteMayBeWrong) {
  const std::string bytes = healthyFile();
  const std::regex findings("([0-9]+: expected [^\n]+, found [^\n]+\n)*");
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    for (const int wrong : {bytes[i] ^ 0x01, bytes[i] ^ 0x80}) {
      SCOPED_TRACE(std::to_string(i) + " is " + std::to_string(wrong));
      std::string damaged = bytes;
      damaged[i] = static_cast<char>(wrong);
      const Dumped dump = dumpedBytes(damaged);
      EXPECT_EQ(dump.output.rfind("0 (0x0) identification length 64\n", 0), 0U);
      const bool is_block = damaged.compare(64, 2, "##") == 0;
      EXPECT_EQ(dump.output.find("\n64 (0x40) ##") != std::string::npos, is_block);
      EXPECT_EQ(dump.output.back(), '\n');
      EXPECT_TRUE(std::regex_match(dump.findings, findings)) << dump.findings;
    }
  }
}

TEST(FileDump, EndsWhenTheOutputFails) {
  // The lines of many blocks fill the output's buffer; the last block gives a finding if it is
  // printed.
  std::string bytes = fileHead({168, 0, 0, 0, 0, 0});
  for (std::int64_t i = 1; i <= 1000; ++i) {
    bytes += unknownBlock({168 + 32 * i});
  }
  bytes += Bytes().header("HD", 103, 6).zeros(80).str();
  const TempFile file(bytes);
  InputFile input(file.path());
  const CFile full = fullFile();
  OutputBuffer output(full.get(), OutputBuffer::Bytes::as_they_are);
  std::ostream os(&output);
  int findings = 0;
  mdf_tools::dumpFile(input, os, [&](const Finding&) { ++findings; });
  EXPECT_EQ(output.error(), ENOSPC);
  EXPECT_EQ(findings, 0);
  EXPECT_EQ(dumpedBytes(bytes).findings, doesNotFit(32168, "HD", 103, 6));
}

/// Dumps the healthy file to a new file that takes so many bytes.
void expectBeginningOfDump(const std::string& path, std::size_t limit) {
  SCOPED_TRACE(limit);
  const TempFile file(healthyFile());
  InputFile input(file.path());
  const CFile cut(std::fopen(path.c_str(), "wb"), std::fclose);
  OutputBuffer output(cut.get(), OutputBuffer::Bytes::as_they_are);
  std::ostream os(&output);
  {
    const FileSizeLimit full(limit);
    mdf_tools::dumpFile(input, os,
                        [](const Finding& finding) { ADD_FAILURE() << finding.sentence; });
    output.flush();
  }
  EXPECT_EQ(output.error(), EFBIG);
  EXPECT_EQ(bytesOf(path), healthyDump().substr(0, limit));
}

TEST(FileDump, OutputThatTakesNoMoreHoldsTheBeginning) {
  const ScratchFolder folder;
  const std::size_t size = healthyDump().size();
  for (std::size_t limit = 0; limit < size; limit += 101) {
    expectBeginningOfDump(folder / "dump", limit);
  }
  expectBeginningOfDump(folder / "dump", size - 1);
}

/// The findings when a file is cut after it has been opened.
std::string findingsWhenCut(const std::string& bytes, std::uint64_t size) {
  const TempFile file(bytes);
  InputFile input(file.path());
  std::filesystem::resize_file(file.path(), size);
  const CFile printed = temporaryFile();
  OutputBuffer output(printed.get(), OutputBuffer::Bytes::as_they_are);
  std::ostream os(&output);
  std::string findings;
  mdf_tools::dumpFile(input, os, [&](const Finding& finding) { findings += findingLine(finding); });
  return findings;
}

TEST(FileDump, FileThatIsCutWhileItIsReadIsReported) {
  const std::string bytes = healthyFile();
  for (std::size_t cut = 1; cut <= bytes.size(); cut += 9) {
    const std::size_t size = bytes.size() - cut;
    const std::string last = std::to_string(size) + ": expected the file to keep its " +
                             std::to_string(bytes.size()) + " bytes while it is read, found " +
                             std::to_string(size) + "\n";
    const std::string findings = findingsWhenCut(bytes, size);
    ASSERT_GE(findings.size(), last.size());
    EXPECT_EQ(findings.substr(findings.size() - last.size()), last);
  }
  EXPECT_EQ(findingsWhenCut(bytes, bytes.size()), "");
  EXPECT_EQ(findingsWhenCut(bytes, bytes.size() + 1), "");
}

}  // namespace
