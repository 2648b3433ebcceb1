#include "file_block.h"

#include <algorithm>

namespace mdf_fuzz {

namespace {

void takeHeader(FileBlock& block, std::string_view bytes) {
  block.has_header = true;
  block.length = number(bytes, 8, 8);
  block.link_count = number(bytes, 16, 8);
}

bool lacksEqualLength(const Layout& layout, const FileBlock& block) {
  return layout.letters == "DL" && (block.fields[0] & 1) != 0 && block.rest.size() < 8;
}

/// Takes links and fields from a block's bytes behind the header, all of which are there.
void takeBody(const Layout& layout, FileBlock& block, std::string_view body) {
  const UINT64 count = layout.reading == Reading::zipped ? 0 : block.link_count;
  if (body.size() < layout.fields || count > (body.size() - layout.fields) / link_size) {
    block.state = state_bad;
    return;
  }
  for (std::size_t i = 0; i < count; ++i) {
    block.links.push_back(static_cast<LINK>(number(body, i * link_size, link_size)));
  }
  body.remove_prefix(block.links.size() * link_size);
  block.fields = body.substr(0, layout.fields);
  block.rest = body.substr(layout.fields);
  block.is_whole = !lacksEqualLength(layout, block);
  if (!block.is_whole) {
    block.state = state_bad;
  }
}

/// Takes `count` bytes, or as many of them as there are; the reader makes room for all.
void takeSized(FileBlock& block, std::string_view bytes, UINT64 count) {
  block.sized = count;
  block.rest = bytes.substr(0, static_cast<std::size_t>(std::min<UINT64>(count, bytes.size())));
  block.end += block.rest.size();
  if (block.rest.size() < count) {
    block.state = state_bad;
  }
}

FileBlock identification(const Layout& layout, std::string_view bytes) {
  FileBlock block;
  block.end = layout.fields;
  block.is_whole = bytes.size() >= layout.fields;
  if (block.is_whole) {
    block.fields = bytes.substr(0, layout.fields);
  } else {
    block.state = state_bad;
  }
  return block;
}

FileBlock ofFixedSize(const Layout& layout, std::string_view bytes) {
  FileBlock block;
  block.end = header_size + layout.fixed_links * link_size + layout.fields;
  if (bytes.size() < block.end) {
    block.state = layout.when_too_short;
    return block;
  }
  takeHeader(block, bytes);
  takeBody(layout, block, bytes.substr(header_size, block.end - header_size));
  return block;
}

FileBlock byLength(const Layout& layout, std::string_view bytes) {
  FileBlock block;
  if (bytes.size() < header_size) {
    block.state = state_eof_fail;
    return block;
  }
  takeHeader(block, bytes);
  const UINT64 length =
      layout.reading == Reading::low_32 ? block.length & 0xFFFFFFFFU : block.length;
  if (length < header_size || length > bytes.size()) {
    block.state = length < header_size ? state_bad : state_eof_fail;
    return block;
  }
  block.end = static_cast<std::size_t>(length);
  takeBody(layout, block, bytes.substr(header_size, block.end - header_size));
  if (layout.reading == Reading::zipped && block.is_whole) {
    takeSized(block, bytes.substr(block.end), number(block.fields, 16, 8));
  }
  return block;
}

FileBlock text(std::string_view bytes) {
  FileBlock block;
  block.end = 16;
  if (bytes.size() < block.end) {
    block.state = state_bad;
    return block;
  }
  const UINT64 low_length = number(bytes, 8, 4);
  if (low_length > header_size && low_length <= 0x7FFFFFFFU) {
    takeSized(block, bytes.substr(block.end), low_length - header_size);
    block.has_header = true;
    block.length = low_length;
  }
  block.is_whole = true;
  return block;
}

FileBlock plain(std::string_view bytes) {
  FileBlock block;
  block.end = header_size;
  if (bytes.size() < block.end) {
    block.state = state_eof_fail;
    return block;
  }
  takeHeader(block, bytes);
  takeSized(block, bytes.substr(block.end), block.length - header_size);
  block.is_whole = true;
  return block;
}

}  // namespace

UINT64 number(std::string_view bytes, std::size_t offset, std::size_t width) {
  UINT64 value = 0;
  for (std::size_t i = width; i > 0; --i) {
    value = value << 8U | static_cast<unsigned char>(bytes[offset + i - 1]);
  }
  return value;
}

FileBlock inspect(const Layout& layout, std::string_view bytes) {
  switch (layout.reading) {
    case Reading::identification:
      return identification(layout, bytes);
    case Reading::fixed_size:
      return ofFixedSize(layout, bytes);
    case Reading::text:
      return text(bytes);
    case Reading::plain:
      return plain(bytes);
    default:
      return byLength(layout, bytes);
  }
}

}  // namespace mdf_fuzz
