#include "record_rescue.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "copy_failure.h"
#include "framework/wire.h"
#include "patching.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/work_budget.h"
#include "reader/data/data_file.h"
#include "reader/data/data_stream.h"
#include "reader/data/record_format.h"
#include "reader/model/description.h"
#include "reader/model/element_groups.h"
#include "record_search.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::detail::hostSize;

namespace {

const FindingSink silent = [](const Finding& /*finding*/) {};

/// A block of data that grows at the end of a file.
class NewData {
 public:
  NewData(mdf_writer::Output& output, std::uint64_t at, WorkBudget& budget)
      : output_(output), at_(at), end_(at + RawBlock::header_size), budget_(budget) {}

  void add(std::string_view bytes) {
    constexpr std::size_t most_waiting = std::size_t{1} << 18U;
    if (!budget_.take(bytes.size())) {
      throw CopyFailure("its damaged records are too many to be written again");
    }
    waiting_ += bytes;
    if (waiting_.size() >= most_waiting) {
      flush();
    }
  }

  /// Returns the end of the block.
  std::uint64_t finish() {
    flush();
    put(output_, at_, std::string("##DT\0\0\0\0", 8) + numberBytes(end_ - at_) + numberBytes(0));
    return end_;
  }

 private:
  void flush() {
    put(output_, end_, waiting_);
    end_ += waiting_.size();
    waiting_.clear();
  }

  mdf_writer::Output& output_;
  std::uint64_t at_;
  std::uint64_t end_;
  WorkBudget& budget_;
  std::string waiting_;
};

/// Adds the records of a data group to a block.
void addRecords(const DataGroup& data_group, DataStream& data, NewData& block,
                SkippedRecords& skipped) {
  const RecordFormat format(data_group, recordIdBytes(data_group, data, false));
  RecordSearch search(data_group, format, data);
  std::uint64_t position = 0;
  while (true) {
    const Record record = format.at(data, position);
    if (record.kind == Record::end) {
      return;
    }
    if (record.kind == Record::whole) {
      block.add(data.at(position, hostSize(record.next - position)));
      position = record.next;
      continue;
    }
    const std::uint64_t offset = data.placeOf(position);
    const auto next = record.kind == Record::torn ? std::nullopt : search.after(position);
    if (!next && record.kind != Record::unknown_id) {
      skipped.cuts.push_back({offset, data.size() - position, true});
      return;
    }
    const std::uint64_t end = next.value_or(data.size());
    skipped.gaps.push_back({offset, end - position});
    position = end;
  }
}

}  // namespace

SkippedRecords skipDamagedRecords(InputFile& file, const std::vector<Finishing::Stuck>& stuck,
                                  mdf_writer::Output& output) {
  constexpr std::uint64_t times = 16;
  constexpr std::uint64_t always = std::uint64_t{1} << 30U;
  WorkBudget budget(file.size(), times, always);
  SkippedRecords skipped;
  DataFile data_file(file);
  const Description description = readDescription(file, silent);
  std::uint64_t end = (file.size() + 7) / 8 * 8;
  for (const DataGroup& data_group : splitElements(file, description.data_groups, silent)) {
    const auto here = std::find_if(stuck.begin(), stuck.end(), [&](const Finishing::Stuck& each) {
      return each.data_group == data_group.offset && each.data == data_group.data;
    });
    if (here == stuck.end()) {
      continue;
    }
    DataStream data(data_file, {data_group.offset, data_group.data}, DataStream::Access::forward,
                    silent);
    NewData block(output, end, budget);
    addRecords(data_group, data, block, skipped);
    put(output, here->link_at, numberBytes(end));
    end = (block.finish() + 7) / 8 * 8;
  }
  return skipped;
}

}  // namespace mdf_tools
