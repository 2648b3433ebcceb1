#include "block_map.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_map>

#include "block_family.h"
#include "printing/json_output.h"
#include "reader/blocks/raw_block.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// Bytes from an offset up to another one.
struct Extent {
  std::uint64_t begin;
  std::uint64_t end;

  std::uint64_t size() const { return end - begin; }
};

/// What a cell of the map holds.
struct Cell {
  std::array<std::uint64_t, family_count> bytes{};  ///< of blocks that fill it in part
  std::array<std::array<char, 2>, family_count> letters{};
  std::uint64_t offset = 0;  ///< of the block that fills it
  std::array<char, 2> filled_by{};
  std::int64_t overlaps = 0;  ///< extents that begin here less those that ended before
};

class MapMaker {
 public:
  explicit MapMaker(InputFile& file) : file_(file) {
    map_.file_size = file.size();
    chooseScale();
    cells_.resize(
        static_cast<std::size_t>((map_.file_size + map_.bytes_per_cell - 1) / map_.bytes_per_cell) +
        1);
  }

  BlockMap make(const std::vector<std::uint64_t>& offsets);

 private:
  void chooseScale();
  void add(std::uint64_t offset, std::uint64_t length, std::string_view letters);
  void occupy(Extent extent, std::uint64_t offset, std::string_view letters);
  void overlap(Extent extent);
  void addGap(std::uint64_t bytes);
  std::size_t cellOf(std::uint64_t offset) const {
    return static_cast<std::size_t>(offset / map_.bytes_per_cell);
  }
  void makeRuns();
  MapRun runOf(std::size_t index, std::int64_t overlaps) const;

  InputFile& file_;
  BlockMap map_;
  std::vector<Cell> cells_;  ///< and one past the end of the file
  std::uint64_t covered_until_ = 0;
  std::uint64_t overlapped_until_ = 0;
  std::unordered_map<std::string, TypeShare> types_;
};

/// Up to 24 rows, of up to 512 cells.
void MapMaker::chooseScale() {
  constexpr std::uint64_t most_rows = 24;
  map_.columns = 64;
  map_.bytes_per_cell = 1;
  while ((map_.file_size - 1) / (map_.columns * map_.bytes_per_cell) >= most_rows &&
         map_.file_size != 0) {
    if (map_.columns < 512) {
      map_.columns *= 2;
    } else {
      map_.bytes_per_cell *= 2;
    }
  }
}

void MapMaker::add(std::uint64_t offset, std::uint64_t length, std::string_view letters) {
  const Extent extent = {offset, offset + std::min(length, file_.sizeFrom(offset))};
  TypeShare& share = types_[std::string(letters)];
  ++share.blocks;
  share.bytes += extent.size();
  if (extent.begin > covered_until_) {
    addGap(extent.begin - covered_until_);
  }
  if (extent.begin < covered_until_) {
    overlap({extent.begin, std::min(extent.end, covered_until_)});
  }
  if (extent.end > covered_until_) {
    occupy({std::max(extent.begin, covered_until_), extent.end}, offset, letters);
    covered_until_ = extent.end;
  }
}

void MapMaker::addGap(std::uint64_t bytes) {
  map_.gap_bytes += bytes;
  ++map_.gaps;
}

/// These extents do not overlap, so that each cell is filled once.
void MapMaker::occupy(Extent extent, std::uint64_t offset, std::string_view letters) {
  const auto family = static_cast<std::size_t>(familyOf(letters));
  while (extent.begin < extent.end) {
    const std::size_t index = cellOf(extent.begin);
    const std::uint64_t cell_begin = index * map_.bytes_per_cell;
    const std::uint64_t cell_end = std::min(cell_begin + map_.bytes_per_cell, map_.file_size);
    const std::uint64_t end = std::min(extent.end, cell_end);
    Cell& cell = cells_[index];
    if (extent.begin == cell_begin && end == cell_end) {
      cell.offset = offset;
      cell.filled_by = {letters[0], letters[1]};
    }
    cell.bytes.at(family) += end - extent.begin;
    cell.letters.at(family) = {letters[0], letters[1]};
    extent.begin = end;
  }
}

/// There may be as many of these as blocks, each over the whole file.
void MapMaker::overlap(Extent extent) {
  if (extent.size() == 0) {
    return;
  }
  ++cells_[cellOf(extent.begin)].overlaps;
  --cells_[cellOf(extent.end - 1) + 1].overlaps;
  const std::uint64_t begin = std::max(extent.begin, overlapped_until_);
  if (extent.end > begin) {
    map_.overlap_bytes += extent.end - begin;
    overlapped_until_ = extent.end;
  }
}

MapRun MapMaker::runOf(std::size_t index, std::int64_t overlaps) const {
  const Cell& cell = cells_[index];
  MapRun run = {
      MapRun::blocks, index / map_.columns, index % map_.columns, index % map_.columns, "", 0};
  if (overlaps > 0) {
    run.kind = MapRun::overlap;
    return run;
  }
  if (cell.offset != 0 || cell.filled_by[0] != 0) {
    run.type.assign(cell.filled_by.data(), 2);
    run.offset = cell.offset;
    return run;
  }
  std::uint64_t sum = 0;
  std::size_t most = 0;
  for (std::size_t i = 0; i < family_count; ++i) {
    sum += cell.bytes[i];
    most = cell.bytes[i] > cell.bytes[most] ? i : most;
  }
  const std::uint64_t size =
      std::min(map_.bytes_per_cell, map_.file_size - index * map_.bytes_per_cell);
  if (size - sum > cell.bytes[most]) {
    run.kind = MapRun::gap;
  } else {
    run.type.assign(cell.letters[most].data(), 2);
  }
  return run;
}

void MapMaker::makeRuns() {
  std::int64_t overlaps = 0;
  for (std::size_t i = 0; i + 1 < cells_.size(); ++i) {
    overlaps += cells_[i].overlaps;
    MapRun run = runOf(i, overlaps);
    const bool goes_on = !map_.runs.empty() && map_.runs.back().row == run.row &&
                         map_.runs.back().kind == run.kind &&
                         map_.runs.back().offset == run.offset &&
                         familyOf(map_.runs.back().type) == familyOf(run.type);
    if (goes_on) {
      map_.runs.back().last = run.last;
    } else {
      map_.runs.push_back(std::move(run));
    }
  }
}

BlockMap MapMaker::make(const std::vector<std::uint64_t>& offsets) {
  if (map_.file_size == 0) {
    return std::move(map_);
  }
  if (map_.file_size >= header_block_offset) {
    add(0, header_block_offset, "ID");
  }
  for (const std::uint64_t offset : offsets) {
    if (const auto block = readRawBlock(file_, offset)) {
      add(offset, block->length, block->letters());
    }
  }
  if (map_.file_size > covered_until_) {
    addGap(map_.file_size - covered_until_);
  }
  makeRuns();
  for (auto& [letters, share] : types_) {
    share.type = printable(letters);
    map_.types.push_back(std::move(share));
  }
  std::sort(map_.types.begin(), map_.types.end(), [](const TypeShare& a, const TypeShare& b) {
    return a.bytes != b.bytes ? a.bytes > b.bytes : a.type < b.type;
  });
  return std::move(map_);
}

}  // namespace

BlockMap makeMap(InputFile& file, const FindingSink& report) {
  return MapMaker(file).make(walkBlocks(file, report).offsets());
}

Json mapAsJson(const BlockMap& map) {
  Json value;
  value["size"] = map.file_size;
  value["types"] = Json::array();
  for (const TypeShare& share : map.types) {
    Json entry;
    entry["type"] = share.type;
    entry["blocks"] = share.blocks;
    entry["bytes"] = share.bytes;
    value["types"].push_back(entry);
  }
  value["gaps"] = map.gaps;
  value["gap_bytes"] = map.gap_bytes;
  value["overlap_bytes"] = map.overlap_bytes;
  return value;
}

}  // namespace mdf_tools
