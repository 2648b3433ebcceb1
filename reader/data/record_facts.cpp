#include "record_facts.h"

#include <algorithm>
#include <utility>

#include "../bytes/input_file.h"
#include "../model/element_groups.h"

namespace mdf_reader {

RecordFacts::RecordFacts(InputFile& file, FindingSink report)
    : file_(file), report_(std::move(report)), silent_([](const Finding& /*finding*/) {}) {}

void RecordFacts::visitEnds(const std::function<bool(const ChannelGroup&)>& is_wanted,
                            const EndVisitor& visit) {
  is_wanted_ = is_wanted;
  visit_end_ = visit;
  look();
  is_wanted_ = nullptr;
  visit_end_ = nullptr;
}

RecordCount RecordFacts::recordsOf(std::uint64_t group, std::uint64_t stated) {
  if (!file_.isUnfinished()) {
    return {stated, false};
  }
  look();
  const auto count = counts_.find(group);
  if (count != counts_.end()) {
    return count->second;
  }
  return file_.areCountsFinal() ? RecordCount{stated, false} : RecordCount{std::nullopt, true};
}

std::uint64_t RecordFacts::idBytesOf(std::uint64_t data_group, std::uint64_t code) {
  const auto possible = recordIdBytesFor(code);
  if (possible.size() < 2) {
    return possible.empty() ? code : possible.front();
  }
  look();
  const auto found = id_bytes_.find(data_group);
  return found == id_bytes_.end() ? possible.front() : found->second;
}

void RecordFacts::look() {
  if (std::exchange(has_looked_, true)) {
    return;
  }
  if (description_ != nullptr) {
    lookAtAll(*description_);
  } else {
    lookAtAll(readDescription(file_.bytes(), silent_, [](const ChannelGroup&, const Channel&) {}));
  }
}

void RecordFacts::lookAtAll(const Description& description) {
  for (const DataGroup& data_group :
       splitElements(file_.bytes(), description.data_groups, silent_)) {
    lookAt(data_group);
  }
}

bool RecordFacts::leavesCountsOpen(const DataGroup& data_group) const {
  return std::any_of(data_group.groups.begin(), data_group.groups.end(),
                     [&](const ChannelGroup& group) { return !file_.isCountFinal(group); });
}

/// Of an array whose elements have records of their own, the first one's stand for all.
bool RecordFacts::wantsEnds(const ChannelGroup& group) const {
  return is_wanted_ && group.element.value_or(0) == 0 && is_wanted_(group);
}

void RecordFacts::lookAt(const DataGroup& data_group) {
  const bool are_open = leavesCountsOpen(data_group);
  const bool is_ambiguous = recordIdBytesFor(data_group.record_id_code).size() > 1;
  const bool has_ends = std::any_of(data_group.groups.begin(), data_group.groups.end(),
                                    [&](const ChannelGroup& group) { return wantsEnds(group); });
  if ((!are_open && !is_ambiguous && !has_ends) || !file_.mayGoOnAfter(0)) {
    return;
  }
  Records records(file_, data_group, are_open || has_ends ? report_ : silent_);
  id_bytes_.emplace(data_group.offset, records.idBytes());
  if (are_open) {
    for (const ChannelGroup& group : data_group.groups) {
      counts_.emplace(group.offset,
                      RecordCount{records.countOf(group), !file_.isCountFinal(group)});
    }
  }
  if (has_ends) {
    records.forEachEnd([&](const ChannelGroup& group) { return wantsEnds(group); }, visit_end_);
  }
  file_.mayGoOnAfter(records.storedBytes());
}

}  // namespace mdf_reader
