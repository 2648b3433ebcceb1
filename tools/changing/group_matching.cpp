#include "group_matching.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "file_describer.h"
#include "group_facts.h"
#include "linear.h"
#include "pairing.h"
#include "printing/json_output.h"
#include "reader/bytes/digest.h"
#include "reader/bytes/printable.h"

namespace mdf_tools {

namespace {

/// Takes texts and numbers so that different ones make different digests.
class Key {
 public:
  Key& operator<<(std::string_view text) {
    *this << std::uint64_t{text.size()};
    md5_.add(text);
    return *this;
  }
  Key& operator<<(std::uint64_t number) {
    md5_.add(std::to_string(number) + ' ');
    return *this;
  }
  std::string digest() { return md5_.digest(); }

 private:
  Md5 md5_;
};

void add(Key& key, const ArrayShape& shape) {
  key << std::uint64_t{shape.dimensions.size()};
  for (const std::uint64_t dimension : shape.dimensions) {
    key << dimension;
  }
  key << static_cast<std::uint64_t>(shape.byte_step) << shape.invalidation_step
      << std::uint64_t{shape.is_column_oriented} << std::uint64_t{shape.inner.size()};
  for (const ArrayShape& inner : shape.inner) {
    add(key, inner);
  }
}

/// How records are laid out and what is in them, but for conversions.
std::string layoutOf(const ChannelGroup& group) {
  constexpr std::uint32_t flags = Channel::all_invalid | Channel::has_invalidation_bit;
  Key key;
  key << std::uint64_t{group.data_bytes} << std::uint64_t{group.invalidation_bytes}
      << std::uint64_t{group.flags};
  for (const Channel& channel : group.channels) {
    key << channel.name << channel.unit;
    for (const std::uint64_t number :
         {std::uint64_t{channel.depth}, std::uint64_t{channel.type},
          std::uint64_t{channel.sync_type}, std::uint64_t{channel.data_type},
          std::uint64_t{channel.bit_offset}, std::uint64_t{channel.byte_offset},
          std::uint64_t{channel.bit_count}, std::uint64_t{channel.flags & flags},
          std::uint64_t{channel.invalidation_bit}, std::uint64_t{channel.is_structure}}) {
      key << number;
    }
    add(key, channel.array);
  }
  return key.digest();
}

/// Numbers of records go on where they ended, so it matters alone how a value grows with them.
std::string conversionsOf(JoinInput& input, const ChannelGroup& group) {
  Key key;
  for (const Channel& channel : group.channels) {
    const auto linear =
        channel.isVirtual() ? linearAt(input.file, channel.conversion) : std::nullopt;
    if (linear) {
      std::uint64_t factor = 0;
      std::memcpy(&factor, &linear->factor, sizeof factor);
      key << "linear" << factor;
    } else {
      key << input.describer->conversion(channel);
    }
  }
  return key.digest();
}

bool goesOn(const DataGroup& data_group, const ChannelGroup& group) {
  return !hasElementsElsewhere(data_group) &&
         std::none_of(group.channels.begin(), group.channels.end(), [&](const Channel& channel) {
           return channel.type == Channel::synchronization ||
                  (channel.type == Channel::variable_length && !hasOffsetInPlace(group, channel));
         });
}

/// Collects the groups of files, file by file.
class Matching {
 public:
  Matching(JoinInputs& inputs, bool is_apart, const NoteSink& note)
      : inputs_(inputs), is_apart_(is_apart), note_(note) {}

  std::vector<std::vector<GroupSource>> run();

 private:
  /// The first group of a name.
  struct Named {
    std::size_t file;
    std::string layout;
    std::string conversions;
  };

  void add(const std::vector<GroupSource>& sources);
  std::vector<std::string> keysOf(const GroupSource& source);
  void explain(const GroupSource& source);

  JoinInputs& inputs_;
  bool is_apart_;
  const NoteSink& note_;
  std::vector<std::vector<GroupSource>> joined_;
  Keys keys_;  ///< of these
  std::map<std::string, Named, std::less<>> named_;
};

/// Groups with the masters of others come before these.
std::vector<std::vector<GroupSource>> Matching::run() {
  for (std::size_t file = 0; file < inputs_.size(); ++file) {
    std::vector<GroupSource> own;
    std::vector<GroupSource> remote;
    for (const DataGroup& data_group : inputs_[file].description.data_groups) {
      for (const ChannelGroup& group : data_group.groups) {
        if (!group.holdsVariableLength()) {
          (group.hasRemoteMaster() ? remote : own).push_back({file, &data_group, &group});
        }
      }
    }
    add(own);
    add(remote);
  }
  return std::move(joined_);
}

void Matching::add(const std::vector<GroupSource>& sources) {
  Keys keys;
  for (const GroupSource& source : sources) {
    keys.push_back(keysOf(source));
  }
  const Pairing pairing = is_apart_ ? pairUp({}, keys) : pairUp(keys_, keys);
  for (std::size_t i = 0; i < pairing.partners.size(); ++i) {
    if (pairing.partners[i]) {
      const GroupSource& source = sources[*pairing.partners[i]];
      inputs_[source.file].joined[source.group->offset] = i;
      joined_[i].push_back(source);
    }
  }
  for (const std::size_t i : pairing.only_b) {
    const GroupSource& source = sources[i];
    inputs_[source.file].joined[source.group->offset] = joined_.size();
    joined_.push_back({source});
    keys_.push_back(keys[i]);
    if (!is_apart_) {
      explain(source);
    }
  }
}

/// With its source, and without it: groups of one name may be of several sources.
std::vector<std::string> Matching::keysOf(const GroupSource& source) {
  JoinInput& input = inputs_[source.file];
  const ChannelGroup& group = *source.group;
  Key key;
  key << group.name << layoutOf(group) << conversionsOf(input, group);
  if (group.hasRemoteMaster()) {
    const auto master = input.joined.find(group.master_group);
    key << std::uint64_t{master == input.joined.end() ? SIZE_MAX : master->second};
  }
  if (!goesOn(*source.data_group, group)) {
    key << std::uint64_t{source.file} << std::uint64_t{group.index};
  }
  const std::string digest = key.digest();
  return {digest + jsonLine(input.describer->source(group.source)), digest};
}

/// Says why a group does not go on in one of its name.
void Matching::explain(const GroupSource& source) {
  constexpr std::size_t most_of_a_name = 60;
  JoinInput& input = inputs_[source.file];
  const ChannelGroup& group = *source.group;
  const std::string name(group.shownName());
  const Named own{source.file, layoutOf(group), conversionsOf(input, group)};
  const auto [first, is_first] = named_.emplace(name, own);
  if (is_first || first->second.file == source.file) {
    return;
  }
  const std::string than = " than that of " + inputs_[first->second.file].name;
  note_("channel group " + std::to_string(group.index) +
        (name.empty() ? "" : " \"" + printable(name, Harmless::utf8, most_of_a_name) + '"') +
        " of " + input.name + " stays one of its own: " +
        (!goesOn(*source.data_group, group) ? "it has arrays whose elements have records of their "
                                              "own, or a channel that refers to a "
                                              "stream"
         : first->second.layout != own.layout ? "it has other channels or another layout" + than
         : first->second.conversions != own.conversions ? "it has other conversions" + than
                                                        : "there is none that it could go on in"));
}

}  // namespace

std::vector<std::vector<GroupSource>> matchGroups(JoinInputs& inputs, bool is_apart,
                                                  const NoteSink& note) {
  return Matching(inputs, is_apart, note).run();
}

}  // namespace mdf_tools
