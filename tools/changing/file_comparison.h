#ifndef MDF_TOOLS_CHANGING_FILE_COMPARISON_H_
#define MDF_TOOLS_CHANGING_FILE_COMPARISON_H_

#include <cstddef>
#include <string>
#include <vector>

#include "difference.h"
#include "file_describer.h"
#include "pairing.h"
#include "reader/columns/query.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

/// The words of what need not be compared, as users name it.
const std::vector<std::string>& ignorableParts();

/// One of the two files. What it is given must outlast it.
struct ComparedFile {
  ComparedFile(InputFile& file, const FindingSink& report, const NoteSink& note)
      : tables(file, query, report, note), describer(file, report) {}

  const Query query{};
  Tables tables;
  FileDescriber describer;
};

/// Compares two files by what they say and by their values, not by how these are stored.
class FileComparison {
 public:
  /// What it is given must outlast it.
  FileComparison(ComparedFile& a, ComparedFile& b, const DiffOptions& options,
                 DifferenceSink report);

  DiffSummary run();

 private:
  struct Group {
    const DataGroup* data_group;
    const ChannelGroup* group;
  };

  static std::vector<Group> groupsOf(const ComparedFile& file);
  Keys keysOf(ComparedFile& file, const std::vector<Group>& groups) const;
  void compareGroups();
  void compareGroup(const Group& a, const Group& b);
  void compareChannels(const ChannelGroup& a, const ChannelGroup& b);
  void compareConversions(const Thing& thing, const Channel& a, const Channel& b);
  void compareRecords(const Group& a, const Group& b);
  void compareLists(const std::string& name, const char* kind);
  void compareThings(const Thing& thing, const Json& a, const Json& b);
  void reportOnly(const Thing& thing, Side side);
  void report(const Difference& difference);
  bool isIgnored(const std::string& part) const { return options_.ignored.count(part) > 0; }
  bool isDecided() const { return options_.stops_at_first && !summary_.isSame(); }

  ComparedFile& a_;
  ComparedFile& b_;
  const DiffOptions& options_;
  DifferenceSink report_;
  DiffSummary summary_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_FILE_COMPARISON_H_
