#include "record_data.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

#include "data_check.h"
#include "framework/wire.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/survey.h"
#include "reader/bytes/inflate.h"

namespace mdf_tools {

using namespace mdf_reader;

using mdf_v4_10::detail::hostSize;

namespace {

class DataCollector {
 public:
  DataCollector(const Subject& subject, OffsetSet& seen) : subject_(subject), seen_(seen) {}

  DataBlocks collect(std::uint64_t first) {
    const auto header_list = readFields(subject_.file, first, "HL");
    std::uint64_t next = header_list ? header_list->link(0) : first;
    while (next != 0 && isFine()) {
      auto list = readFields(subject_.file, next, "DL");
      if (!list) {
        list = readFields(subject_.file, next, "LD");
      }
      if (list) {
        addList(*list);
        next = list->link(0);
      } else {
        add(next);
        next = 0;
      }
    }
    return std::move(data_);
  }

 private:
  bool isFine() const { return data_.is_known && !data_.is_shared; }

  /// Whether the block is there and new.
  bool take(std::uint64_t offset) {
    data_.is_known = data_.is_known && subject_.blocks.find(offset) != BlockTable::none;
    data_.is_shared = data_.is_shared || seen_.contains(offset);
    if (isFine()) {
      seen_.insert(offset);
    }
    return isFine();
  }

  void addList(const BlockFields& list) {
    if (!take(list.offset())) {
      return;
    }
    // After the links to values there may be as many to invalidation data.
    const std::uint64_t end =
        list.raw().letters() == "LD" ? 1 + list.number("ld_count") : UINT64_MAX;
    forEachSurveyedLink(subject_.file, list.raw(),
                        subject_.blocks[subject_.blocks.find(list.offset())],
                        [&](std::uint64_t number, std::uint64_t target) {
                          if (number > 0 && number < end && target != 0 && isFine()) {
                            add(target);
                          }
                        });
  }

  void add(std::uint64_t offset) {
    if (take(offset)) {
      data_.is_known = dataBytesOf(subject_, offset).has_value();
      data_.offsets.push_back(offset);
      const auto block = readRawBlock(subject_.file, offset);
      data_.stored_bytes += block ? subject_.space.endOf(*block) - offset : 0;
      data_.are_values_alone = data_.are_values_alone || (block && holdsValuesAlone(*block));
    }
  }

  bool holdsValuesAlone(const RawBlock& block) const {
    return block.letters() == "DV" ||
           (block.letters() == "DZ" &&
            BlockFields(subject_.file, block).bytes("dz_org_block_type") == "DV");
  }

  const Subject& subject_;
  OffsetSet& seen_;
  DataBlocks data_;
};

}  // namespace

DataBlocks dataBlocksAt(const Subject& subject, std::uint64_t first, OffsetSet& seen) {
  return DataCollector(subject, seen).collect(first);
}

bool DataReader::isAtEnd() {
  while (at_ == end_ && next_ < offsets_.size() && !is_broken_) {
    enter(offsets_[next_++]);
  }
  return at_ == end_;
}

void DataReader::enter(std::uint64_t offset) {
  const auto block = readRawBlock(subject_.file, offset);
  const auto bytes = dataBytesOf(subject_, offset);
  is_broken_ = !block || !bytes;
  if (is_broken_) {
    return;
  }
  is_inflated_ = block->letters() == "DZ";
  if (is_inflated_) {
    unzip(*block);
  } else {
    at_ = offset + RawBlock::header_size + linksThere(subject_.file, *block) * RawBlock::link_size;
    end_ = at_ + *bytes;
  }
}

void DataReader::unzip(const RawBlock& block) {
  const BlockFields fields(subject_.file, block);
  const std::uint64_t size = std::min(fields.number("dz_data_length"), fields.tailBytes());
  constexpr std::uint64_t transposed = 1;
  const std::uint64_t type = fields.number("dz_zip_type");
  at_ = 0;
  end_ = 0;
  is_broken_ = type > transposed;
  if (is_broken_) {
    return;
  }
  std::string stream(hostSize(size), '\0');
  stream.resize(subject_.file.readAt(fields.tailAt(), stream.data(), stream.size()));
  Inflated inflated = inflate(stream, fields.number("dz_org_data_length"));
  is_broken_ = inflated.state != Inflating::fine;
  if (!is_broken_) {
    inflated_ = type == transposed
                    ? transposedBack(inflated.bytes, fields.number("dz_zip_parameter"))
                    : std::move(inflated.bytes);
    end_ = inflated_.size();
  }
}

bool DataReader::read(char* bytes, std::size_t count) {
  while (count > 0) {
    if (isAtEnd()) {
      return false;
    }
    const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(count, end_ - at_));
    if (is_inflated_) {
      std::memcpy(bytes, inflated_.data() + static_cast<std::size_t>(at_), piece);
    } else if (subject_.file.readAt(at_, bytes, piece) < piece) {
      is_broken_ = true;
      return false;
    }
    at_ += piece;
    position_ += piece;
    bytes += piece;
    count -= piece;
  }
  return true;
}

bool DataReader::read(std::string& bytes, std::uint64_t count) {
  constexpr std::uint64_t piece = std::uint64_t{1} << 16U;
  bytes.clear();
  while (bytes.size() < count) {
    const std::size_t there = bytes.size();
    bytes.resize(there + static_cast<std::size_t>(std::min(piece, count - there)));
    if (!read(&bytes[there], bytes.size() - there)) {
      return false;
    }
  }
  return true;
}

bool DataReader::skip(std::uint64_t count) {
  while (count > 0) {
    if (isAtEnd()) {
      return false;
    }
    const std::uint64_t piece = std::min(count, end_ - at_);
    at_ += piece;
    position_ += piece;
    count -= piece;
  }
  return true;
}

}  // namespace mdf_tools
