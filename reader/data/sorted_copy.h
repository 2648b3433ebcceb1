#ifndef MDF_READER_DATA_SORTED_COPY_H_
#define MDF_READER_DATA_SORTED_COPY_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../bytes/descriptor.h"
#include "../bytes/nameless_file.h"
#include "record_span.h"

namespace mdf_reader {

/// Records of several channel groups, taken from data where they are mixed and put side by side in
/// a file without a name, which takes as much room on the disk as they do.
class SortedCopy : public std::enable_shared_from_this<SortedCopy> {
 public:
  /// The records of one group.
  struct Part {
    std::size_t record_bytes;
    std::uint64_t records;
  };

  /// Takes the number of bytes that could not be read back from the file.
  using Lost = std::function<void(std::uint64_t bytes)>;

  /// @param folder where a file may be made.
  SortedCopy(const std::vector<Part>& parts, Lost lost,
             const std::string& folder = folderForFiles());

  /// Adds the next record of a group. What is more than was announced is left out.
  void add(std::size_t part, std::string_view record) {
    Place& place = places_[part];
    if (record.size() <= place.end - place.next) {
      put(place, record);
    }
  }

  /// Ends the copy; false when there is no room for it.
  bool finish();

  /// Reads the records of a group, as many as were added. The copy lasts as long as its cursors.
  std::unique_ptr<RecordCursor> read(std::size_t part, std::uint64_t most);

 private:
  /// Where the records of a group are put.
  struct Place {
    std::size_t record_bytes;
    std::uint64_t begin;
    std::uint64_t end;
    std::uint64_t next;   ///< after those that were added
    std::string waiting;  ///< for the file
  };
  class Cursor;

  void put(Place& place, std::string_view record);
  void flush(Place& place);
  std::string_view bytesAt(std::uint64_t offset, std::size_t count, std::string& room) const;

  Lost lost_;
  std::vector<Place> places_;
  Descriptor file_;
  std::size_t most_waiting_;
  bool is_whole_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_SORTED_COPY_H_
