#include "unzipping.h"

#include <system_error>
#include <utility>

#include "../bytes/inflate.h"
#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

constexpr std::uint64_t worth_a_thread = std::uint64_t{1} << 16U;
constexpr std::uint64_t most_ahead = std::uint64_t{1} << 25U;

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

std::string streamOf(InputFile& file, const DataBlock& block) {
  std::string stream(static_cast<std::size_t>(block.stored), '\0');
  stream.resize(file.readAt(block.at, stream.data(), stream.size()));
  return stream;
}

Unzipped unzipStream(const std::string& stream, const DataBlock& block) {
  Inflated inflated = inflate(stream, block.original);
  const Code code =
      inflated.state == Inflating::broken ? Code::zip_broken : Code::zip_original_length_wrong;
  const std::string problem = problemOf(inflated, block.original);
  Unzipped unzipped{std::move(inflated.bytes), code, problem};
  if (block.columns > 1) {
    unzipped.bytes = transposedBack(unzipped.bytes, block.columns);
  }
  return unzipped;
}

}  // namespace

Unzipped unzip(InputFile& file, const DataBlock& block) {
  return unzipStream(streamOf(file, block), block);
}

bool UnzipperAhead::hasRoomFor(const DataBlock& block) const {
  return threads_ > 1 && pending_.size() < threads_ && block.original >= worth_a_thread &&
         bytes_ + block.original <= most_ahead;
}

void UnzipperAhead::begin(const DataBlock& block) {
  const auto work = [stream = streamOf(file_, block), block] { return unzipStream(stream, block); };
  try {
    pending_.push_back({block.at, block.original, std::async(std::launch::async, work)});
    bytes_ += block.original;
  } catch (const std::system_error&) {
    threads_ = 1;  // there are no more threads to be had: the caller's own does it
  }
}

Unzipped UnzipperAhead::take(const DataBlock& block) {
  while (!pending_.empty()) {
    Pending first = std::move(pending_.front());
    pending_.pop_front();
    bytes_ -= first.size;
    if (first.at == block.at) {
      return first.data.get();
    }
  }
  return unzip(file_, block);
}

}  // namespace mdf_reader
