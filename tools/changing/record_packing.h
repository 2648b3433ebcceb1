#ifndef MDF_TOOLS_CHANGING_RECORD_PACKING_H_
#define MDF_TOOLS_CHANGING_RECORD_PACKING_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "block_copy.h"
#include "content_choice.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Cuts bytes out of the records of a channel group that none of the channels use which a copy has.
/// What is left of them moves together; bits keep their places in their bytes. All elements of an
/// array keep their distance, with what is between them.
class RecordPacking {
 public:
  RecordPacking(const ChannelGroup& group, const ContentChoice& choice);

  /// Whether records stay as they are.
  bool isWhole() const { return data_.kept == data_bytes_ && invalidation_.kept == inval_bytes_; }

  std::uint64_t recordBytes() const { return std::uint64_t{data_.kept} + invalidation_.kept; }

  std::uint32_t invalidationBytes() const { return invalidation_.kept; }

  /// Adds what is left of a record, which has all its bytes.
  void append(std::string_view record, std::string& to) const {
    data_.append(record.substr(0, data_bytes_), to);
    invalidation_.append(record.substr(data_bytes_), to);
  }
  /// The same of a record of a sample reduction: means, least and greatest values.
  void appendReduced(std::string_view record, std::string& to) const;

  /// Tells the blocks of the group and of its channels where things are in the records now.
  void tell(BlockCopy& blocks) const;

 private:
  struct Range {
    std::uint32_t begin;
    std::uint32_t end;
    std::uint32_t to;  ///< where it begins in the copy
  };

  /// Ranges of the bytes of one part of a record.
  struct Part {
    void add(std::int64_t begin, std::int64_t end, std::uint32_t limit);
    void join();
    std::uint32_t placeOf(std::uint32_t byte, std::uint32_t limit) const;
    void append(std::string_view bytes, std::string& to) const {
      for (const Range& range : ranges) {
        to.append(bytes.substr(range.begin, range.end - range.begin));
      }
    }

    std::vector<Range> ranges;
    std::uint32_t kept = 0;  ///< bytes
  };

  struct Reach;
  struct Extent;

  void add(const Channel& channel, const Extent& extent);
  void tellChannel(BlockCopy& blocks, const Channel& channel) const;

  const ChannelGroup& group_;
  const ContentChoice& choice_;
  std::uint32_t data_bytes_;
  std::uint32_t inval_bytes_;
  Part data_;
  Part invalidation_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_RECORD_PACKING_H_
