#ifndef MDF_TOOLS_CHANGING_JOINED_RECORDS_H_
#define MDF_TOOLS_CHANGING_JOINED_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data_writer.h"
#include "join_input.h"
#include "reader/data/data_stream.h"
#include "reader/data/records.h"
#include "record_change.h"

namespace mdf_tools {

using namespace mdf_reader;

/// What came of a channel group of a file.
struct JoinedPart {
  std::uint64_t records = 0;
  std::optional<double> first;  ///< times of records, in seconds from the start of the joined file
  std::optional<double> last;
};

/// A channel group of the joined file.
struct JoinedGroup {
  std::vector<GroupSource> sources;   ///< the first one's blocks are those of the joined file
  std::vector<std::uint64_t> counts;  ///< of their records, where that decides what changes
  std::unique_ptr<GroupChange> change;
  std::vector<JoinedPart> parts;                ///< of the sources
  std::uint64_t data = 0;                       ///< where its records are in the joined file
  std::map<std::size_t, std::uint64_t> values;  ///< the same of its channels of variable length
  std::uint64_t data_group = 0;                 ///< its place in the joined file

  std::uint64_t records() const;
  /// Whether a file begins before the files in front of it end.
  bool overlaps() const;
};

/// Groups that share data groups in the files, and those data groups.
struct Component {
  struct Data {
    std::size_t file;
    const DataGroup* data_group;
  };
  std::vector<std::size_t> groups;  ///< their places among the joined ones
  std::vector<Data> data;           ///< file after file
};

/// Writes the records of such groups, and their values of variable length.
class JoinedRecords {
 public:
  JoinedRecords(JoinInputs& inputs, std::vector<JoinedGroup>& groups, const Component& component,
                BlockWriter& out);

  /// @throws TooNarrow
  void write();

 private:
  /// Where the records and values of a group go.
  struct Output {
    std::unique_ptr<DataWriter> records;
    std::map<std::size_t, std::unique_ptr<DataWriter>> values;  ///< by the places of their channels
  };
  /// A channel group of a file whose records are being read.
  struct Reading {
    JoinedGroup* group = nullptr;  ///< null for one that holds values
    std::size_t source = 0;
    Output* output = nullptr;
    std::unique_ptr<RecordChange> change;
    std::uint64_t bytes = 0;          ///< of a record
    std::uint64_t limit = 0;          ///< of records
    std::uint64_t number = 0;         ///< of the record to come
    std::vector<DataWriter*> values;  ///< that take the records, for one that holds values
    std::string first;                ///< records
    std::string last;

    void take(std::string_view record);
  };

  void read(const Component::Data& data);
  std::vector<Reading> readingsOf(const Component::Data& data);
  void beginValues(JoinInput& input, const DataGroup& data_group, Reading& reading,
                   std::vector<Reading>& readings);
  static void appendValues(JoinInput& input, const Channel& channel, DataWriter& to);
  static void readSorted(Records& records, const ChannelGroup& group, Reading& reading);
  static void readMixed(JoinInput& input, const DataGroup& data_group, unsigned id_bytes,
                        std::vector<Reading>& readings);
  void finish(JoinInput& input, const ChannelGroup& group, Reading& reading);

  JoinInputs& inputs_;
  std::vector<JoinedGroup>& groups_;
  const Component& component_;
  std::map<std::size_t, Output> outputs_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_JOINED_RECORDS_H_
