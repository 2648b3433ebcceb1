#include "data_stream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "../../mdf/mdf_v4_10.h"
#include "blocks.h"
#include "places.h"

namespace mdf_writer {

using mdf_v4_10::DLBLOCK;
using mdf_v4_10::DTBLOCK;
using mdf_v4_10::DZBLOCK;
using mdf_v4_10::HLBLOCK;
using mdf_v4_10::RDBLOCK;
using mdf_v4_10::SDBLOCK;
using mdf_v4_10::detail::dzblock_fields;
using mdf_v4_10::detail::loadLe;
using mdf_v4_10::detail::storeLe;

namespace {

/// A block that is not full gets room for eight times its data, and at least so much.
constexpr std::size_t least_room = 1024;
constexpr std::size_t growth = 8;

constexpr std::size_t original_length_place = placeOfField(0, dzblock_fields, "dz_org_data_length");
constexpr std::size_t packed_length_place = placeOfField(0, dzblock_fields, "dz_data_length");

DZBLOCK::DZ_ZIPTYPE_t zipType(std::uint32_t row_bytes) {
  return row_bytes > 0 ? DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE : DZBLOCK::DZ_ZIPTYPE_DEFLATE;
}

/// A list of one block, and the header of that.
std::string headOf(DataStream::Kind kind) {
  DLBLOCK list(false, 0);
  list.addData(1, 0);
  return blockBytes(list) + (kind == DataStream::Kind::records ? blockBytes(DTBLOCK())
                             : kind == DataStream::Kind::signal_data
                                 ? blockBytes(SDBLOCK())
                                 : blockBytes(RDBLOCK(nullptr, 0)));
}

}  // namespace

DataStream::DataStream(Storage& storage, std::uint64_t link_at, Kind kind, std::size_t block_bytes)
    : storage_(storage),
      capacity_(block_bytes),
      buffer_(head_bytes + block_bytes),
      limit_(block_bytes),
      link_at_(link_at) {
  const std::string head = headOf(kind);
  std::copy_n(head.begin(), head_bytes, head_.begin());
}

void DataStream::pack(Packing& packing, std::uint32_t record_bytes) {
  packing_ = &packing;
  needs_header_list_ = true;
  row_bytes_ = packing.transposes() && record_bytes > 1 ? record_bytes : 0;
  const auto letters = loadLe<std::uint16_t>(&head_[list_bytes + place_of_letters]);
  DZBLOCK header(letters, zipType(row_bytes_), nullptr, 0);
  header.setZipParameter(row_bytes_);
  const std::string bytes = blockBytes(header);
  std::copy_n(bytes.begin(), zip_header_bytes, zip_header_.begin());
}

/// A list block at a place, of the block after it.
void DataStream::putList(char* list, std::uint64_t at) const {
  std::copy_n(head_.begin(), list_bytes, list);
  storeLe(list + placeOfLink(1), at + list_bytes);
  storeLe(list + list_bytes - sizeof block_begins_, block_begins_);
}

void DataStream::putHead(char* head, std::uint64_t at, std::uint64_t bytes) const {
  putList(head, at);
  std::copy(head_.begin() + list_bytes, head_.end(), head + list_bytes);
  storeLe(head + list_bytes + place_of_length, std::uint64_t{head_bytes - list_bytes} + bytes);
}

bool DataStream::append(std::string_view first, std::string_view second) {
  const std::size_t bytes = first.size() + second.size();
  if (!hasRoom(bytes)) {
    if (capacity_ == 0 || !endFullBlock()) {
      return false;
    }
    if (bytes > capacity_) {
      return (packing_ == nullptr || packing_->placeAll()) && appendLarge(first, second);
    }
  }
  char* const at = tryAppend(bytes);
  std::copy(second.begin(), second.end(), std::copy(first.begin(), first.end(), at));
  return true;
}

/// A block of its own for data that no block holds, straight from where it is.
bool DataStream::appendLarge(std::string_view first, std::string_view second) {
  const auto put = [&](std::uint64_t at, std::string_view piece) {
    return storage_.write(at, piece.data(), piece.size()) == piece.size();
  };
  const std::uint64_t bytes = std::uint64_t{first.size()} + second.size();
  if (!storage_.isSeekable()) {
    block_begins_ += bytes;
    return put(0, first) && put(0, second);
  }
  const std::uint64_t at = allocate(head_bytes + bytes);
  std::array<char, head_bytes> head;
  putHead(head.data(), at, bytes);
  if (!put(at, {head.data(), head.size()}) || !put(at + head_bytes, first) ||
      !put(at + head_bytes + first.size(), second) || !linkTo(at)) {
    storage_.giveBack(at);
    return false;
  }
  block_at_ = at;
  endBlock();
  block_begins_ += bytes;
  return true;
}

bool DataStream::writeOut() {
  if (packing_ != nullptr && !packing_->placeAll()) {
    return false;
  }
  if (used_ == written_) {
    return true;
  }
  if (!storage_.isSeekable()) {
    return writeOn();
  }
  if (block_at_ != 0) {
    return grow();
  }
  if (packing_ != nullptr && used_ <= capacity_) {
    reserveHeaderList();
    return begin(places_.take(storage_, head_bytes + capacity_, shown_block_), capacity_);
  }
  return begin(std::max(used_, std::min(capacity_, std::max(least_room, growth * used_))));
}

bool DataStream::writeLast() {
  if (packing_ == nullptr) {
    return writeOut();
  }
  const bool is_there = packing_->placeAll();
  if (!is_there || block_at_ != 0 || used_ == 0) {
    return is_there && writeOut();
  }
  return handOn() && packing_->placeAll();
}

/// Goes on with an empty buffer while the block is packed.
bool DataStream::handOn() {
  const std::string_view data = block();
  FullBlock full{this, std::move(buffer_), used_, block_begins_};
  block_begins_ += used_;
  used_ = 0;
  limit_ = capacity_;
  return packing_->add(std::move(full), data, row_bytes_, buffer_);
}

void DataStream::swapWith(FullBlock& block) {
  std::swap(buffer_, block.buffer);
  std::swap(used_, block.used);
  std::swap(block_begins_, block.begins);
}

/// The block becomes the stream's last one for a moment.
bool DataStream::place(FullBlock& block, std::string_view packed) {
  swapWith(block);
  const std::size_t more = zip_header_bytes - (head_bytes - list_bytes);
  const bool is_smaller = !packed.empty() && packed.size() + more < used_;
  const bool success = is_smaller ? writePacked(packed) : writePlain();
  if (success) {
    endBlock();
  }
  swapWith(block);
  return success;
}

bool DataStream::writePlain() {
  const bool success = block_at_ == 0 ? begin(used_) : written_ == used_ || grow();
  return success && places_.leaveTo(storage_, block_at_, head_bytes + used_);
}

bool DataStream::writePacked(std::string_view packed) {
  std::array<char, list_bytes + zip_header_bytes> head;
  const std::uint64_t at = allocate(head.size() + packed.size());
  putList(head.data(), at);
  char* const header = head.data() + list_bytes;
  std::copy(zip_header_.begin(), zip_header_.end(), header);
  storeLe(header + place_of_length, std::uint64_t{zip_header_bytes} + packed.size());
  storeLe(header + original_length_place, std::uint64_t{used_});
  storeLe(header + packed_length_place, std::uint64_t{packed.size()});
  if (storage_.write(at, head.data(), head.size()) < head.size() ||
      storage_.write(at + head.size(), packed.data(), packed.size()) < packed.size() ||
      !linkTo(at)) {
    storage_.giveBack(at);
    return false;
  }
  if (shown_length_.at == lengthOf(0).at) {
    shown_length_ = {};  // the link to where the block grew is changed instead
  }
  block_at_ = at;
  return true;
}

void DataStream::takeBack(FullBlock& block) {
  block.buffer.resize(head_bytes + block.used);
  if (used_ > 0) {
    block.buffer.insert(block.buffer.end(), buffer_.begin() + head_bytes,
                        buffer_.begin() + static_cast<std::ptrdiff_t>(head_bytes + used_));
  }
  buffer_ = std::move(block.buffer);
  used_ += block.used;
  block_begins_ = block.begins;
}

bool DataStream::clearPlaces() { return places_.clear(storage_, block_at_, head_bytes + written_); }

bool DataStream::endFullBlock() {
  if (packing_ != nullptr) {
    return used_ == 0 || handOn();
  }
  if (block_at_ == 0 && used_ > 0 && storage_.isSeekable()) {
    if (!begin(used_)) {
      return false;
    }
  } else if (!writeOut()) {
    return false;
  }
  endBlock();
  return true;
}

bool DataStream::writeOn() {
  written_ = storage_.write(0, &buffer_[head_bytes], used_);
  if (written_ < used_) {
    return false;
  }
  block_begins_ += used_;
  used_ = written_ = 0;
  return true;
}

/// The place of the header list comes before that of the first block.
void DataStream::reserveHeaderList() {
  if (needs_header_list_ && header_list_at_ == 0) {
    header_list_at_ = storage_.allocate(HLBLOCK::HLBLOCK_SIZE);
  }
}

std::uint64_t DataStream::allocate(std::uint64_t bytes) {
  reserveHeaderList();
  return storage_.allocate(bytes);
}

/// Places to grow are cleared at the end.
void DataStream::giveBack(std::uint64_t at) {
  if (!places_.has(at)) {
    storage_.giveBack(at);
  }
}

bool DataStream::begin(std::size_t limit) { return begin(allocate(head_bytes + limit), limit); }

bool DataStream::begin(std::uint64_t at, std::size_t limit) {
  putHead(buffer_.data(), at, used_);
  const std::size_t written = storage_.write(at, buffer_.data(), head_bytes + used_);
  places_.wrote(at, written);
  written_ = written - std::min(written, head_bytes);
  if (written_ == 0) {
    giveBack(at);
    return false;
  }
  block_at_ = at;
  is_shown_ = false;
  limit_ = limit;
  if (written_ < used_) {
    return false;
  }
  return linkTo(at);
}

bool DataStream::grow() {
  const std::size_t count = std::min(used_, limit_) - written_;
  const char* const from = &buffer_[head_bytes + written_];
  written_ += storage_.write(block_at_ + head_bytes + written_, from, count);
  places_.wrote(block_at_, head_bytes + written_);
  if (written_ < used_) {
    return false;
  }
  const Pending length = lengthOf(written_);
  if (!is_shown_) {
    return storage_.put(length.at, length.number);
  }
  shown_length_ = length;
  return true;
}

DataStream::Pending DataStream::lengthOf(std::uint64_t bytes) const {
  return {block_at_ + list_bytes + place_of_length, std::uint64_t{head_bytes - list_bytes} + bytes};
}

/// A link that no shown link leads to can be written at once.
bool DataStream::linkTo(std::uint64_t block) {
  if (needs_header_list_) {
    if (!writeHeaderList(block)) {
      return false;
    }
  } else if (is_link_shown_) {
    shown_link_ = {link_at_, block};
  } else if (!storage_.put(link_at_, block)) {
    return false;
  }
  is_linked_ = true;
  is_shown_ = false;
  return true;
}

/// The library's own writer states no link.
bool DataStream::writeHeaderList(std::uint64_t first) {
  const auto at = static_cast<mdf_v4_10::LINK>(first);
  std::string bytes = blockBytes(HLBLOCK(at, false, zipType(row_bytes_)));
  storeLe(&bytes[place_of_link_count], std::uint64_t{1});
  if (storage_.write(header_list_at_, bytes.data(), bytes.size()) < bytes.size()) {
    return false;
  }
  shown_link_ = {link_at_, header_list_at_};
  link_at_ = header_list_at_ + placeOfLink(HLBLOCK::hl_dl_first);
  is_link_shown_ = false;
  needs_header_list_ = false;
  return true;
}

void DataStream::endBlock() {
  if (block_at_ == 0) {
    return;
  }
  link_at_ = block_at_ + placeOfLink(DLBLOCK::dl_dl_next);
  is_link_shown_ = is_shown_;
  is_linked_ = false;
  block_begins_ += used_;
  used_ = written_ = 0;
  limit_ = capacity_;
  block_at_ = 0;
}

bool DataStream::show(Pending& pending) {
  if (pending.at != 0 && !storage_.put(pending.at, pending.number)) {
    return false;
  }
  pending = {};
  return true;
}

bool DataStream::showLink() {
  if (!show(shown_link_)) {
    return false;
  }
  is_shown_ = true;
  is_link_shown_ = true;
  shown_block_ = block_at_;
  return true;
}

bool DataStream::cutBlock(std::size_t bytes) {
  if (bytes < written_ && block_at_ != 0) {
    char* const torn = &buffer_[head_bytes + bytes];
    std::memset(torn, 0, written_ - bytes);
    storage_.write(block_at_ + head_bytes + bytes, torn, written_ - bytes);
  }
  used_ = written_ = limit_ = bytes;
  capacity_ = 0;
  if (block_at_ == 0) {
    return true;
  }
  if (bytes == 0 && !is_linked_) {
    giveBack(block_at_);
    block_at_ = 0;
    return true;
  }
  const Pending length = lengthOf(bytes);
  if (is_shown_) {
    shown_length_ = length;
    return true;
  }
  return (is_linked_ || linkTo(block_at_)) && storage_.put(length.at, length.number);
}

}  // namespace mdf_writer
