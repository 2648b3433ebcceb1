#ifndef MDF_READER_MODEL_CHANNEL_NAMES_H_
#define MDF_READER_MODEL_CHANNEL_NAMES_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "description.h"

namespace mdf_reader {

/// A structure, for the names of its members.
struct StructureName {
  std::string path;  ///< with those of the structures around it; "" for none
  std::string own;   ///< what it adds to them
};

/// What a member of a structure adds to the structure's path. Many writers put the structure's own
/// name or its path in front of the member's name already: "CAN_DataFrame.ID".
std::string_view memberPart(std::string_view member, const StructureName& structure);

/// The names of channels, "structure.member" for members. Channels come in the order of their
/// group, each followed by its members.
class ChannelNames {
 public:
  /// The name of the next channel. It lasts until the next call; no more is kept of long ones than
  /// their ends.
  const std::string& next(const Channel& channel);

 private:
  std::vector<StructureName> around_;  ///< the channel before, and what it is a member of
};

/// The names of those channels of a file that are members.
class MemberNames {
 public:
  explicit MemberNames(InputFile& file) : file_(file) {}

  /// Says that there may be some: until then the file is not read for them.
  void expectSome() { has_some_ = true; }

  /// The name of the channel at an offset; "" for one that is no member.
  std::string of(std::uint64_t channel);

 private:
  void look();

  InputFile& file_;
  bool has_some_ = false;
  bool has_looked_ = false;
  std::unordered_map<std::uint64_t, std::string> names_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_CHANNEL_NAMES_H_
