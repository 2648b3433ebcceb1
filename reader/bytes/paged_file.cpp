#include "paged_file.h"

#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace mdf_reader {

namespace {

constexpr std::size_t page_size = 4096;
constexpr std::size_t page_count = 1024;

/// Of a page that is leapt to, hardly more than this is read.
constexpr std::size_t small_piece = 512;

/// The most pages that are read at once.
constexpr std::size_t longest_run = 16;

constexpr std::uint64_t no_page = std::numeric_limits<std::uint64_t>::max();

std::size_t placeOf(std::uint64_t page) { return static_cast<std::size_t>(page % page_count); }

}  // namespace

// The bytes are left as they come from the heap: zeros would take memory for pages never read.
PagedFile::PagedFile(Descriptor file)
    : file_(std::move(file)),
      pages_(page_count, Page{no_page, 0, 0, false}),
      bytes_(new char[page_count * page_size]) {}

std::uint64_t PagedFile::size() const {
  const off_t end = lseek(file_.number(), 0, SEEK_END);
  return end < 0 ? 0 : static_cast<std::uint64_t>(end);
}

std::string_view PagedFile::bytesAt(std::uint64_t offset) {
  if (!has(offset)) {
    constexpr std::size_t head_of_a_block = 64;
    load(offset, head_of_a_block);
  }
  return there(offset);
}

bool PagedFile::has(std::uint64_t offset) const {
  const Page& page = pages_[placeOf(offset / page_size)];
  const std::uint64_t in_page = offset % page_size;
  return isCached(offset / page_size) &&
         (page.is_whole || (page.begin <= in_page && in_page < page.end));
}

/// The bytes from an offset to the end of what was read of its page.
std::string_view PagedFile::there(std::uint64_t offset) const {
  const std::size_t place = placeOf(offset / page_size);
  const std::size_t begin =
      std::min(static_cast<std::size_t>(offset % page_size), pages_[place].end);
  return {bytes_.get() + place * page_size + begin, pages_[place].end - begin};
}

std::size_t PagedFile::read(std::uint64_t offset, char* bytes, std::size_t count) {
  if (count >= longest_run * page_size) {
    return readFile(offset, bytes, count);
  }
  std::size_t done = 0;
  while (done < count) {
    if (!has(offset + done)) {
      load(offset + done, count - done);
    }
    const std::string_view piece = there(offset + done).substr(0, count - done);
    if (piece.empty()) {
      break;
    }
    std::memcpy(bytes + done, piece.data(), piece.size());
    done += piece.size();
  }
  return done;
}

void PagedFile::expect(std::uint64_t offset, std::size_t count) {
  const std::uint64_t number = offset / page_size;
  if (isApart(number)) {
    const auto begin = static_cast<std::size_t>(offset % page_size);
    loadPart(number, begin, std::min(begin + count, page_size));
  }
}

bool PagedFile::isCached(std::uint64_t number) const {
  return pages_[placeOf(number)].number == number;
}

std::size_t PagedFile::cachedBefore(std::uint64_t number) const {
  const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(number, longest_run));
  std::size_t count = 0;
  while (count < most && isCached(number - count - 1)) {
    ++count;
  }
  return count;
}

std::size_t PagedFile::cachedAfter(std::uint64_t number) const {
  std::size_t count = 0;
  while (count < longest_run && isCached(number + count + 1)) {
    ++count;
  }
  return count;
}

/// Takes as many pages as the cache has next to this one, on the side that is approached: a reader
/// that goes on in the same direction soon needs few calls, and one that jumps about reads little
/// more than it wants.
void PagedFile::load(std::uint64_t offset, std::size_t wanted) {
  const std::uint64_t number = offset / page_size;
  const std::size_t place = placeOf(number);
  const std::size_t before = cachedBefore(number);
  const std::size_t after = cachedAfter(number);
  if (wanted <= small_piece && isApart(number)) {
    loadSome(offset, wanted);
  } else if (before >= after) {
    loadRun(number, std::min(std::max<std::size_t>(before, 1), page_count - place));
  } else {
    // A page's place is no higher than its number, so that the run begins in the file.
    const std::size_t count = std::min(after, place + 1);
    loadRun(number + 1 - count, count);
  }
}

/// Whether a page is leapt to.
bool PagedFile::isApart(std::uint64_t number) const {
  return !isCached(number) && cachedBefore(number) + cachedAfter(number) == 0;
}

/// The part of a page with the wanted bytes, as far as they are in it.
void PagedFile::loadSome(std::uint64_t offset, std::size_t wanted) {
  const std::uint64_t number = offset / page_size;
  const auto in_page = static_cast<std::size_t>(offset % page_size);
  const std::size_t begin = in_page / small_piece * small_piece;
  const std::size_t end =
      std::min(begin + (in_page - begin + wanted > small_piece ? 2 : 1) * small_piece, page_size);
  loadPart(number, begin, end);
}

void PagedFile::loadPart(std::uint64_t number, std::size_t begin, std::size_t end) {
  const std::size_t got = readFile(number * page_size + begin,
                                   bytes_.get() + placeOf(number) * page_size + begin, end - begin);
  pages_[placeOf(number)] = {number, begin, begin + got, false};
}

void PagedFile::loadRun(std::uint64_t first, std::size_t count) {
  const std::size_t place = placeOf(first);
  std::size_t rest =
      readFile(first * page_size, bytes_.get() + place * page_size, count * page_size);
  for (std::size_t i = 0; i < count; ++i) {
    pages_[place + i] = {first + i, 0, std::min(rest, page_size), true};
    rest -= pages_[place + i].end;
  }
}

std::size_t PagedFile::readFile(std::uint64_t offset, char* bytes, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got =
        pread(file_.number(), bytes + done, count - done, static_cast<off_t>(offset + done));
    if (got <= 0) {
      break;
    }
    done += static_cast<std::size_t>(got);
  }
  bytes_read_.fetch_add(done, std::memory_order_relaxed);
  return done;
}

}  // namespace mdf_reader
