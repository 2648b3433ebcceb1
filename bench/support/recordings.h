#ifndef MDF_BENCH_SUPPORT_RECORDINGS_H_
#define MDF_BENCH_SUPPORT_RECORDINGS_H_

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"
#include "support/comparison.h"

namespace mdf_bench {

/// A channel of a file that is to be read.
struct Wanted {
  mdf_v4_10::CNBLOCK::MDF_CN_DATATYPES_t type;
  std::uint32_t byte_offset;
  std::uint32_t bit_count;
  std::uint8_t bit_offset = 0;
  bool is_master = false;
};

/// What is to be said of a channel group.
struct Group {
  std::vector<Wanted> channels;
  std::uint32_t record_bytes;
  std::uint64_t records;
  mdf_v4_10::LINK conversion = 0;  ///< of all channels
  std::uint64_t record_id = 0;
  mdf_v4_10::LINK next = 0;
};

struct ZippedBlock {
  mdf_v4_10::LINK block;
  std::size_t stream_at;  ///< in the file
  std::size_t stored;     ///< bytes of the stream
  std::size_t original;
};

/// Appends blocks to a file, from the leaves to the root.
class FileMaker {
 public:
  explicit FileMaker(const std::string& path);

  template <class Block>
  mdf_v4_10::LINK append(const Block& block) {
    const auto at = static_cast<mdf_v4_10::LINK>(file_.tellp());
    file_ << block << std::string(static_cast<std::size_t>(8 - file_.tellp() % 8) % 8, '\0');
    return at;
  }

  mdf_v4_10::LINK appendText(const std::string& text);
  mdf_v4_10::LINK appendData(const std::string& data);
  /// Appends a zipped block.
  /// @param columns bytes of a row for data that is transposed first; 0 for other data.
  ZippedBlock appendZipped(const std::string& data, std::uint32_t columns);
  /// Appends a list of blocks that all hold so many bytes, but for the last one.
  mdf_v4_10::LINK appendList(const std::vector<mdf_v4_10::LINK>& blocks, std::uint64_t bytes);
  mdf_v4_10::LINK appendGroup(const Group& group);

  /// Ends the file with one data group.
  void finish(mdf_v4_10::LINK group, mdf_v4_10::LINK data, bool has_ids = false);

 private:
  std::ofstream file_;
};

constexpr std::uint32_t record_bytes = 26;

/// Records of two doubles, a float, and integers of 16 and 32 bits, from a number on. The first
/// number is the time.
std::string mixedRecords(std::size_t first, std::size_t count);
std::vector<Wanted> mixedChannels();

/// Records of many groups in one data group, in any order, each after a record id of one byte.
struct MixedFile {
  std::vector<std::uint64_t> counts;  ///< of records, group by group
  std::size_t data_at;                ///< in the file
};
MixedFile writeMixedFile(const std::string& path, std::size_t records, std::size_t groups);

constexpr std::size_t piece = 8192;       // records that a hand-written program reads at once
constexpr std::size_t batch = 8 * piece;  // and that it puts into columns before it goes on

/// What a hand-written program makes of records: the bytes of its columns.
struct Columns {
  std::array<std::vector<std::uint64_t>, 6> values;
  Columns() { std::fill(values.begin(), values.end(), std::vector<std::uint64_t>(batch)); }

  template <class Number>
  Number* at(std::size_t column, std::size_t row) {
    return reinterpret_cast<Number*>(values[column].data()) + row;
  }
};

template <std::uint32_t size, class Number, class Out, class Change>
void load(const char* from, std::size_t count, Out* to, const Change& change) {
  for (std::size_t i = 0; i < count; ++i) {
    Number number{};
    std::memcpy(&number, from + i * size, sizeof number);
    to[i] = change(number);
  }
}

template <class Number>
void loadStored(const char* from, std::size_t count, Number* to) {
  load<record_bytes, Number>(from, count, to, [](Number number) { return number; });
}

/// Turns records into rows of columns, from a row on.
inline void loadMixed(const char* from, std::size_t count, std::size_t row, Columns& to) {
  loadStored(from, count, to.at<double>(0, row));
  loadStored(from + 8, count, to.at<double>(1, row));
  loadStored(from + 16, count, to.at<float>(2, row));
  loadStored(from + 20, count, to.at<std::uint16_t>(3, row));
  loadStored(from + 22, count, to.at<std::uint32_t>(4, row));
}

/// Reads a file as columns on one thread, and hands the batches on. Nothing may be wrong with it.
/// Returns how many bytes of the file were read.
template <class Take>
std::uint64_t readColumns(const std::string& path, mdf_reader::Query query, const Take& take) {
  mdf_reader::InputFile file(path);
  const mdf_reader::FindingSink report = [](const mdf_reader::Finding& finding) {
    require(false, finding.sentence);
  };
  const mdf_reader::NoteSink note = [](const std::string& /*text*/) {};
  query.threads = 1;
  mdf_reader::Tables tables(file, query, report, note);
  while (mdf_reader::Table* const table = tables.next()) {
    while (const mdf_reader::Batch* const rows = table->next()) {
      take(*rows, table->head());
    }
  }
  return file.bytesRead();
}

}  // namespace mdf_bench

#endif  // MDF_BENCH_SUPPORT_RECORDINGS_H_
