#ifndef MDF_READER_COLUMNS_COLUMN_H_
#define MDF_READER_COLUMNS_COLUMN_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../blocks/finding.h"
#include "../data/records.h"
#include "../values/conversion.h"
#include "../values/raw_type.h"
#include "batch.h"
#include "number_loader.h"
#include "remote_master.h"

namespace mdf_reader {

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
  bool numbers = false;                      ///< a text that a conversion gives: the raw number
};

/// Turns records into the values of a column. How that is done is chosen once.
class Column {
 public:
  Column(std::string name, ColumnSource source, const FindingSink& report);

  const ColumnHead& head() const { return head_; }

  /// Adds the values of records to data of the column's type.
  void append(const RecordSpan& records, ColumnData& to);

  /// Whether all values stand in the records themselves.
  bool isInRecords() const {
    return source_.elsewhere == nullptr && source_.channel->type != Channel::variable_length;
  }
  /// Bytes of its values in the record, which may be those of another column.
  std::uint64_t storedBytes() const { return type_.bytes(); }
  /// Looks for values that stand elsewhere, as append() does, and reports when there are none.
  void look(const RecordSpan& records);

 private:
  struct Known {
    static constexpr std::uint32_t no_code = UINT32_MAX;

    double number;
    Conversion::Result result;
    std::uint32_t code = no_code;  ///< of its text
  };

  ColumnType rawColumnType() const;
  ColumnType physicalType(ColumnType raw);
  void chooseLoader(ColumnType raw);
  void appendOwn(const RecordSpan& records, ColumnData& to);
  void appendRaw(const RecordSpan& records, ColumnData& to);
  void appendEach(const RecordSpan& records, ColumnData& to);
  void appendValue(const RawType& type, std::string_view bytes, ColumnData& to);
  void appendConverted(ColumnData& to);
  void appendCodes(ColumnData& to);
  Known& knownOf(double number, std::size_t place);
  std::uint32_t codeOf(Known& known, std::size_t row, ColumnData& to);
  void addResult(const Conversion::Result& result, std::size_t row, ColumnData& to);
  std::string_view textOf(const Conversion::Result& result, std::size_t row);
  bool hasInvalidationBit() const;
  /// Which bit of a record's invalidation bytes is the channel's.
  std::uint64_t invalidationBit() const {
    return source_.channel->invalidation_bit + source_.invalidation_shift;
  }
  void setInvalid(const RecordSpan& records, std::size_t first_row, ColumnData& to) const;
  bool isValid(std::string_view record) const;
  std::string_view stored(std::string_view record) const;
  std::optional<std::string_view> found(std::string_view record, std::uint64_t number);
  bool mayGive(std::size_t bytes);
  void tell(Code code, const std::string& sentence);

  ColumnHead head_;
  ColumnSource source_;
  const FindingSink& report_;
  RawType type_;
  std::uint64_t begin_ = 0;  ///< of the value in the record
  bool is_inside_ = true;    ///< the record has the bytes of the value
  bool has_told_ = false;
  std::uint64_t given_ = 0;  ///< bytes of long values

  std::optional<NumberLoader> loader_;  ///< where all values are numbers in the records
  bool loads_physical_ = false;  ///< as doubles, which the conversion turns into others in place
  ColumnData raw_;               ///< values that wait for their conversion
  std::string text_;             ///< one of them
  std::vector<Known> known_;     ///< numbers that were converted lately
  const ColumnData* coded_ = nullptr;  ///< what their codes are of
  std::vector<std::uint32_t> codes_;   ///< of some rows
  std::string gathered_;               ///< records from elsewhere
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_COLUMN_H_
