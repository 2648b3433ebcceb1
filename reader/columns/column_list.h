#ifndef MDF_READER_VALUES_COLUMN_LIST_H_
#define MDF_READER_VALUES_COLUMN_LIST_H_

#include <cstdint>
#include <string>
#include <vector>

#include "../blocks/finding.h"
#include "../model/description.h"

namespace mdf_reader {

/// A column before it is known where its values come from.
struct ColumnPlan {
  const Channel* channel = nullptr;
  std::string name;                      ///< which no other column of the group has
  std::string own_name;                  ///< the channel's
  std::string path;                      ///< the same with the structures that it is a member of
  std::int64_t byte_shift = 0;           ///< of an array's element
  std::uint64_t invalidation_shift = 0;  ///< bits
};

/// What a channel is called by itself, in UTF-8 and no longer than names get.
std::string ownNameOf(const Channel& channel);

/// The columns of a channel group. A member of a structure is called "structure.member", an element
/// of an array "name[0][1]", and the second channel of a name "name (2)".
///
/// The number of columns is limited by what a record can hold; columns beyond that are reported.
/// @param taken a name that no column may have.
std::vector<ColumnPlan> columnsOf(const ChannelGroup& group, const FindingSink& report,
                                  const std::string& taken = "");

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_COLUMN_LIST_H_
