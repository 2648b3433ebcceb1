#include "file_builder.h"

#include <string>

namespace mdf_tests {

namespace {

constexpr std::uint64_t header_size = 24;
constexpr std::uint64_t link_size = 8;

/// "4.10    " for 410.
std::string versionText(unsigned version) {
  std::string text = std::to_string(version / 100) + '.' + std::to_string(version % 100);
  if (version % 100 < 10) {
    text.insert(2, "0");
  }
  text.resize(8, ' ');
  return text;
}

}  // namespace

FileBuilder::FileBuilder(const std::string& file_word, unsigned version) {
  bytes_ = Bytes()
               .text(file_word)
               .text(versionText(version))
               .text("testprog")
               .zeros(4)
               .u16(static_cast<std::uint16_t>(version))
               .zeros(34);
  add("HD", {0, 0, 0, 0, 0, 0}, Bytes().zeros(32));
}

std::uint64_t FileBuilder::add(const std::string& letters, const std::vector<std::uint64_t>& links,
                               const std::string& contents) {
  bytes_.resize((bytes_.size() + 7) / 8 * 8);
  const std::uint64_t offset = bytes_.size();
  Bytes block;
  block.header(letters, header_size + link_size * links.size() + contents.size(), links.size());
  for (const std::uint64_t link : links) {
    block.u64(link);
  }
  bytes_ += block.text(contents).str();
  return offset;
}

void FileBuilder::link(std::uint64_t block, std::size_t index, std::uint64_t target) {
  write(block + header_size + link_size * index, Bytes().u64(target));
}

void FileBuilder::write(std::uint64_t offset, const std::string& bytes) {
  bytes_.replace(static_cast<std::size_t>(offset), bytes.size(), bytes);
}

}  // namespace mdf_tests
