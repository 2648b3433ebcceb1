#include "small_file.h"

namespace mdf_tests {

namespace {

/// Where the fields of a block begin.
constexpr std::uint64_t fieldsOf(std::uint64_t block, std::uint64_t links) {
  return block + 24 + 8 * links;
}

}  // namespace

SmallFile::SmallFile(const std::string& file_word, unsigned version)
    : FileBuilder(file_word, version) {
  link(header, 0, data_group);
  add("DG", {0, group, data, 0}, dataGroupFields(0));
  add("CG", {0, time, 0, 0, 0, 0}, GroupSpec{2, 9}.fields());
  add("CN", {speed, 0, time_name, 0, 0, 0, 0, 0}, ChannelSpec{2, 1, 4, 0, 0, 64}.fields());
  add("CN", {0, 0, speed_name, 0, 0, 0, 0, 0}, ChannelSpec{0, 0, 0, 0, 8, 8}.fields());
  text("time");
  text("speed");
  add("DT", {}, Bytes().zeros(18));
}

void SmallFile::setChannel(std::uint64_t channel, const ChannelSpec& spec) {
  write(fieldsOf(channel, 8), spec.fields());
}

void SmallFile::setGroup(const GroupSpec& spec) { write(fieldsOf(group, 6), spec.fields()); }

void SmallFile::replaceData(std::uint64_t block) {
  link(data_group, 2, block);
  write(data, Bytes().zeros(static_cast<std::size_t>(end - data)));
}

std::string faultyFile() {
  SmallFile file;
  file.setComment(739);
  file.write(SmallFile::time_name + 24, "\xFF");
  file.setChannel(SmallFile::time, {0, 0, 4, 0, 0, 64});
  return file.bytes();
}

}  // namespace mdf_tests
