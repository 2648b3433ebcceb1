#include "reader/bytes/file_buffer.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <istream>
#include <string>

#include "reader/bytes/paged_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::Descriptor;
using mdf_reader::FileBuffer;
using mdf_reader::PagedFile;

namespace {

/// A stream over a file with these bytes.
class FileStream {
 public:
  explicit FileStream(const std::string& bytes) : temp_(bytes) {}

  std::istream& get() { return stream_; }
  std::streamoff position() { return stream_.tellg(); }

 private:
  TempFile temp_;
  PagedFile file_{Descriptor(open(temp_.path().c_str(), O_RDONLY | O_CLOEXEC))};
  FileBuffer buffer_{file_};
  std::istream stream_{&buffer_};
};

std::string twoPages() { return std::string(4090, 'a') + "0123456789" + std::string(4000, 'b'); }

TEST(FileBuffer, GivesCharactersAndPiecesInTurn) {
  FileStream file(twoPages());
  std::istream& is = file.get();
  std::string text(4091, '\0');
  is.read(text.data(), 4091);
  EXPECT_EQ(text, std::string(4090, 'a') + "0");
  EXPECT_EQ(is.get(), '1');
  EXPECT_EQ(is.peek(), '2');
  text.resize(7);
  is.read(text.data(), 7);
  EXPECT_EQ(text, "2345678");
  EXPECT_EQ(is.get(), '9');
  EXPECT_EQ(is.get(), 'b');
  EXPECT_EQ(file.position(), 4101);
}

TEST(FileBuffer, GivesTheWholeFileCharacterByCharacter) {
  FileStream file(twoPages());
  std::string text;
  for (char character = 0; file.get().get(character);) {
    text += character;
  }
  EXPECT_EQ(text, twoPages());
}

TEST(FileBuffer, GoesAnywhere) {
  FileStream file(twoPages());
  std::istream& is = file.get();
  is.seekg(4092);
  EXPECT_EQ(is.get(), '2');
  EXPECT_EQ(file.position(), 4093);
  is.seekg(2, std::ios_base::cur);
  EXPECT_EQ(is.get(), '5');
  is.seekg(-3, std::ios_base::cur);
  EXPECT_EQ(is.get(), '3');
  is.seekg(-4001, std::ios_base::end);
  EXPECT_EQ(is.get(), '9');
  is.seekg(0, std::ios_base::end);
  EXPECT_EQ(file.position(), 8100);
}

TEST(FileBuffer, EndsWithTheFile) {
  FileStream file(twoPages());
  std::istream& is = file.get();
  is.seekg(8098);
  std::string text(5, '?');
  is.read(text.data(), 5);
  EXPECT_EQ(is.gcount(), 2);
  EXPECT_EQ(is.rdstate(), std::ios_base::eofbit | std::ios_base::failbit);
  is.clear();
  is.seekg(9000);
  EXPECT_EQ(is.get(), std::char_traits<char>::eof());
}

TEST(FileBuffer, RefusesToGoBeforeTheFile) {
  FileStream file(twoPages());
  std::istream& is = file.get();
  is.seekg(7);
  EXPECT_TRUE(is.seekg(-8, std::ios_base::cur).fail());
  is.clear();
  EXPECT_EQ(file.position(), 7);
  EXPECT_TRUE(is.seekg(-1).fail());
}

TEST(FileBuffer, TakesNothingBackThatWasNotThere) {
  FileStream file("abc");
  std::istream& is = file.get();
  is.get();
  EXPECT_TRUE(is.putback('a').good());
  is.get();
  EXPECT_FALSE(is.putback('x').good());
}

}  // namespace
