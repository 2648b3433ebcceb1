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
#include "record_format.h"
#include "sorted_records.h"

namespace mdf_reader {

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
std::unique_ptr<SignalValues> signalDataAt(InputFile& file, std::uint64_t link, bool is_unfinished,
                                           const FindingSink& report);

/// The records of one data group. Sorted data is read as it comes. Unsorted data is read through
/// once, and again for each channel group that is wanted, or for several of them together, with up
/// to 16 MiB of records in memory.
class Records {
 public:
  Records(InputFile& file, const Identification& identification, const DataGroup& data_group,
          const FindingSink& report);

  /// Visits the records of a channel group in order. There are as many as its cycle count says,
  /// or, where that is not final, as the data holds.
  void forEach(const ChannelGroup& group, const RecordVisitor& visit);

  /// Whether all records are of this group, so that each can be found by its number.
  bool areSorted(const ChannelGroup& group) const { return !isUnsorted() && ownsAllRecords(group); }

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
    std::uint64_t count = 0;
    std::uint64_t length = 0;  ///< of all values
    std::vector<Mark> marks;   ///< for every 16 KiB of data
  };
  class ValueRecords;

  bool isUnsorted() const;
  bool ownsAllRecords(const ChannelGroup& group) const;
  bool hasFinalCount(const ChannelGroup& group) const;
  bool hasInvalidationApart(const ChannelGroup& group) const;
  std::uint64_t mostRecords(const ChannelGroup& group, std::uint64_t size);
  void visitSorted(const ChannelGroup& group, const RecordVisitor& visit);
  void visitUnsorted(const ChannelGroup& group, const RecordVisitor& visit);
  void visitCollected(const ChannelGroup& group, std::uint64_t count, const RecordVisitor& visit);
  void collectFrom(const ChannelGroup& first);
  void walk(const std::function<bool(const Record& record)>& visit);
  std::uint64_t bytesOf(const ChannelGroup& group);
  void lookThrough();
  void note(const Record& record, std::uint64_t position);
  void compareCount(const ChannelGroup& group, std::uint64_t found, bool is_end);

  InputFile& file_;
  const Identification& identification_;
  const DataGroup& data_group_;
  const FindingSink& report_;
  DataStream data_;
  RecordFormat format_;
  std::string first_type_;  ///< of the blocks with the data
  std::unordered_map<const ChannelGroup*, Extent> extents_;
  std::unordered_map<const ChannelGroup*, std::string> collected_;  ///< records side by side
  bool is_looked_through_ = false;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_RECORDS_H_
