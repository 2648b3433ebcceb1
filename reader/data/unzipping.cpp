#include "unzipping.h"

#include <system_error>
#include <utility>

#include "../bytes/inflate.h"
#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

constexpr std::uint64_t worth_a_thread = std::uint64_t{1} << 16U;

std::string problemOf(const Inflated& inflated, std::uint64_t stated) {
  switch (inflated.state) {
    case Inflating::fine:
      return "";
    case Inflating::broken:
      return "expected a zlib stream, found a damaged one or other bytes";
    case Inflating::too_long:
      return "expected " + std::to_string(stated) + " bytes of zipped data, found more";
    case Inflating::too_short:
      break;
  }
  return "expected " + std::to_string(stated) + " bytes of zipped data, found " +
         std::to_string(inflated.bytes.size());
}

void readStream(InputFile& file, const DataBlock& block, std::string& stream) {
  const auto size = static_cast<std::size_t>(block.stored);
  if (size > stream.capacity()) {
    stream = {};
    stream.reserve(size + size / 8);  // the others of the file are hardly longer
  }
  stream.resize(size);
  stream.resize(file.readAt(block.at, stream.data(), stream.size()));
}

/// @param columns what is to be transposed, and a room for it.
Unzipped unzip(const std::string& stream, const DataBlock& block, std::string room,
               std::string& columns) {
  const bool is_transposed = block.columns > 1;
  Inflated inflated = inflate(stream, block.original, std::move(is_transposed ? columns : room));
  const Code code =
      inflated.state == Inflating::broken ? Code::zip_broken : Code::zip_original_length_wrong;
  const std::string problem = problemOf(inflated, block.original);
  if (is_transposed) {
    columns = std::move(inflated.bytes);
    transposeBack(columns, block.columns, room);
    return {std::move(room), code, problem};
  }
  return {std::move(inflated.bytes), code, problem};
}

}  // namespace

UnzipperAhead::~UnzipperAhead() {
  while (!pending_.empty()) {
    takeFirst();
  }
}

bool UnzipperAhead::hasRoomFor(const DataBlock& block) const {
  return threads_ > 1 && pending_.size() < threads_ && block.original >= worth_a_thread &&
         block.original <= room_.bytes;
}

void UnzipperAhead::begin(const DataBlock& block) {
  std::string stream;
  readStream(file_, block, stream);
  const auto work = [stream = std::move(stream), block] {
    std::string columns;
    return unzip(stream, block, {}, columns);
  };
  try {
    pending_.push_back({block.at, block.original, std::async(std::launch::async, work)});
    room_.bytes -= block.original;
  } catch (const std::system_error&) {
    threads_ = 1;  // there are no more threads to be had: the caller's own does it
  }
}

UnzipperAhead::Pending UnzipperAhead::takeFirst() {
  Pending first = std::move(pending_.front());
  pending_.pop_front();
  room_.bytes += first.size;
  return first;
}

Unzipped UnzipperAhead::take(const DataBlock& block, std::string room) {
  while (!pending_.empty()) {
    Pending first = takeFirst();
    if (first.at == block.at) {
      return first.data.get();
    }
  }
  readStream(file_, block, stream_);
  return unzip(stream_, block, std::move(room), columns_);
}

}  // namespace mdf_reader
