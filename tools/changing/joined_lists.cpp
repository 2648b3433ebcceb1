#include "joined_lists.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "file_describer.h"
#include "file_frame.h"
#include "fileblocks/evblock.h"
#include "fileblocks/hdblock.h"
#include "linear.h"
#include "reader/blocks/block_fields.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/printable.h"
#include "reader/model/attachments.h"
#include "reader/model/events.h"
#include "reader/model/hierarchy.h"
#include "reader/model/history.h"
#include "reader/model/texts.h"

namespace mdf_tools {

using mdf_v4_10::EVBLOCK;
using mdf_v4_10::HDBLOCK;

namespace {

constexpr std::size_t most_of_a_name = 60;

const FindingSink silent = [](const Finding& /*finding*/) {};

/// When an event happens, as its block has it.
struct EventTime {
  std::int64_t base;
  double factor;
};

/// The same so much later: in its own unit, in nanoseconds, or as one number.
EventTime laterBy(std::int64_t nanoseconds, const EventTime& time) {
  constexpr double nanosecond = 1e-9;
  const auto ticks = ticksIn(nanoseconds, time.factor);
  if (const auto sum = ticks ? sumOf(time.base, *ticks) : std::nullopt) {
    return {*sum, time.factor};
  }
  const auto unit = nanosecondsIn(time.factor);
  const auto product = unit ? productOf(time.base, *unit) : std::nullopt;
  if (const auto sum = product ? sumOf(*product, nanoseconds) : std::nullopt) {
    return {*sum, nanosecond};
  }
  const double seconds =
      static_cast<double>(time.base) * time.factor + static_cast<double>(nanoseconds) * nanosecond;
  return seconds == 0 ? EventTime{0, 1} : EventTime{1, seconds};
}

/// What the entries of a list say, in their order.
std::vector<std::string> keysOf(JoinInput& input, const std::string& list) {
  std::vector<std::string> keys;
  for (const ListEntry& entry : input.describer->list(list, input.description.header, {})) {
    const bool is_unknown = list == "attachments" && entry.members["embedded"] == true &&
                            entry.members["md5"].is_null();
    keys.push_back(is_unknown ? "" : entry.key + '\0' + jsonLine(entry.members));
  }
  return keys;
}

/// Channel groups and channels by their offsets: what they become in the joined file.
using Scopes = std::unordered_map<std::uint64_t, std::string>;

Scopes scopesIn(const JoinInput& input) {
  Scopes scopes;
  for (const DataGroup& data_group : input.description.data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      const auto joined = input.joined.find(group.offset);
      if (joined == input.joined.end()) {
        continue;
      }
      const std::string name = std::to_string(joined->second);
      scopes[group.offset] = name;
      for (std::size_t channel = 0; channel < group.channels.size(); ++channel) {
        scopes[group.channels[channel].offset] = name + '.' + std::to_string(channel);
      }
    }
  }
  return scopes;
}

/// What an event is of.
std::string wordsOf(const Scopes& scopes, JoinInput& input, std::uint64_t event) {
  constexpr std::uint64_t first_scope = EVBLOCK::ev_md_comment + 1;
  const auto block = readFields(input.file, event, "EV");
  const std::uint64_t links = block ? linksThere(input.file, block->raw()) : 0;
  const std::uint64_t count = block ? block->number("ev_scope_count") : 0;
  std::string words;
  for (std::uint64_t scope = 0; scope < count && first_scope + scope < links; ++scope) {
    const auto known = scopes.find(linkAt(input.file, block->raw(), first_scope + scope));
    words += known == scopes.end() ? "? " : known->second + ' ';
  }
  return words;
}

bool showsWhatIsLeftOut(const JoinInput& input, const HierarchyEntry& entry) {
  return std::any_of(entry.elements.begin(), entry.elements.end(),
                     [&](const HierarchyElement& element) {
                       return input.blocks.isLeftOut(element.channel_group);
                     });
}

std::set<std::string> hierarchiesOf(JoinInput& input) {
  Texts texts;
  std::set<std::string> names;
  for (const HierarchyEntry& entry :
       readHierarchy(input.file, input.description.header.first_hierarchy, texts, silent)) {
    names.insert(std::string(entry.name));
  }
  return names;
}

}  // namespace

void JoinedLists::plan(bool are_one, const NoteSink& note) {
  for (std::size_t file = 1; file < inputs_.size(); ++file) {
    inputs_[file].blocks.cut({0, HDBLOCK::hd_md_comment});
    leaveOutHierarchies(file, note);
  }
  leaveOutTwins(attachmentsOf);
  leaveOutTwins(historyOf);
  if (are_one) {
    leaveOutTwins(eventsOf);
  }
}

void JoinedLists::leaveOutTwins(const std::function<std::vector<Entry>(JoinInput&)>& entries_of) {
  std::map<std::string, Place> known;
  for (std::size_t file = 0; file < inputs_.size(); ++file) {
    JoinInput& input = inputs_[file];
    std::vector<std::pair<std::string, Place>> met;
    for (Entry& entry : entries_of(input)) {
      const Place own{file, input.indexOf(entry.offset)};
      const auto first = known.find(entry.key);
      if (own.block == BlockTable::none || entry.key.empty()) {
        continue;
      }
      if (first == known.end()) {
        met.emplace_back(std::move(entry.key), own);
      } else {
        input.blocks.leaveOut(own.block);
        twins_.push_back({own, first->second});
      }
    }
    known.insert(met.begin(), met.end());
  }
}

std::vector<JoinedLists::Entry> JoinedLists::attachmentsOf(JoinInput& input) {
  std::vector<Entry> entries;
  Texts texts;
  const std::vector<std::string> keys = keysOf(input, "attachments");
  for (const Attachment& each :
       readAttachments(input.file, input.description.header.first_attachment, texts, silent)) {
    entries.push_back({each.offset, keys[entries.size()]});
  }
  return entries;
}

std::vector<JoinedLists::Entry> JoinedLists::historyOf(JoinInput& input) {
  std::vector<Entry> entries;
  Texts texts;
  const std::vector<std::string> keys = keysOf(input, "history");
  for (const HistoryEntry& each :
       readHistory(input.file, input.description.header.first_history, texts, silent)) {
    entries.push_back({each.offset, keys[entries.size()]});
  }
  return entries;
}

/// Events at the same distance from different starts are different.
std::vector<JoinedLists::Entry> JoinedLists::eventsOf(JoinInput& input) {
  std::vector<Entry> entries;
  Texts texts;
  const std::vector<std::string> keys = keysOf(input, "events");
  const Scopes scopes = keys.empty() ? Scopes() : scopesIn(input);
  for (const Event& each :
       readEvents(input.file, input.description.header.first_event, texts, silent)) {
    entries.push_back({each.offset, std::to_string(input.later) + ' ' +
                                        wordsOf(scopes, input, each.offset) +
                                        keys[entries.size()]});
  }
  return entries;
}

/// Hierarchies of the first file stay. Of another one, those stay that show nothing of groups that
/// went on in groups of files before.
void JoinedLists::leaveOutHierarchies(std::size_t file, const NoteSink& note) {
  JoinInput& input = inputs_[file];
  const std::set<std::string> first_names = hierarchiesOf(inputs_.front());
  Texts texts;
  const auto entries =
      readHierarchy(input.file, input.description.header.first_hierarchy, texts, silent);
  for (auto top = entries.begin(); top != entries.end();) {
    const auto next = std::find_if(top + 1, entries.end(),
                                   [](const HierarchyEntry& entry) { return entry.depth == 0; });
    const bool goes_on = std::any_of(
        top, next, [&](const HierarchyEntry& entry) { return showsWhatIsLeftOut(input, entry); });
    const bool is_empty =
        std::all_of(top, next, [](const HierarchyEntry& entry) { return entry.elements.empty(); });
    const bool is_there = first_names.count(std::string(top->name)) > 0;
    if (goes_on || (is_empty && is_there)) {
      input.blocks.leaveOut(input.indexOf(top->offset));
    }
    if (goes_on && !is_there) {
      note("the hierarchy \"" + printable(top->name, Harmless::utf8, most_of_a_name) + "\" of " +
           input.name + " is left out: it shows channels that go on in those of a file before");
    }
    top = next;
  }
}

void JoinedLists::link(std::uint64_t history) {
  for (const Twin& twin : twins_) {
    inputs_[twin.own.file].blocks.sendTo(twin.own.block,
                                         inputs_[twin.first.file].blocks.placeOf(twin.first.block));
  }
  chain(HDBLOCK::hd_fh_first, history);
  for (const std::size_t list :
       {HDBLOCK::hd_ch_first, HDBLOCK::hd_at_first, HDBLOCK::hd_ev_first}) {
    chain(list, 0);
  }
  for (JoinInput& input : inputs_) {
    moveEvents(input);
  }
}

/// Has the list of each file go on in that of the next one.
/// @param last what the last one goes on in.
void JoinedLists::chain(std::size_t link, std::uint64_t last) {
  std::uint64_t next = last;
  for (std::size_t file = inputs_.size(); file-- > 0;) {
    BlockCopy& blocks = inputs_[file].blocks;
    const std::vector<std::uint32_t> list = chainOf(blocks, link);
    if (!list.empty() && typeOf(blocks.table()[list.back()].letters()).has_next) {
      blocks.setLink({list.back(), next_link}, next);
      next = blocks.placeOf(list.front());
    }
  }
  inputs_.front().blocks.setLink({0, static_cast<std::uint32_t>(link)}, next);
}

void JoinedLists::moveEvents(JoinInput& input) {
  Texts texts;
  const auto events =
      input.later == 0
          ? std::vector<Event>()
          : readEvents(input.file, input.description.header.first_event, texts, silent);
  for (const Event& event : events) {
    if (event.sync_type == EVBLOCK::EV_SYNCTYPE_SECONDS) {
      const EventTime time = laterBy(input.later, {event.base_value, event.factor});
      const std::uint32_t block = input.indexOf(event.offset);
      std::uint64_t factor = 0;
      std::memcpy(&factor, &time.factor, sizeof factor);
      input.blocks.setField(block, "ev_sync_base_value", static_cast<std::uint64_t>(time.base));
      input.blocks.setField(block, "ev_sync_factor", factor);
    }
  }
}

}  // namespace mdf_tools
