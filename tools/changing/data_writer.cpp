#include "data_writer.h"

#include <algorithm>
#include <limits>
#include <thread>
#include <utility>

#include "framework/wire.h"
#include "reader/blocks/raw_block.h"

namespace mdf_tools {

using mdf_reader::RawBlock;
using mdf_v4_10::detail::storeLe;

namespace {

constexpr std::size_t header_bytes = RawBlock::header_size;
constexpr std::size_t zip_fields = 24;

/// Memory for the blocks that are zipped side by side, each with what it becomes.
constexpr std::size_t room_for_zipping = std::size_t{1} << 26U;

/// A block's header, and zeros up to its end.
std::string blockOf(std::string_view letters, std::uint64_t links, std::size_t bytes) {
  std::string block(bytes, '\0');
  block.replace(0, 4, "##" + std::string(letters));
  storeLe(&block[8], std::uint64_t{bytes});
  storeLe(&block[16], links);
  return block;
}

std::size_t zippersFor(const DataForm& form) {
  const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
  return std::clamp<std::size_t>(room_for_zipping / form.block_bytes / 3, 1,
                                 form.threads == 0 ? cores : form.threads);
}

}  // namespace

BlockWriter::BlockWriter(NewBlocks& out, const DataForm& form) : out_(out), form_(form) {
  mdf_writer::ZipOptions options;
  options.level = form.level;
  options.is_transposed = form.zip == Zip::transposed;
  const std::size_t count = form.zip == Zip::none ? 0 : zippersFor(form);
  options.has_own_thread = count > 1;
  for (std::size_t i = 0; i < count; ++i) {
    zippers_.push_back(std::make_unique<mdf_writer::Zipper>(options));
  }
}

void BlockWriter::put(FullBlock block, std::string& empty) {
  if (zippers_.empty()) {
    place(block, {});
    empty = std::move(block.bytes);
    return;
  }
  placeUpTo(zippers_.size() - 1);
  waiting_.push_back(std::move(block));
  const FullBlock& given = waiting_.back();
  zippers_[given_++ % zippers_.size()]->give(
      std::string_view(given.bytes).substr(header_bytes),
      form_.zip == Zip::transposed && given.row_bytes > 1 ? given.row_bytes : 0);
  empty.clear();
}

void BlockWriter::placeUpTo(std::size_t left) {
  while (waiting_.size() > left) {
    place(waiting_.front(), zippers_[taken_++ % zippers_.size()]->take());
    waiting_.pop_front();
  }
}

/// @param packed what the data became; empty where that is no smaller.
void BlockWriter::place(FullBlock& block, std::string_view packed) {
  const std::size_t data = block.bytes.size() - header_bytes;
  PlacedBlock& placed = (*block.list)[block.index];
  if (packed.empty() || packed.size() + zip_fields >= data) {
    storeLe(&block.bytes[8], std::uint64_t{block.bytes.size()});
    placed = {out_.add(block.bytes), false};
    return;
  }
  const bool is_transposed = form_.zip == Zip::transposed && block.row_bytes > 1;
  std::string head = blockOf("DZ", 0, header_bytes + zip_fields);
  storeLe(&head[8], std::uint64_t{head.size() + packed.size()});
  head.replace(header_bytes, 2, block.bytes, 2, 2);
  head[header_bytes + 2] = is_transposed ? 1 : 0;
  storeLe(&head[header_bytes + 4], is_transposed ? block.row_bytes : std::uint32_t{0});
  storeLe(&head[header_bytes + 8], std::uint64_t{data});
  storeLe(&head[header_bytes + 16], std::uint64_t{packed.size()});
  placed = {out_.allocate(head.size() + packed.size()), true};
  out_.write(placed.at, head);
  out_.write(placed.at + head.size(), packed);
}

DataWriter::DataWriter(BlockWriter& out, std::string_view letters, std::uint64_t row_bytes,
                       std::size_t block_bytes)
    : out_(out), head_(blockOf(letters, 0, header_bytes)) {
  const bool has_rows = row_bytes > 0 && row_bytes <= block_bytes;
  row_bytes_ = static_cast<std::uint32_t>(has_rows ? row_bytes : 0);
  full_ = header_bytes + (has_rows ? block_bytes / row_bytes_ * row_bytes_ : block_bytes);
  beginBlock();
}

std::uint64_t DataWriter::size() const {
  return std::uint64_t{blocks_.size()} * (full_ - header_bytes) + used() - header_bytes;
}

void DataWriter::appendMore(std::string_view bytes) {
  while (bytes.size() > full_ - used()) {
    const std::size_t count = full_ - used();
    reserve(count);
    append(bytes.substr(0, count));
    bytes.remove_prefix(count);
    endBlock();
    beginBlock();
  }
  reserve(bytes.size());
  append(bytes);
}

/// Makes room for more bytes of a block. It grows with what it takes: there may be very many
/// writers, each with few bytes.
void DataWriter::reserve(std::size_t bytes) {
  const std::size_t taken = used();
  if (bytes > buffer_.size() - taken) {
    buffer_.resize(std::min(full_, std::max(taken + bytes, 2 * buffer_.size())));
    next_ = buffer_.data() + taken;
    end_ = buffer_.data() + buffer_.size();
  }
}

void DataWriter::beginBlock() {
  buffer_.resize(std::max(buffer_.size(), header_bytes));
  next_ = std::copy(head_.begin(), head_.end(), buffer_.data());
  end_ = buffer_.data() + buffer_.size();
}

void DataWriter::endBlock() {
  buffer_.resize(used());
  blocks_.emplace_back();
  out_.put({std::exchange(buffer_, {}), row_bytes_, &blocks_, blocks_.size() - 1}, buffer_);
}

std::uint64_t DataWriter::finish() {
  if (used() > header_bytes) {
    endBlock();
  }
  out_.placeAll();
  buffer_ = std::string();
  next_ = end_ = buffer_.data();
  if (blocks_.size() < 2) {
    return blocks_.empty() ? 0 : blocks_.front().at;
  }
  return writeList();
}

/// Zipped blocks need a list of lists, too.
std::uint64_t DataWriter::writeList() {
  const std::size_t links = 1 + blocks_.size();
  const std::size_t fields = header_bytes + 8 * links;
  std::string list = blockOf("DL", links, fields + 16);
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    storeLe(&list[header_bytes + 8 * (1 + i)], blocks_[i].at);
  }
  list[fields] = 1;  // all but the last have the same length
  storeLe(&list[fields + 4], static_cast<std::uint32_t>(blocks_.size()));
  storeLe(&list[fields + 8], std::uint64_t{full_ - header_bytes});
  const std::uint64_t at = out_.out().add(list);
  if (std::none_of(blocks_.begin(), blocks_.end(),
                   [](const PlacedBlock& block) { return block.is_zipped; })) {
    return at;
  }
  std::string header = blockOf("HL", 1, header_bytes + 16);
  storeLe(&header[header_bytes], at);
  header[header_bytes + 8] = 1;
  header[header_bytes + 10] = out_.form().zip == Zip::transposed && row_bytes_ > 1 ? 1 : 0;
  return out_.out().add(header);
}

}  // namespace mdf_tools
