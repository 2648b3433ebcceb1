#include "printing/output_buffer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <ostream>
#include <string>

#include "tools/support/c_file.h"

using namespace mdf_tests;
using mdf_tools::OutputBuffer;

namespace {

off_t sizeOnDisk(std::FILE* file) {
  struct stat status;
  EXPECT_EQ(fstat(fileno(file), &status), 0);
  return status.st_size;
}

std::string everyByte() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

/// What arrives in a file of the text, written as a string and then again character by character.
std::string passed(const std::string& text, OutputBuffer::Bytes bytes) {
  const CFile file = temporaryFile();
  OutputBuffer output(file.get(), bytes);
  std::ostream os(&output);
  os << text;
  for (const char character : text) {
    os.put(character);
  }
  output.flush();
  EXPECT_TRUE(os.good());
  EXPECT_EQ(output.error(), 0);
  return contentOf(file.get());
}

std::string shown(const std::string& text) {
  return passed(text, OutputBuffer::Bytes::for_a_terminal);
}

TEST(OutputBuffer, FileGetsEveryByteUnchanged) {
  EXPECT_EQ(passed(everyByte(), OutputBuffer::Bytes::as_they_are), everyByte() + everyByte());
}

TEST(OutputBuffer, TerminalGetsDotsForControlCharacters) {
  std::string expected = everyByte();
  for (std::size_t byte = 0; byte < 32; ++byte) {
    expected[byte] = byte == 9 || byte == 10 ? expected[byte] : '.';
  }
  expected[127] = '.';
  EXPECT_EQ(shown(everyByte()), expected + expected);
}

TEST(OutputBuffer, TerminalGetsUtf8ButNotItsControlCharacters) {
  const std::string letters = "\xC3\x80 \xE2\x82\xAC \xC2\xA0";  // the last is no control character
  EXPECT_EQ(shown(letters), letters + letters);
  EXPECT_EQ(shown("\xC2\x9B"), "\xC2.\xC2.");
  EXPECT_EQ(shown("\xC2\x80"), "\xC2.\xC2.");
  EXPECT_EQ(shown("\xC2\x9F"), "\xC2.\xC2.");
}

TEST(OutputBuffer, TerminalGetsLongTextsWhole) {
  std::string text(5000, 'x');
  text[1023] = '\a';
  text[1024] = '\a';
  text[4999] = '\a';
  std::string expected(5000, 'x');
  expected[1023] = '.';
  expected[1024] = '.';
  expected[4999] = '.';
  EXPECT_EQ(shown(text), expected + expected);
}

TEST(OutputBuffer, FileGetsTextsOfAnyLengthInOrder) {
  std::string text;
  for (const std::size_t length : {1U, 32767U, 2U, 32768U, 3U, 32769U, 4U, 100000U, 0U, 5U}) {
    text += std::string(length, static_cast<char>('a' + length % 26));
  }
  const CFile file = temporaryFile();
  OutputBuffer output(file.get(), OutputBuffer::Bytes::as_they_are);
  std::ostream os(&output);
  std::size_t done = 0;
  for (const std::size_t length : {1U, 32767U, 2U, 32768U, 3U, 32769U, 4U, 100000U, 0U, 5U}) {
    os << text.substr(done, length);
    done += length;
  }
  output.flush();
  EXPECT_TRUE(contentOf(file.get()) == text);
}

TEST(OutputBuffer, EndsWithEverythingInTheFile) {
  const CFile file = temporaryFile();
  {
    OutputBuffer output(file.get(), OutputBuffer::Bytes::as_they_are);
    std::ostream(&output) << "line\n";
  }
  EXPECT_EQ(sizeOnDisk(file.get()), 5);
}

TEST(OutputBuffer, TerminalGetsEachPieceAtOnce) {
  const CFile file = temporaryFile();
  std::setvbuf(file.get(), nullptr, _IOLBF, BUFSIZ);
  OutputBuffer output(file.get(), OutputBuffer::Bytes::for_a_terminal);
  std::ostream(&output) << "line\n";
  EXPECT_EQ(sizeOnDisk(file.get()), 5);
}

TEST(OutputBuffer, LineEndsDoNotFlush) {
  const CFile file = temporaryFile();
  OutputBuffer output(file.get(), OutputBuffer::Bytes::as_they_are);
  std::ostream os(&output);
  os << "line" << std::endl;
  EXPECT_EQ(sizeOnDisk(file.get()), 0);
  output.flush();
  EXPECT_EQ(sizeOnDisk(file.get()), 5);
}

TEST(OutputBuffer, FullDiskIsAnError) {
  const CFile full = fullFile();
  OutputBuffer output(full.get(), OutputBuffer::Bytes::as_they_are);
  std::ostream os(&output);
  os << "text" << std::flush;
  EXPECT_EQ(output.error(), 0);
  output.flush();
  EXPECT_EQ(output.error(), ENOSPC);
  EXPECT_FALSE((os << std::flush).good());
}

TEST(OutputBuffer, FullDiskEndsALongWrite) {
  for (const auto bytes : {OutputBuffer::Bytes::as_they_are, OutputBuffer::Bytes::for_a_terminal}) {
    const CFile full = fullFile();
    OutputBuffer output(full.get(), bytes);
    std::ostream os(&output);
    os << std::string(1000000, 'x');
    EXPECT_FALSE(os.good());
    EXPECT_EQ(output.error(), ENOSPC);
    os.clear();
    EXPECT_FALSE(os.put('x').good());
  }
}

}  // namespace
