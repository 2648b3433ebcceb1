#include "record_walk.h"

#include <algorithm>
#include <array>
#include <string>

#include "framework/wire.h"

namespace mdf_tools {

using mdf_v4_10::detail::loadLe;

namespace {

class Walker {
 public:
  Walker(std::vector<RecordGroup>& groups, DataReader& reader, std::uint64_t id_bytes)
      : groups_(groups), reader_(reader), id_bytes_(id_bytes) {}

  RecordWalk walk();

 private:
  bool readNumber(std::uint64_t bytes, std::uint64_t& number);
  RecordWalk walkRecord();
  bool walkContents(RecordGroup& group);

  std::vector<RecordGroup>& groups_;
  DataReader& reader_;
  std::uint64_t id_bytes_;
  std::string record_;
};

RecordWalk Walker::walk() {
  for (RecordGroup& group : groups_) {
    group.counted = 0;
    group.value_bytes = 0;
  }
  RecordWalk result{RecordWalk::fine, 0, 0};
  while (result.end == RecordWalk::fine && !reader_.isAtEnd()) {
    result = walkRecord();
  }
  if (reader_.isBroken()) {
    result.end = RecordWalk::unreadable;
  }
  return result;
}

bool Walker::readNumber(std::uint64_t bytes, std::uint64_t& number) {
  std::array<char, sizeof number> raw{};
  if (!reader_.read(raw.data(), static_cast<std::size_t>(bytes))) {
    return false;
  }
  number = loadLe<std::uint64_t>(raw.data());
  return true;
}

RecordWalk Walker::walkRecord() {
  RecordWalk result{RecordWalk::fine, reader_.position(), 0};
  if (!readNumber(id_bytes_, result.record_id)) {
    result.end = RecordWalk::cut_off;
    return result;
  }
  auto group = groups_.begin();
  if (id_bytes_ > 0) {
    group = std::lower_bound(
        groups_.begin(), groups_.end(), result.record_id,
        [](const RecordGroup& each, std::uint64_t id) { return each.record_id < id; });
    if (group == groups_.end() || group->record_id != result.record_id) {
      result.end = RecordWalk::unknown_id;
      return result;
    }
  }
  if (!walkContents(*group)) {
    result.end = RecordWalk::cut_off;
  }
  return result;
}

/// Takes what follows a record's id; false when the data ends before.
bool Walker::walkContents(RecordGroup& group) {
  constexpr std::uint64_t length_bytes = 4;
  std::uint64_t length = group.recordBytes();
  if (group.is_variable_length) {
    if (!readNumber(length_bytes, length)) {
      return false;
    }
    group.value_bytes += length_bytes + length;
  }
  ++group.counted;
  if (group.value_checks.empty()) {
    return reader_.skip(length);
  }
  if (!reader_.read(record_, length)) {
    return false;
  }
  for (const auto& check : group.value_checks) {
    check->take(record_);
  }
  return true;
}

}  // namespace

RecordWalk walkRecords(const Subject& subject, std::vector<RecordGroup>& groups,
                       const DataBlocks& data, std::uint64_t id_bytes) {
  DataReader reader(subject, data.offsets);
  return Walker(groups, reader, id_bytes).walk();
}

}  // namespace mdf_tools
