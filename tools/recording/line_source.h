#ifndef MDF_TOOLS_RECORDING_LINE_SOURCE_H_
#define MDF_TOOLS_RECORDING_LINE_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sample_lines.h"

namespace mdf_tools {

enum class LineForm { csv, json };

/// Makes samples from lines: of CSV, the first line of which names the channels, with their units
/// in brackets, or of JSON, an object each. The first sample settles which channels have numbers
/// and which have texts.
class LineSource : public SampleLines {
 public:
  /// @param time_name which of them holds the times, in seconds unless its unit says otherwise;
  /// empty for none.
  LineSource(LineForm form, std::string time_name)
      : form_(form), time_name_(std::move(time_name)) {}

  /// False for the names and for an empty line.
  /// @throws BadOption when there is no channel with times, or one that is called as the file's.
  bool take(std::string_view line) override;

  /// The channels, once there was a sample.
  const std::vector<SignalGroup>& groups() const override { return groups_; }
  bool canBringGroups() const override { return false; }

  Sample& sample() override { return sample_; }
  bool hasTimes() const override { return !time_name_.empty(); }
  std::optional<std::uint64_t> start() const override {
    return origin_ > 0 ? std::optional(static_cast<std::uint64_t>(origin_ * 1e9)) : std::nullopt;
  }

 private:
  struct Field {
    std::string text;
    std::optional<double> number{};
    bool is_missing = false;
  };
  using Fields = std::vector<Field>;

  static Field fieldOf(const std::string& name, const nlohmann::ordered_json& value);
  void addColumn(std::string_view name);
  void requireTimes() const;
  Fields fieldsOfCsv(std::string_view line) const;
  Fields fieldsOfJson(std::string_view line);
  void settle(const Fields& fields);
  void putTime(const Field& field);
  void put(const Fields& fields);

  LineForm form_;
  std::string time_name_;
  char separator_ = ',';
  std::vector<Signal> columns_;
  std::vector<std::string> members_;  ///< of JSON: what they are called there
  std::size_t time_column_ = SIZE_MAX;
  double second_ = 1;  ///< in units of the times
  double origin_ = 0;  ///< of the times, in seconds since 1970
  std::int64_t last_ = INT64_MIN;
  bool is_settled_ = false;
  std::vector<SignalGroup> groups_ = {{"standard input", {}, true}};
  Sample sample_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_LINE_SOURCE_H_
