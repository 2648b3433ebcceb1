#include "recording_blocks.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <string_view>

#include "xml_comment.h"

namespace mdf_tools {

using mdf_v4_10::CGBLOCK;
using mdf_v4_10::CNBLOCK;
using mdf_v4_10::DGBLOCK;
using mdf_v4_10::DTBLOCK;
using mdf_v4_10::HDBLOCK;
using mdf_v4_10::HeaderSection;
using mdf_v4_10::IDBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::MDBLOCK;
using mdf_v4_10::TXBLOCK;
using mdf_v4_10::UINT32;
using mdf_v4_10::UINT64;
using mdf_v4_10::UINT8;

namespace {

constexpr std::string_view unfinished_file = "UnFinMF ";

/// The unfinished flags stand at byte 60 of the file, in what MDF 4.10 reserves.
constexpr std::size_t flags_in_reserved = 30;
constexpr UINT8 cycle_count_unset = 1;
constexpr UINT8 last_data_length_unset = 4;

IDBLOCK identification() { return IDBLOCK("mdf"); }

IDBLOCK unfinishedIdentification() {
  IDBLOCK id = identification();
  std::copy(unfinished_file.begin(), unfinished_file.end(), std::begin(id.id_file));
  id.id_reserved2[flags_in_reserved] = cycle_count_unset | last_data_length_unset;
  return id;
}

template <class Text>
Text textBlock(const std::string& text) {
  return Text(text.data(), text.size());
}

template <class Block>
void rewrite(std::ostream& os, LINK position, const Block& block) {
  os.seekp(static_cast<std::streamoff>(position));
  os << block;
}

}  // namespace

RecordingBlocks::RecordingBlocks(const std::vector<Signal>& channels, const RecordingInfo& info)
    : id_(unfinishedIdentification()),
      header_(0, 0, info.start.nanoseconds, info.start.zone_minutes, HDBLOCK::TIME_LOCAL_PC, 0, 0),
      history_(0, info.start.nanoseconds, info.start.zone_minutes, 0),
      history_comment_(textBlock<MDBLOCK>(historyComment(info.change, info.tool_version))),
      header_comment_(textBlock<MDBLOCK>(headerComment(info.title))),
      data_group_(0, 0, 0, DGBLOCK::DG_WITHOUT) {
  addFrame(info);
  group_.setAcqTxNameblock(addText("system signals"));
  for (const Signal& channel : channels) {
    addText(channel.name);
    addText(channel.unit);
  }
  addGroups();
  addChannels(channels);
  data_at_ = plan_.add(data_);
  data_group_.setDatablock(data_at_);
}

void RecordingBlocks::addFrame(const RecordingInfo& info) {
  header_.setDST(info.start.daylight_saving);
  history_.setDST(info.start.daylight_saving);
  plan_.add(id_, IDBLOCK::IDBLOCK_SIZE);
  plan_.add(header_);
  header_.setFHFirstblock(plan_.add(history_));
  history_.setMDBlock(plan_.add(history_comment_));
  header_.setMDCommentblock(plan_.add(header_comment_));
}

void RecordingBlocks::addGroups() {
  header_.setDGFirstblock(plan_.add(data_group_));
  group_at_ = plan_.add(group_);
  data_group_.setFirstCgblock(group_at_);
}

void RecordingBlocks::addChannels(const std::vector<Signal>& channels) {
  UINT32 offset = 0;
  for (const Signal& signal : channels) {
    const bool master = channels_.empty();
    CNBLOCK channel(master ? CNBLOCK::CN_CHANNELTYPE_MASTER : CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH,
                    master ? CNBLOCK::CN_SYNCTYPE_TIME : CNBLOCK::CN_SYNCTYPE_NONE,
                    signal.data_type, 0, addText(signal.name), 0);
    channel.setUnitblock(addText(signal.unit));
    channel.setByteOffset(offset);
    channel.setBitCount(8 * signal.bytes);
    channel.setMonotonousFlag(master);
    offset += signal.bytes;

    channels_.push_back(channel);
    const LINK position = plan_.add(channels_.back());
    if (master) {
      group_.setFirstCnblock(position);
    } else {
      channels_[channels_.size() - 2].setNextCnblock(position);
    }
  }
  group_.setDataBytes(offset);
}

/// The same text is stored once; no text is the nil link.
LINK RecordingBlocks::addText(const std::string& text) {
  if (text.empty()) {
    return 0;
  }
  const auto known = text_links_.find(text);
  if (known != text_links_.end()) {
    return known->second;
  }
  texts_.push_back(textBlock<TXBLOCK>(text));
  return text_links_[text] = plan_.add(texts_.back());
}

void RecordingBlocks::finish(std::ostream& os, UINT64 records,
                             const std::optional<TimeRange>& times) {
  HeaderSection data_header = data_.header;
  data_header.setLength(DTBLOCK::DTBLOCK_CONSTANT_SIZE + records * recordBytes());
  rewrite(os, data_at_, data_header);
  group_.setCycleCount(records);
  rewrite(os, group_at_, group_);
  if (times) {
    CNBLOCK& time = channels_.front();
    time.setValueRangeValidFlag(true);
    time.setValueRangeMin(times->first);
    time.setValueRangeMax(times->last);
    rewrite(os, group_.getFirstCnblock(), time);
  }
  rewrite(os, 0, identification());
}

}  // namespace mdf_tools
