#include "data_stream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <sstream>

#include "../../mdf/mdf_v4_10.h"
#include "places.h"

namespace mdf_writer {

using mdf_v4_10::DLBLOCK;
using mdf_v4_10::DTBLOCK;
using mdf_v4_10::RDBLOCK;
using mdf_v4_10::SDBLOCK;
using mdf_v4_10::detail::storeLe;

namespace {

/// A block that is not full gets room for eight times its data, and at least so much.
constexpr std::size_t least_room = 1024;
constexpr std::size_t growth = 8;

/// A list of one block, and the header of that.
std::string headOf(DataStream::Kind kind) {
  std::ostringstream head;
  DLBLOCK list(false, 0);
  list.addData(1, 0);
  head << list;
  if (kind == DataStream::Kind::records) {
    head << DTBLOCK();
  } else if (kind == DataStream::Kind::signal_data) {
    head << SDBLOCK();
  } else {
    head << RDBLOCK(nullptr, 0);
  }
  return head.str();
}

}  // namespace

DataStream::DataStream(Storage& storage, std::uint64_t link_at, Kind kind, std::size_t block_bytes)
    : storage_(storage),
      capacity_(block_bytes),
      buffer_(head_bytes + block_bytes),
      limit_(block_bytes),
      link_at_(link_at) {
  const std::string head = headOf(kind);
  std::copy_n(head.begin(), head_bytes, buffer_.begin());
}

void DataStream::putHead(char* head, std::uint64_t at, std::uint64_t bytes) const {
  storeLe(head + placeOfLink(1), at + list_bytes);
  storeLe(head + list_bytes - sizeof block_begins_, block_begins_);
  storeLe(head + list_bytes + place_of_length, std::uint64_t{head_bytes - list_bytes} + bytes);
}

bool DataStream::append(std::string_view first, std::string_view second) {
  const std::size_t bytes = first.size() + second.size();
  if (!hasRoom(bytes)) {
    if (capacity_ == 0 || !endFullBlock()) {
      return false;
    }
    if (bytes > capacity_) {
      return appendLarge(first, second);
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
  const std::uint64_t at = storage_.allocate(head_bytes + bytes);
  std::array<char, head_bytes> head;
  std::copy_n(buffer_.begin(), head_bytes, head.begin());
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
  if (used_ == written_) {
    return true;
  }
  if (!storage_.isSeekable()) {
    return writeOn();
  }
  return block_at_ == 0 ? begin(std::max(least_room, growth * used_)) : grow();
}

bool DataStream::endFullBlock() {
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

bool DataStream::begin(std::size_t room) {
  const std::size_t limit = std::min(capacity_, room);
  const std::uint64_t at = storage_.allocate(head_bytes + limit);
  putHead(buffer_.data(), at, used_);
  const std::size_t written = storage_.write(at, buffer_.data(), head_bytes + used_);
  written_ = written - std::min(written, head_bytes);
  if (written_ == 0) {
    storage_.giveBack(at);
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
  const std::size_t count = used_ - written_;
  const char* const from = &buffer_[head_bytes + written_];
  written_ += storage_.write(block_at_ + head_bytes + written_, from, count);
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
  if (is_link_shown_) {
    shown_link_ = {link_at_, block};
  } else if (!storage_.put(link_at_, block)) {
    return false;
  }
  is_linked_ = true;
  is_shown_ = false;
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
    storage_.giveBack(block_at_);
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
