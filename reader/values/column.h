#ifndef MDF_READER_VALUES_COLUMN_H_
#define MDF_READER_VALUES_COLUMN_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "../blocks/finding.h"
#include "../data/records.h"
#include "../model/description.h"
#include "raw_value.h"
#include "remote_master.h"
#include "value.h"

namespace mdf_reader {

class Conversion;

/// A record and its number among those of its channel group, from 0 on.
struct Sample {
  std::string_view bytes;
  std::uint64_t number;
};

/// What a column takes from each record: a channel, or one element of an array channel.
struct ColumnSource {
  const ChannelGroup* group = nullptr;
  const Channel* channel = nullptr;
  std::int64_t byte_shift = 0;               ///< of an array's element
  std::uint64_t invalidation_shift = 0;      ///< bits
  const Channel* length_channel = nullptr;   ///< the channel with each value's length, or null
  std::unique_ptr<SignalValues> values;      ///< where values of variable length are, or null
  std::unique_ptr<MasterRecords> elsewhere;  ///< records in place of the samples' own, or null
  Conversion* conversion = nullptr;          ///< null to keep raw values
};

/// A column of a table.
class Column {
 public:
  Column(std::string name, ColumnSource source, const FindingSink& report);

  /// Its channel's name, which no other column of the table has.
  const std::string& name() const { return name_; }
  /// Of the physical values; "" for none.
  const std::string& unit() const { return unit_; }

  /// The sample's value, without one where it is invalid or not in the file.
  Value value(const Sample& sample);
  /// The same before any conversion.
  Value raw(const Sample& sample);
  /// Whether all values stand in the records themselves.
  bool isInRecords() const {
    return source_.elsewhere == nullptr && source_.channel->type != Channel::variable_length;
  }
  /// Bytes of its values in the record, which may be those of another column.
  std::uint64_t storedBytes() const { return type_.bytes(); }
  /// Looks for a value that stands elsewhere, as raw() does, and reports when there is none.
  void look(const Sample& sample);

 private:
  Value own(const Sample& sample);
  bool isValid(const Sample& sample) const;
  std::string_view stored(const Sample& sample) const;
  std::optional<std::string_view> found(const Sample& sample);
  bool mayGive(std::size_t bytes);
  void tell(Code code, const std::string& sentence);

  std::string name_;
  std::string unit_;
  ColumnSource source_;
  const FindingSink& report_;
  RawType type_;
  std::uint64_t begin_ = 0;  ///< of the value in the record
  bool is_inside_ = true;    ///< the record has the bytes of the value
  bool has_told_ = false;
  std::uint64_t given_ = 0;  ///< bytes of long values
};

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_COLUMN_H_
