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

/// The most pages that are read at once.
constexpr std::size_t longest_run = 16;

constexpr std::uint64_t no_page = std::numeric_limits<std::uint64_t>::max();

std::size_t placeOf(std::uint64_t page) { return static_cast<std::size_t>(page % page_count); }

}  // namespace

// The bytes are left as they come from the heap: zeros would take memory for pages never read.
PagedFile::PagedFile(Descriptor file)
    : file_(std::move(file)),
      pages_(page_count, Page{no_page, 0}),
      bytes_(new char[page_count * page_size]) {}

std::uint64_t PagedFile::size() const {
  const off_t end = lseek(file_.number(), 0, SEEK_END);
  return end < 0 ? 0 : static_cast<std::uint64_t>(end);
}

std::string_view PagedFile::bytesAt(std::uint64_t offset) {
  const std::uint64_t number = offset / page_size;
  if (!isCached(number)) {
    load(number);
  }
  const std::size_t place = placeOf(number);
  const std::string_view page(bytes_.get() + place * page_size, pages_[place].size);
  return page.substr(std::min(static_cast<std::size_t>(offset % page_size), page.size()));
}

std::size_t PagedFile::read(std::uint64_t offset, char* bytes, std::size_t count) {
  if (count >= longest_run * page_size) {
    return readFile(offset, bytes, count);
  }
  std::size_t done = 0;
  while (done < count) {
    const std::string_view there = bytesAt(offset + done).substr(0, count - done);
    if (there.empty()) {
      break;
    }
    std::memcpy(bytes + done, there.data(), there.size());
    done += there.size();
  }
  return done;
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
/// that goes on in the same direction soon needs few calls, and one that jumps about reads single
/// pages.
void PagedFile::load(std::uint64_t number) {
  const std::size_t place = placeOf(number);
  const std::size_t before = cachedBefore(number);
  const std::size_t after = cachedAfter(number);
  if (before >= after) {
    loadRun(number, std::min(std::max<std::size_t>(before, 1), page_count - place));
  } else {
    // A page's place is no higher than its number, so that the run begins in the file.
    const std::size_t count = std::min(after, place + 1);
    loadRun(number + 1 - count, count);
  }
}

void PagedFile::loadRun(std::uint64_t first, std::size_t count) {
  const std::size_t place = placeOf(first);
  std::size_t rest =
      readFile(first * page_size, bytes_.get() + place * page_size, count * page_size);
  for (std::size_t i = 0; i < count; ++i) {
    pages_[place + i] = {first + i, std::min(rest, page_size)};
    rest -= pages_[place + i].size;
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
