#include "raw_block.h"

#include <algorithm>

#include "../bytes/input_file.h"
#include "finding.h"
#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::Decoder;

namespace {

/// Links of a block with such a length.
std::uint64_t linksBeforeFields(const BlockType& type, std::uint64_t length) {
  const std::uint64_t rest = RawBlock::header_size + type.fieldsWidth();
  return length < rest ? 0 : (length - rest) / RawBlock::link_size;
}

/// The most links that a block of a type can have which counts each of its elements as one.
std::uint64_t linksOfElements(const BlockType& type, std::uint64_t stored) {
  constexpr std::uint64_t countable = UINT64_MAX / 4;
  const std::uint64_t own = type.links.size();
  return own + type.more_links.front().links.size() * std::min(stored - own, countable);
}

}  // namespace

std::string RawBlock::name() const { return printable({id.data(), id.size()}); }

std::uint64_t RawBlock::linkCount() const {
  const BlockType& type = typeOf(letters());
  if (type.link_count == LinkCount::right) {
    return link_count;
  }
  // The length tells the number. It must not exceed what the type can have: a length that lies
  // would turn the following blocks into links.
  const std::uint64_t own = type.links.size();
  const bool by_elements = type.link_count == LinkCount::by_elements;
  if (by_elements && link_count < own) {
    return link_count;
  }
  const std::uint64_t most = by_elements ? linksOfElements(type, link_count) : own;
  return std::max(link_count, std::min(linksBeforeFields(type, length), most));
}

bool RawBlock::holdsItsLinks() const {
  return length >= header_size && linkCount() <= (length - header_size) / link_size;
}

std::optional<RawBlock> readRawBlock(InputFile& file, std::uint64_t offset) {
  std::array<char, RawBlock::header_size> bytes;
  if (file.readAt(offset, bytes.data(), bytes.size()) < bytes.size()) {
    return std::nullopt;
  }
  RawBlock block;
  block.offset = offset;
  Decoder in(bytes.data(), bytes.size());
  std::copy_n(in.position(), block.id.size(), block.id.begin());
  in.skip(8);
  in.take(block.length);
  in.take(block.link_count);
  return block;
}

bool isWhole(const InputFile& file, const RawBlock& block) {
  return block.length <= file.sizeFrom(block.offset);
}

std::uint64_t linksThere(const InputFile& file, const RawBlock& block) {
  const std::uint64_t bytes = std::min(block.length, file.sizeFrom(block.offset));
  return bytes < RawBlock::header_size
             ? 0
             : std::min(block.linkCount(), (bytes - RawBlock::header_size) / RawBlock::link_size);
}

std::uint64_t linkAt(InputFile& file, const RawBlock& block, std::uint64_t index) {
  return index < linksThere(file, block)
             ? numberAt(file, block.offset + RawBlock::header_size + index * RawBlock::link_size)
             : 0;
}

void forEachLink(InputFile& file, const RawBlock& block, const LinkVisitor& visit) {
  constexpr std::size_t piece_links = 1024;
  const std::uint64_t count = linksThere(file, block);
  std::array<char, piece_links * RawBlock::link_size> bytes;
  std::uint64_t index = 0;
  while (index < count) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(count - index, piece_links));
    const std::uint64_t offset = block.offset + RawBlock::header_size + index * RawBlock::link_size;
    const std::size_t got = file.readAt(offset, bytes.data(), wanted * RawBlock::link_size);
    Decoder in(bytes.data(), got);
    for (; in.remaining() >= RawBlock::link_size; ++index) {
      std::int64_t link = 0;
      in.take(link);
      visit(index, link);
    }
    if (got < wanted * RawBlock::link_size) {
      return;
    }
  }
}

}  // namespace mdf_reader
