#ifndef MDF_TOOLS_CHANGING_RECORD_CHANGE_H_
#define MDF_TOOLS_CHANGING_RECORD_CHANGE_H_

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "join_input.h"
#include "linear.h"

namespace mdf_tools {

using namespace mdf_reader;

/// That a value does not fit in its place in the record: it needs a wider one.
class TooNarrow : public std::exception {
 public:
  const char* what() const noexcept override { return "a value needs a wider place"; }
};

/// What of a channel's values is other in the records of a joined group.
struct ValueChange {
  enum class Form {
    integer,       ///< a raw number grows, in its place
    real,          ///< the same of one with a fraction
    offset,        ///< of a value of variable length, the same
    wide_integer,  ///< the raw number, in 8 bytes that the record gets
    wide_offset,   ///< in the same place
    wide_index,    ///< the number of the record in its file, which was nowhere stored
    wide_real,     ///< the physical value
  };
  std::size_t channel;  ///< its place in the group
  Form form;

  bool isWide() const { return form >= Form::wide_integer; }
};

/// What changes in the records of channel groups that become one: values of masters over time,
/// which count from another start; offsets of values of variable length; values that are numbers of
/// records.
class GroupChange {
 public:
  /// @param sources of groups that are laid out alike.
  /// @param counts of their records.
  /// @param is_wide what could grow out of its place gets a wider one.
  /// @throws CopyFailure where a master has no numbers.
  GroupChange(JoinInputs& inputs, const std::vector<GroupSource>& sources,
              const std::vector<std::uint64_t>& counts, bool is_wide);

  const std::vector<ValueChange>& values() const { return values_; }
  bool isNone() const { return values_.empty(); }
  std::size_t bytesMore() const;

 private:
  void add(std::size_t channel);
  void addMaster(std::size_t channel);
  ValueChange::Form formOfInteger(const Channel& channel, double factor) const;
  void addVirtual(std::size_t channel);
  bool goesOnByItself(std::size_t channel) const;
  void expectNumbers(std::size_t channel);
  const Channel& channelOf(std::size_t source, std::size_t channel) const {
    return sources_[source].group->channels[channel];
  }

  JoinInputs& inputs_;
  const std::vector<GroupSource>& sources_;
  const std::vector<std::uint64_t>& counts_;
  bool is_wide_;
  bool is_shifted_;  ///< files begin at several times
  std::vector<ValueChange> values_;
};

/// Changes the records of one of the groups.
class RecordChange {
 public:
  RecordChange(JoinInput& input, const ChannelGroup& group, const GroupChange& change);

  bool isNone() const { return values_.empty(); }

  /// Where the values of a channel of variable length begin among those of all files.
  void setBase(std::size_t channel, std::uint64_t base);

  /// The changed record; it lasts until the next call.
  /// @param number of the record in its file.
  /// @throws TooNarrow
  std::string_view of(std::string_view record, std::uint64_t number);

 private:
  struct Value {
    ValueChange change;
    const Channel* channel;
    std::int64_t ticks = 0;            ///< that integers grow by
    double more = 0;                   ///< that real numbers grow by
    std::uint64_t base = 0;            ///< of offsets
    Conversion* conversion = nullptr;  ///< null for none
  };

  void changeInteger(const Value& value, std::string_view record);
  void changeReal(const Value& value, std::string_view record);
  void changeOffset(const Value& value);
  std::uint64_t wideBits(const Value& value, std::string_view record, std::uint64_t number) const;
  std::int64_t grownInteger(const Value& value, std::string_view record) const;

  std::vector<Value> values_;
  std::size_t data_bytes_;
  std::string changed_;
};

/// Whether the values of a channel are numbers that its records have, or their own.
bool hasNumbers(const ChannelGroup& group, const Channel& channel);

/// The physical value of a channel with numbers.
/// @param number of the record, for a virtual channel.
double physicalValue(const Channel& channel, Conversion* conversion, std::string_view record,
                     std::uint64_t number);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_RECORD_CHANGE_H_
