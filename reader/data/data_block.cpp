#include "data_block.h"

#include <algorithm>
#include <string_view>

#include "../blocks/block_fields.h"
#include "../bytes/inflate.h"
#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

/// The most that a zipped block may hold. Writers make blocks of a few MiB.
constexpr std::uint64_t most_unzipped = std::uint64_t{1} << 29U;
constexpr std::uint64_t most_from_a_byte = 1032;

bool isOneOf(const RawBlock& block, std::string_view types) {
  return block.hasId() && types.find(block.letters()) != std::string_view::npos;
}

/// Whether a block's data is yet to be counted: its writer stopped within it.
bool goesOn(InputFile& file, const RawBlock& block, std::uint64_t head) {
  const std::uint64_t data_at = block.offset + head;
  if (block.length > head || file.sizeFrom(data_at) == 0) {
    return false;
  }
  const auto next = readRawBlock(file, (data_at + 7) / 8 * 8);
  return !next || !next->hasId() || next->length < RawBlock::header_size;
}

void findPlainData(InputFile& file, const RawBlock& block, bool is_unfinished, DataBlock& found) {
  if (block.link_count > file.size() / RawBlock::link_size) {
    found.problem = "expected no links in a data block, found " + std::to_string(block.link_count);
    return;
  }
  const std::uint64_t head = RawBlock::header_size + block.link_count * RawBlock::link_size;
  found.at = block.offset + head;
  const std::uint64_t there = file.sizeFrom(found.at);
  if (is_unfinished && goesOn(file, block, head)) {
    found.stored = there;
  } else if (block.length < head) {
    found.problem = "expected a length of at least " + std::to_string(head) + ", found " +
                    std::to_string(block.length);
  } else {
    found.stored = std::min(block.length - head, there);
    if (found.stored < block.length - head && !is_unfinished) {
      found.problem = "expected the " + std::to_string(block.length) + " bytes of " + block.name() +
                      ", found " + std::to_string(file.sizeFrom(block.offset)) +
                      " up to the file's end";
    }
  }
  found.original = found.stored;
}

void findZippedData(InputFile& file, const RawBlock& block, DataBlock& found) {
  constexpr std::uint64_t transposed = 1;
  const BlockFields fields(file, block);
  const std::uint64_t stated = fields.number("dz_data_length");
  const std::uint64_t original = fields.number("dz_org_data_length");
  const std::uint64_t type = fields.number("dz_zip_type");
  found.is_zipped = true;
  found.at = fields.tailAt();
  found.stored = std::min(stated, fields.tailBytes());
  found.columns = type == transposed ? fields.number("dz_zip_parameter") : 0;
  const std::uint64_t most = std::min(most_unzipped, most_from_a_byte * found.stored);
  if (found.stored < stated) {
    found.problem = "expected " + std::to_string(stated) + " zipped bytes, found " +
                    std::to_string(found.stored);
  } else if (type > transposed) {
    found.problem = "expected a known zip type, found " + std::to_string(type);
  } else if (original > most) {
    found.problem = "expected at most " + std::to_string(most) + " bytes of zipped data, found " +
                    std::to_string(original);
  } else {
    found.original = original;
  }
}

std::string inflatingProblem(const Inflated& inflated, std::uint64_t stated) {
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

}  // namespace

bool isDataBlock(const RawBlock& block) { return isOneOf(block, "DT SD RD DV DI DZ"); }

bool isDataList(const RawBlock& block) { return isOneOf(block, "DL LD"); }

std::string originalType(InputFile& file, const RawBlock& block) {
  if (!isDataBlock(block)) {
    return "";
  }
  return block.letters() == "DZ" ? std::string(BlockFields(file, block).bytes("dz_org_block_type"))
                                 : std::string(block.letters());
}

DataBlock findData(InputFile& file, const RawBlock& block, bool is_unfinished) {
  DataBlock found;
  if (block.letters() == "DZ") {
    findZippedData(file, block, found);
  } else {
    findPlainData(file, block, is_unfinished, found);
  }
  return found;
}

Unzipped unzip(InputFile& file, const DataBlock& block) {
  std::string stream(static_cast<std::size_t>(block.stored), '\0');
  stream.resize(file.readAt(block.at, stream.data(), stream.size()));
  Inflated inflated = inflate(stream, block.original);
  const std::string problem = inflatingProblem(inflated, block.original);
  Unzipped unzipped{std::move(inflated.bytes), problem};
  if (block.columns > 1) {
    unzipped.bytes = transposedBack(unzipped.bytes, block.columns);
  }
  return unzipped;
}

}  // namespace mdf_reader
