#include "data_block.h"

#include <algorithm>
#include <string_view>

#include "../blocks/block_fields.h"
#include "../bytes/input_file.h"
#include "data_file.h"
#include "datablocks/dzblock.h"

namespace mdf_reader {

using mdf_v4_10::DZBLOCK;

namespace {

/// The most that a zipped block may hold. Writers make blocks of a few MiB.
constexpr std::uint64_t most_unzipped = std::uint64_t{1} << 29U;
constexpr std::uint64_t most_from_a_byte = 1032;

bool isZippedData(const RawBlock& block) { return block.type().contents == Contents::zipped_data; }

void fail(DataBlock& found, Code code, const std::string& sentence) {
  found.code = code;
  found.problem = sentence;
}

void findPlainData(DataFile& data_file, const RawBlock& block, DataBlock& found) {
  const InputFile& file = data_file.bytes();
  if (block.link_count > file.size() / RawBlock::link_size) {
    fail(found, Code::count_too_large,
         "expected no links in a data block, found " + std::to_string(block.link_count));
    return;
  }
  const std::uint64_t head = RawBlock::header_size + block.link_count * RawBlock::link_size;
  const std::uint64_t end = data_file.endOf(block);
  found.at = block.offset + head;
  if (block.length < head && !data_file.isOpen(block)) {
    fail(found, Code::length_too_small,
         "expected a length of at least " + std::to_string(head) + ", found " +
             std::to_string(block.length));
    return;
  }
  found.stored = end > found.at ? end - found.at : 0;
  found.original = found.stored;
  if (!isWhole(file, block) && !data_file.isOpen(block)) {
    fail(found, Code::length_past_end,
         "expected the " + std::to_string(block.length) + " bytes of " + block.name() + ", " +
             upToTheEnd(file.sizeFrom(block.offset)));
  }
}

void findZippedData(InputFile& file, const RawBlock& block, DataBlock& found) {
  constexpr std::uint64_t transposed = DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE;
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
    fail(found, Code::zip_length_wrong,
         "expected " + std::to_string(stated) + " zipped bytes, found " +
             std::to_string(found.stored));
  } else if (type > transposed) {
    fail(found, Code::zip_type_unknown, "expected a known zip type, found " + std::to_string(type));
  } else if (original > most) {
    fail(found, Code::zip_original_length_wrong,
         "expected at most " + std::to_string(most) + " bytes of zipped data, found " +
             std::to_string(original));
  } else {
    found.original = original;
  }
}

}  // namespace

bool isDataBlock(const RawBlock& block) { return isPlainData(block) || isZippedData(block); }

bool isPlainData(const RawBlock& block) { return block.type().contents == Contents::data; }

bool isDataList(const RawBlock& block) { return block.type().contents == Contents::data_list; }

std::string originalType(InputFile& file, const RawBlock& block) {
  if (!isDataBlock(block)) {
    return "";
  }
  return isZippedData(block) ? std::string(BlockFields(file, block).bytes("dz_org_block_type"))
                             : std::string(block.letters());
}

DataBlock findData(DataFile& file, const RawBlock& block) {
  DataBlock found;
  if (isZippedData(block)) {
    findZippedData(file.bytes(), block, found);
  } else {
    findPlainData(file, block, found);
  }
  return found;
}

}  // namespace mdf_reader
