#include "block_reader.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace mdf_v4_10::detail {

namespace {

/// A body up to this size is read in one go; the length of a longer one is trusted piece by piece.
constexpr std::size_t first_piece = std::size_t{64} * 1024;

bool linksAndFieldsFit(UINT64 link_count, std::size_t fields_width, std::size_t available) {
  return fields_width <= available && link_count <= (available - fields_width) / sizeof(LINK);
}

void takeHeader(GENERALBLOCK& block, const char* bytes) {
  block.header.readFromByteArray(reinterpret_cast<const std::uint8_t*>(bytes));
}

/// Takes that many links if they and the fields after them are there; if not, the stream becomes
/// bad.
FileLinks takeLinks(std::istream& is, UINT64 link_count, Decoder& in, std::size_t fields_width) {
  if (!linksAndFieldsFit(link_count, fields_width, in.remaining())) {
    is.clear(std::ios_base::badbit);
    return {};
  }
  const FileLinks links(in.position(), static_cast<std::size_t>(link_count));
  in.skip(links.size() * sizeof(LINK));
  return links;
}

}  // namespace

void readOrBad(std::istream& is, char* bytes, std::size_t n) {
  is.read(bytes, static_cast<std::streamsize>(n));
  if (static_cast<std::size_t>(is.gcount()) < n) {
    is.clear(std::ios_base::badbit);
  }
}

const char* readFixedBytes(std::istream& is, char* bytes, std::size_t size, ShortRead rule,
                           GENERALBLOCK& block, std::size_t fields_width) {
  if (rule == ShortRead::makes_bad) {
    readOrBad(is, bytes, size);
  } else {
    is.read(bytes, static_cast<std::streamsize>(size));
  }
  const std::size_t nil_links = hostSize(block.header.link_count);
  Decoder in(bytes, size);
  FileLinks links;
  const bool taken = is.good();
  if (taken) {
    takeHeader(block, bytes);
    in.skip(HeaderSection::HEADER_SIZE);
    links = takeLinks(is, block.header.link_count, in, fields_width);
  }
  links.appendTo(block.links, nil_links);
  return taken && is.good() ? in.position() : nullptr;
}

LINK FileLinks::fromEnd(std::size_t place) const {
  return place <= count_ ? (*this)[count_ - place] : 0;
}

void FileLinks::appendTo(std::vector<LINK>& list, std::size_t nil_links) const {
  const std::size_t nil_end = list.size() + nil_links;
  list.resize(nil_end + count_);
  loadEachLe(bytes_, list.data() + nil_end, count_);
}

void FileLinks::fill(std::vector<LINK>& list, std::size_t count) const {
  list.resize(count);
  loadEachLe(bytes_, list.data(), std::min(count, count_));
}

void FileLinks::appendPartTo(std::vector<LINK>& list, std::size_t first, std::size_t count) const {
  if (first < count_ && count != 0) {
    FileLinks(bytes_ + first * sizeof(LINK), std::min(count, count_ - first)).appendTo(list, 0);
  }
}

BlockBody::BlockBody(std::istream& is, GENERALBLOCK& block, std::size_t fields_width,
                     BodyForm form) {
  if (readWhole(is, block, form)) {
    const UINT64 link_count = form == BodyForm::without_links ? 0 : block.header.link_count;
    links = takeLinks(is, link_count, in, fields_width);
    readable_ = is.good();
  }
}

BlockBody::~BlockBody() = default;

template <class Number>
void BlockBody::takeList(std::size_t count, std::vector<Number>& list) {
  list.resize(std::min(count, in.remaining() / sizeof(Number)));
  loadEachLe(in.position(), list.data(), list.size());
  in.skip(list.size() * sizeof(Number));
}

template void BlockBody::takeList(std::size_t count, std::vector<UINT8>& list);
template void BlockBody::takeList(std::size_t count, std::vector<REAL>& list);

bool BlockBody::readWhole(std::istream& is, GENERALBLOCK& block, BodyForm form) {
  std::array<char, HeaderSection::HEADER_SIZE> header;
  is.read(header.data(), header.size());
  if (!is.good()) {
    return false;
  }
  takeHeader(block, header.data());
  const UINT64 length =
      form == BodyForm::low_32 ? static_cast<UINT32>(block.header.length) : block.header.length;
  if (length < HeaderSection::HEADER_SIZE) {
    is.clear(std::ios_base::badbit);
    return false;
  }
  return readBytes(is, length - HeaderSection::HEADER_SIZE);
}

bool BlockBody::readBytes(std::istream& is, UINT64 count) {
  if (count > first_piece) {
    return readPieces(is, count);
  }
  const auto size = static_cast<std::size_t>(count);
  char* bytes = small_.data();
  if (size > small_.size()) {
    large_.reset(new char[size]);
    bytes = large_.get();
  }
  is.read(bytes, static_cast<std::streamsize>(size));
  in = Decoder(bytes, size);
  return is.good();
}

/// A length may lie. Pieces that grow with what has come, joined when all of it is there, hold at
/// most about twice the bytes that the stream really has.
bool BlockBody::readPieces(std::istream& is, UINT64 count) {
  struct Piece {
    std::unique_ptr<char[]> bytes;
    std::size_t size;
  };
  std::vector<Piece> pieces;
  std::size_t arrived = 0;
  while (arrived < count) {
    const auto size =
        static_cast<std::size_t>(std::min<UINT64>(count - arrived, std::max(arrived, first_piece)));
    pieces.push_back({std::unique_ptr<char[]>(new char[size]), size});
    is.read(pieces.back().bytes.get(), static_cast<std::streamsize>(size));
    if (!is.good()) {
      return false;
    }
    arrived += size;
  }
  large_.reset(new char[arrived]);
  char* end = large_.get();
  for (Piece& piece : pieces) {
    end = std::copy_n(piece.bytes.get(), piece.size, end);
    piece.bytes.reset();
  }
  in = Decoder(large_.get(), arrived);
  return true;
}

}  // namespace mdf_v4_10::detail
