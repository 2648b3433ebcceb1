// Reading data that is zipped, mixed or long as columns.

#include <libdeflate.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "pictures/curve.h"
#include "support/comparison.h"
#include "support/files.h"
#include "support/recordings.h"

namespace mdf_bench {

namespace {

using namespace mdf_v4_10;

constexpr std::size_t records = 2000000;
constexpr std::size_t block_records = (std::size_t{1} << 22U) / record_bytes;

/// Loads the columns of records as a program does that reads plain data, and tells the batches.
template <class Take>
void loadBatches(const char* from, std::size_t count, Columns& columns, const Take& take) {
  for (std::size_t done = 0; done < count; done += batch) {
    const std::size_t rows = std::min(batch, count - done);
    for (std::size_t row = 0; row < rows; row += piece) {
      loadMixed(from + (done + row) * record_bytes, std::min(piece, rows - row), row, columns);
    }
    take(columns, rows);
  }
}

constexpr auto nobody = [](Columns& /*columns*/, std::size_t /*rows*/) {};

/// Adds up numbers of all columns, so that two ways to the same values can be compared.
class Sum {
 public:
  void add(Columns& columns, std::size_t rows) {
    addAll(columns.at<double>(0, 0), rows);
    addAll(columns.at<double>(1, 0), rows);
    addAll(columns.at<float>(2, 0), rows);
    addAll(columns.at<std::uint16_t>(3, 0), rows);
    addAll(columns.at<std::uint32_t>(4, 0), rows);
  }
  void add(const mdf_reader::Batch& batch) {
    addAll(batch.column(0).values<double>(), batch.rows());
    addAll(batch.column(1).values<double>(), batch.rows());
    addAll(batch.column(2).values<float>(), batch.rows());
    addAll(batch.column(3).values<std::uint16_t>(), batch.rows());
    addAll(batch.column(4).values<std::uint32_t>(), batch.rows());
  }
  bool operator==(const Sum& other) const { return sum_ == other.sum_; }

 private:
  /// Each value is given a weight by its bits, so that none may take another's place.
  template <class Number>
  void addAll(const Number* values, std::size_t rows) {
    for (std::size_t i = 0; i < rows; ++i) {
      std::uint64_t bits = 0;
      std::memcpy(&bits, &values[i], sizeof values[i]);
      sum_ += (bits + 1) * (bits ^ 0x9E3779B97F4A7C15U);
    }
  }

  std::uint64_t sum_ = 0;
};

/// A file and a hand-written program that hands on all its columns.
struct Contest {
  std::shared_ptr<ScratchFile> file = std::make_shared<ScratchFile>(std::string());
  std::function<void(const std::function<void(Columns&, std::size_t)>& take)> by_hand;
  std::size_t rows = records;
};

Sides sidesOf(const std::shared_ptr<Contest>& contest) {
  Sides sides;
  sides.units = contest->rows;
  sides.subject = [=](std::size_t times) {
    for (; times > 0; --times) {
      std::size_t rows = 0;
      readColumns(contest->file->path(), {},
                  [&](const mdf_reader::Batch& each, const auto&) { rows += each.rows(); });
      require(rows == contest->rows, "all rows to be read");
    }
  };
  sides.baseline = [=](std::size_t times) {
    for (; times > 0; --times) {
      contest->by_hand(nobody);
    }
  };
  sides.is_right = [=] {
    Sum by_hand;
    contest->by_hand([&](Columns& columns, std::size_t rows) { by_hand.add(columns, rows); });
    Sum by_reader;
    readColumns(contest->file->path(), {},
                [&](const mdf_reader::Batch& each, const auto&) { by_reader.add(each); });
    return by_hand == by_reader;
  };
  return sides;
}

using Decompressor =
    std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>;

/// Turns columns of bytes back to rows, some rows at a time.
void transposeBack(const std::string& columns, std::string& rows) {
  constexpr std::size_t at_once = 512;
  const std::size_t height = columns.size() / record_bytes;
  for (std::size_t begin = 0; begin < height; begin += at_once) {
    const std::size_t end = std::min(height, begin + at_once);
    for (std::size_t column = 0; column < record_bytes; ++column) {
      for (std::size_t row = begin; row < end; ++row) {
        rows[row * record_bytes + column] = columns[column * height + row];
      }
    }
  }
}

Sides zippedSides(bool is_transposed) {
  const auto contest = std::make_shared<Contest>();
  FileMaker maker(contest->file->path());
  std::vector<ZippedBlock> zipped;
  std::vector<LINK> blocks;
  for (std::size_t done = 0; done < records; done += block_records) {
    const std::string data = mixedRecords(done, std::min(block_records, records - done));
    zipped.push_back(maker.appendZipped(data, is_transposed ? record_bytes : 0));
    blocks.push_back(zipped.back().block);
  }
  const LINK list = maker.appendList(blocks, block_records * record_bytes);
  maker.finish(maker.appendGroup({mixedChannels(), record_bytes, records}), list);
  contest->by_hand = [=, path = contest->file->path(), columns = Columns(), stream = std::string(),
                      inflated = std::string(), rows = std::string()](const auto& take) mutable {
    const Descriptor file(path);
    const Decompressor decompressor(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    for (const ZippedBlock& block : zipped) {
      stream.resize(block.stored);
      inflated.resize(block.original);
      file.goTo(block.stream_at);
      file.read(stream.data(), stream.size());
      require(libdeflate_zlib_decompress(decompressor.get(), stream.data(), stream.size(),
                                         inflated.data(), inflated.size(),
                                         nullptr) == LIBDEFLATE_SUCCESS,
              "inflating");
      if (is_transposed) {
        rows.resize(inflated.size());
        transposeBack(inflated, rows);
      }
      loadBatches((is_transposed ? rows : inflated).data(), block.original / record_bytes, columns,
                  take);
    }
  };
  return sidesOf(contest);
}

constexpr std::size_t groups = 60;

/// Records of many groups in any order, each after its record id.
Sides mixedSides() {
  const auto contest = std::make_shared<Contest>();
  const MixedFile mixed = writeMixedFile(contest->file->path(), records, groups);
  contest->by_hand = [=, path = contest->file->path(),
                      columns = Columns()](const auto& take) mutable {
    constexpr std::size_t stored = 1 + record_bytes;
    std::vector<char> bytes(piece * stored);
    std::vector<std::string> sorted(groups);
    for (std::size_t group = 0; group < groups; ++group) {
      sorted[group].reserve(static_cast<std::size_t>(mixed.counts[group]) * record_bytes);
    }
    const Descriptor file(path);
    file.goTo(mixed.data_at);
    for (std::size_t done = 0; done < records; done += piece) {
      const std::size_t count = std::min(piece, records - done);
      file.read(bytes.data(), count * stored);
      for (const char* record = bytes.data(); record < bytes.data() + count * stored;
           record += stored) {
        sorted[static_cast<unsigned char>(*record)].append(record + 1, record_bytes);
      }
    }
    for (const std::string& group : sorted) {
      loadBatches(group.data(), group.size() / record_bytes, columns, take);
    }
  };
  return sidesOf(contest);
}

constexpr std::size_t long_blocks = 1024;

/// A file with 4 GiB of data in blocks of 4 MiB.
struct LongFile {
  ScratchFile file{std::string()};
  std::size_t block_bytes = 0;  ///< in the file, of the longest block

  explicit LongFile(bool is_zipped) {
    FileMaker maker(file.path());
    std::vector<LINK> blocks;
    for (std::size_t i = 0; i < long_blocks; ++i) {
      const std::string data = mixedRecords(i * block_records, block_records);
      if (is_zipped) {
        const ZippedBlock zipped = maker.appendZipped(data, 0);
        blocks.push_back(zipped.block);
        block_bytes = std::max(block_bytes, zipped.stored);
      } else {
        blocks.push_back(maker.appendData(data));
      }
    }
    std::vector<Wanted> channels = mixedChannels();
    channels.front().is_master = true;
    const LINK list = maker.appendList(blocks, block_records * record_bytes);
    maker.finish(maker.appendGroup({channels, record_bytes, long_blocks * block_records}), list);
  }
};

/// Bytes that are read of a file for a second in the midst of it.
std::uint64_t bytesForASecond(const LongFile& file) {
  mdf_reader::Query query;
  query.from = 100000.0005;
  query.to = 100001;
  std::size_t rows = 0;
  const std::uint64_t bytes =
      readColumns(file.file.path(), query,
                  [&](const mdf_reader::Batch& batch, const auto&) { rows += batch.rows(); });
  require(rows == 1000, "the rows of a second");
  return bytes;
}

double mebibytesOfPlainData() {
  return static_cast<double>(bytesForASecond(LongFile(false))) / (1U << 20U);
}

double blocksOfZippedData() {
  const LongFile file(true);
  return static_cast<double>(bytesForASecond(file)) / static_cast<double>(file.block_bytes);
}

/// The curves of a picture, against reading the columns.
Sides plotSides() {
  const auto file = std::make_shared<ScratchFile>(std::string());
  constexpr std::size_t samples = 20000000;
  FileMaker maker(file->path());
  std::vector<Wanted> channels = mixedChannels();
  channels.front().is_master = true;
  const LINK at = maker.appendData(mixedRecords(0, samples));
  maker.finish(maker.appendGroup({channels, record_bytes, samples}), at);
  const auto points = std::make_shared<std::size_t>(0);
  Sides sides;
  sides.units = samples;
  sides.subject = [=](std::size_t times) {
    for (; times > 0; --times) {
      std::vector<mdf_tools::Curve> curves;
      mdf_tools::CurveCollector collector(curves, 1200);
      bool has_begun = false;
      readColumns(file->path(), {},
                  [&](const mdf_reader::Batch& batch, const mdf_reader::TableHead& head) {
                    if (!std::exchange(has_begun, true)) {
                      collector.begin(head);
                    }
                    collector.take(batch);
                  });
      *points = curves.size();
    }
  };
  sides.baseline = [=](std::size_t times) {
    for (; times > 0; --times) {
      std::size_t rows = 0;
      readColumns(file->path(), {},
                  [&](const mdf_reader::Batch& each, const auto&) { rows += each.rows(); });
      require(rows == samples, "all rows to be read");
    }
  };
  sides.is_right = [=] { return *points == channels.size() - 1; };
  return sides;
}

}  // namespace

void registerCases() {
  compare({"data/lists of zipped blocks", "libdeflate and strided loads", 1.1},
          [] { return zippedSides(false); });
  compare({"data/lists of transposed and zipped blocks",
           "libdeflate, a blocked transposition and strided loads", 1.25},
          [] { return zippedSides(true); });
  compare(
      {"data/60 channel groups in one data group", "sorting by record id and strided loads", 1.5},
      mixedSides);
  compare({"data/curves of 100 million samples", "reading their columns", 1.5}, plotSides);
  measure({"data/a second of 4 GiB, plain", "(MiB read)", 1}, mebibytesOfPlainData);
  measure({"data/a second of 4 GiB, zipped", "(blocks read)", 3}, blocksOfZippedData);
}

}  // namespace mdf_bench
