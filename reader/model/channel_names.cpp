#include "channel_names.h"

#include <algorithm>
#include <utility>

namespace mdf_reader {

namespace {

/// Whether a name begins with another one and a dot.
bool begins(std::string_view name, std::string_view with) {
  return !with.empty() && name.size() > with.size() + 1 && name[with.size()] == '.' &&
         name.substr(0, with.size()) == with;
}

}  // namespace

std::string_view memberPart(std::string_view member, const StructureName& structure) {
  if (begins(member, structure.path)) {
    return member.substr(structure.path.size() + 1);
  }
  return begins(member, structure.own) ? member.substr(structure.own.size() + 1) : member;
}

const std::string& ChannelNames::next(const Channel& channel) {
  constexpr std::size_t longest = 1024;
  around_.resize(std::min(around_.size(), channel.depth));
  StructureName name{std::string(channel.name), std::string(channel.name)};
  if (!around_.empty()) {
    const StructureName& structure = around_.back();
    name.own = memberPart(channel.name, structure);
    name.path = structure.path + '.' + name.own;
  }
  if (name.path.size() > longest) {
    name.path.erase(0, name.path.size() - longest);
  }
  around_.push_back(std::move(name));
  return around_.back().path;
}

std::string MemberNames::of(std::uint64_t channel) {
  if (!has_some_) {
    return "";
  }
  look();
  const auto found = names_.find(channel);
  return found == names_.end() ? "" : found->second;
}

void MemberNames::look() {
  if (std::exchange(has_looked_, true)) {
    return;
  }
  ChannelNames names;
  readDescription(
      file_, [](const Finding& /*finding*/) {},
      [&](const ChannelGroup&, const Channel& channel) {
        const std::string& name = names.next(channel);
        if (channel.depth > 0) {
          names_.emplace(channel.offset, name);
        }
      });
}

}  // namespace mdf_reader
