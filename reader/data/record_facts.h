#ifndef MDF_READER_DATA_RECORD_FACTS_H_
#define MDF_READER_DATA_RECORD_FACTS_H_

#include <cstdint>
#include <functional>
#include <unordered_map>

#include "../blocks/finding.h"
#include "data_file.h"
#include "record_count.h"
#include "records.h"

namespace mdf_reader {

/// What a file's data shows of its groups where their blocks leave it open: how many records there
/// are, and how wide the record ids. The data is read, once, when somebody asks for such a thing;
/// of a finished file only the beginnings of data whose record ids may have 4 or 8 bytes.
class RecordFacts {
 public:
  /// @param report takes what is wrong with data whose records are counted. It is kept.
  RecordFacts(InputFile& file, FindingSink report);

  /// Takes the description that somebody has read already, and must keep as long as this object:
  /// else the file is read for it.
  void know(const Description& description) { description_ = &description; }

  /// The file, with what it leaves open.
  DataFile& file() { return file_; }

  /// Visits the first and the last record of the channel groups that are wanted, see Records. What
  /// has to be gone through for it is not gone through again: it comes before all else is asked.
  void visitEnds(const std::function<bool(const ChannelGroup&)>& is_wanted,
                 const EndVisitor& visit);

  /// The records of the channel group at an offset.
  /// @param stated its cycle count, which holds where the file does not leave it open.
  RecordCount recordsOf(std::uint64_t group, std::uint64_t stated);

  /// Bytes of the record ids of the data group at an offset, or the code itself where it is
  /// unknown.
  /// @param code what the data group has for it.
  std::uint64_t idBytesOf(std::uint64_t data_group, std::uint64_t code);

 private:
  void look();
  void lookAtAll(const Description& description);
  void lookAt(const DataGroup& data_group);
  bool wantsEnds(const ChannelGroup& group) const;
  bool leavesCountsOpen(const DataGroup& data_group) const;

  DataFile file_;
  FindingSink report_;
  FindingSink silent_;
  const Description* description_ = nullptr;  ///< null unless somebody has it
  bool has_looked_ = false;
  std::function<bool(const ChannelGroup&)> is_wanted_;
  EndVisitor visit_end_;
  std::unordered_map<std::uint64_t, RecordCount> counts_;  ///< by the groups' offsets
  std::unordered_map<std::uint64_t, unsigned> id_bytes_;   ///< by those of the data groups
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_RECORD_FACTS_H_
