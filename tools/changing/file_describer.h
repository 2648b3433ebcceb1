#ifndef MDF_TOOLS_CHANGING_FILE_DESCRIBER_H_
#define MDF_TOOLS_CHANGING_FILE_DESCRIBER_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "printing/json_output.h"
#include "reader/blocks/finding.h"
#include "reader/bytes/work_budget.h"
#include "reader/model/description.h"
#include "reader/model/texts.h"
#include "reader/summary/conversion_json.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Something of a list that a file has, such as an event.
struct ListEntry {
  std::string name;
  std::string key;  ///< what it is known by
  Json members;
};

/// What a file says, as far as it means something to those who use the measurement: nothing of
/// where and how things are stored. Each is an object, whose members say what differs when two
/// files do.
class FileDescriber {
 public:
  /// What it is given must outlast it.
  FileDescriber(InputFile& file, const FindingSink& report);

  Json header(const Header& header);
  Json group(const DataGroup& data_group, const ChannelGroup& group);
  /// All but its conversion.
  Json channel(const Channel& channel);
  /// Null for none.
  const Json& source(std::uint64_t offset);
  /// One line; "" for none.
  const std::string& conversion(const Channel& channel);
  /// The same as an object, null for none and for one that changes nothing.
  Json conversionMembers(const std::string& line);

  /// The entries of a list, as the words of ignorableParts() name it.
  std::vector<ListEntry> list(const std::string& name, const Header& header,
                              const std::vector<DataGroup>& data_groups);

 private:
  std::vector<ListEntry> events(const Header& header);
  std::vector<ListEntry> attachments(const Header& header);
  std::vector<ListEntry> hierarchy(const Header& header, const std::vector<DataGroup>& data_groups);
  std::vector<ListEntry> history(const Header& header);
  Json text(std::string_view text);
  Json reductions(std::uint64_t first);
  bool mayTake(std::uint64_t bytes);

  InputFile& file_;
  const FindingSink& report_;
  Texts texts_;
  ConversionTexts conversions_;
  std::unordered_map<std::uint64_t, Json> sources_;
  WorkBudget budget_;  ///< channels may have texts in common, however long
  bool has_told_ = false;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_FILE_DESCRIBER_H_
