#ifndef MDF_READER_DATA_RECORDS_H_
#define MDF_READER_DATA_RECORDS_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "data_stream.h"
#include "gathered_records.h"
#include "record_format.h"
#include "record_span.h"
#include "sorted_copy.h"
#include "sorted_records.h"

namespace mdf_reader {

/// Why data is not made of so many records side by side, and what is not read of it; "" when it is.
/// A count of 0 limits nothing: whole records are read all the same.
std::string countProblem(std::uint64_t data_bytes, std::uint64_t records,
                         std::uint64_t record_bytes);

/// The first or the last record of a channel group.
struct RecordEnd {
  std::uint64_t number;    ///< from 0 on
  std::string_view bytes;  ///< without record id, and without invalidation bytes that stand apart
};
using EndVisitor = std::function<void(const ChannelGroup& group, const RecordEnd& end)>;

/// Takes a record as it is framed, which lasts until it returns.
using FrameVisitor = std::function<void(const Record& record)>;

/// Takes the bytes of a record; says whether to go on.
using RecordVisitor = std::function<bool(std::string_view record)>;

/// The values of one channel that stand outside its records.
class SignalValues {
 public:
  SignalValues() = default;
  virtual ~SignalValues() = default;
  SignalValues(const SignalValues&) = delete;
  SignalValues& operator=(const SignalValues&) = delete;

  /// The bytes of the value at an offset; nothing where there is none. They last until the next
  /// call.
  virtual std::optional<std::string_view> at(std::uint64_t offset) = 0;

  /// Roughly the bytes of all values.
  virtual std::uint64_t size() = 0;
};

/// Values in signal data blocks.
std::unique_ptr<SignalValues> signalDataAt(DataFile& file, DataLink link,
                                           const FindingSink& report);

/// What copies of unsorted records may take at a time. Data that was zipped extremely may be a
/// thousand times as long as its file, and the disk must not be filled for it.
struct CopyLimits {
  std::uint64_t in_memory = std::uint64_t{96} << 20U;  ///< bytes
  std::uint64_t in_file = 0;                           ///< on the disk

  static CopyLimits forFile(std::uint64_t size);
};

/// The records of one data group. Sorted data is read as it comes. Unsorted data is read through
/// once, and the channel groups that are expected to be read are gathered in memory meanwhile.
/// Where they do not fit there, it is read a second time to copy them to a file, and as often as it
/// takes where they do not fit there either.
class Records {
 public:
  Records(DataFile& file, const DataGroup& data_group, const FindingSink& report);

  /// Compares the data with what the data group and its channel groups say of it, and reports what
  /// does not fit, with the bytes that are not read. It is done once, and first of all by whatever
  /// visits or counts records.
  void examine();

  /// The same for the first time, and visits the records of all groups on the way where they are
  /// mixed.
  void examine(const FrameVisitor& visit) {
    visit_ = &visit;
    examine();
    visit_ = nullptr;
  }

  /// Bytes of the record id in front of each record.
  unsigned idBytes() const { return format_.idBytes(); }

  /// Bytes of the data up to the end of the last record that can be read. Where counts are final
  /// and the records stand side by side, these are all.
  std::uint64_t wholeBytes() {
    examine();
    return whole_bytes_;
  }

  /// How many records a channel group has: its cycle count or, where that is not final, as many as
  /// the data holds. Nothing where nobody can tell.
  std::optional<std::uint64_t> countOf(const ChannelGroup& group);

  /// Says which channel groups with records of fixed length will be read, more than one of them.
  /// Unsorted data is gone through for all of these at once, and once for each other one.
  void expect(std::vector<const ChannelGroup*> groups, CopyLimits limits) {
    expected_ = std::move(groups);
    limits_ = limits;
  }

  /// Reads the records of a channel group, as many as countOf() says and there are. Groups can be
  /// read side by side, each by one cursor; this object must outlast them.
  std::unique_ptr<RecordCursor> read(const ChannelGroup& group);

  /// Visits the same records.
  void forEach(const ChannelGroup& group, const RecordVisitor& visit);

  /// Visits the first and the last record of the channel groups that are wanted, as far as they are
  /// where the groups' counts say; a single one twice. Data with records side by side is not gone
  /// through for it.
  void forEachEnd(const std::function<bool(const ChannelGroup&)>& is_wanted,
                  const EndVisitor& visit);

  /// Whether all records are of this group, so that each can be found by its number.
  bool areSorted(const ChannelGroup& group) const { return !areFramed() && ownsAllRecords(group); }

  /// The records of such a group, without invalidation bytes that stand apart. They use this
  /// object's view of the data: it must outlast them, and one group can be read at a time.
  SortedRecords sortedRecords(const ChannelGroup& group);

  /// Bytes of the file that the data takes, as far as it was read.
  std::uint64_t storedBytes() const { return data_.storedBytes(); }

  /// The records of a channel group as values of a variable-length channel.
  std::unique_ptr<SignalValues> valuesIn(const ChannelGroup& group);

 private:
  /// Where in the data a value stands.
  struct Mark {
    std::uint64_t offset;    ///< of the value among all of its group
    std::uint64_t position;  ///< in the data
  };
  /// What reading through unsorted data has shown of a group.
  struct Extent {
    std::uint64_t first = 0;  ///< where in the data a record begins
    std::uint64_t last = 0;
    std::uint64_t count = 0;
    std::uint64_t length = 0;  ///< of all values
    std::vector<Mark> marks;   ///< for every 16 KiB of data

    void add(const Record& record, std::uint64_t position) {
      if (count++ == 0) {
        first = position;
      }
      last = position;
      if (record.has_length) {
        addLength(record.bytes.size(), position);
      }
    }
    void addLength(std::uint64_t bytes, std::uint64_t position);
  };
  class ValueRecords;
  class SortedCursor;
  class ScatteredCursor;

  bool areFramed() const;
  bool ownsAllRecords(const ChannelGroup& group) const;
  bool isLimited(const ChannelGroup& group) const;
  bool hasInvalidationApart(const ChannelGroup& group) const;
  std::uint64_t storedSize(const ChannelGroup& group) const;
  std::uint64_t mostRecords(const ChannelGroup& group, std::uint64_t size) const;
  void examineSorted(const ChannelGroup& group);
  void examineUnowned();
  void examineFramed();
  bool haveIdsOfTheirOwn();
  void reportRest(const Record& record, std::uint64_t position);
  void compareCount(const ChannelGroup& group);
  DataLink link() const { return {data_group_.offset, data_group_.data}; }
  std::unique_ptr<RecordCursor> readSorted(const ChannelGroup& group);
  std::unique_ptr<RecordCursor> readUnsorted(const ChannelGroup& group);
  void visitSortedEnds(const ChannelGroup& group, const EndVisitor& visit);
  void gatherExpected();
  bool mayCopyFor(const ChannelGroup& group) const;
  void copyExpected(const ChannelGroup& first);
  void copyRecords(std::uint64_t missing);
  std::size_t indexOf(const ChannelGroup& group) const {
    return static_cast<std::size_t>(&group - data_group_.groups.data());
  }
  Extent& extentOf(const ChannelGroup& group) { return extents_[indexOf(group)]; }
  template <class Visit>
  void walk(const Visit& visit);
  Record lookThrough(std::uint64_t& position);

  DataFile& file_;
  const DataGroup& data_group_;
  const FindingSink& report_;
  FindingSink unzipping_report_;  ///< takes what shows only when invalidation data is unzipped
  DataStream data_;
  RecordFormat format_;
  std::string first_type_;                     ///< of the blocks with the data
  std::vector<Extent> extents_;                ///< of each channel group
  std::vector<const ChannelGroup*> expected_;  ///< and not gathered or copied yet
  CopyLimits limits_{0, 0};
  std::unique_ptr<GatheredRecords> gathered_;
  std::shared_ptr<SortedCopy> copy_;
  std::unordered_map<const ChannelGroup*, std::size_t> parts_;  ///< of the copy
  bool is_examined_ = false;
  const FrameVisitor* visit_ = nullptr;  ///< of who examines
  std::uint64_t whole_bytes_ = 0;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_RECORDS_H_
