#ifndef MDF_READER_DATA_GATHERED_RECORDS_H_
#define MDF_READER_DATA_GATHERED_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "../bytes/short_copy.h"
#include "record_span.h"

namespace mdf_reader {

/// Records of several channel groups, put side by side in memory while one goes through data where
/// they are mixed.
class GatheredRecords {
 public:
  /// @param groups how many channel groups there are.
  /// @param most bytes to take of memory.
  GatheredRecords(std::size_t groups, std::uint64_t most) : parts_(groups), left_(most) {}

  /// Has the records of a group gathered, all of this size.
  void want(std::size_t group, std::size_t record_bytes) {
    parts_[group].record_bytes = record_bytes;
    parts_[group].is_wanted = true;
  }

  bool has(std::size_t group) const { return parts_[group].is_wanted; }

  /// Adds the next record of a group, if it is wanted. False when there is no room for it.
  bool add(std::size_t group, std::string_view record) {
    Part& part = parts_[group];
    if (!part.is_wanted) {
      return true;
    }
    if (part.room < record.size() && !extend(part)) {
      return false;
    }
    copyShort(record, part.next);
    part.next += record.size();
    part.room -= record.size();
    return true;
  }

  /// Reads the records of a group, from the first to the last, none of which may be added later.
  /// This object must outlast the cursor.
  /// @param count how many there are, or fewer.
  std::unique_ptr<RecordCursor> read(std::size_t group, std::uint64_t count) const;

 private:
  /// A piece of memory full of records, but for the last one of a group.
  struct Piece {
    std::unique_ptr<char[]> bytes;
    std::size_t records;
  };
  struct Part {
    char* next = nullptr;  ///< where a record is put
    std::size_t room = 0;  ///< bytes from there on
    std::size_t record_bytes = 0;
    std::vector<Piece> pieces;
    bool is_wanted = false;
  };
  class Cursor;

  bool extend(Part& part);

  std::vector<Part> parts_;  ///< of the groups
  std::uint64_t left_;       ///< bytes of memory
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_GATHERED_RECORDS_H_
