// Reading channels as columns.

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "printing/table_writers.h"
#include "support/comparison.h"
#include "support/files.h"
#include "support/recordings.h"

namespace mdf_bench {

namespace {

using namespace mdf_v4_10;

constexpr std::size_t records = 2000000;

/// A file of records, and where its data begins.
struct Recording {
  std::shared_ptr<ScratchFile> file;
  std::string data;
  std::size_t data_at = 0;  ///< in the file
};

/// A recording of one channel group.
Recording recordingOf(FileMaker& maker, std::string data, Group group) {
  group.records = data.size() / group.record_bytes;
  const LINK at = maker.appendData(data);
  maker.finish(maker.appendGroup(group), at);
  Recording recording;
  recording.data = std::move(data);
  recording.data_at = static_cast<std::size_t>(at) + DTBLOCK::DTBLOCK_CONSTANT_SIZE;
  return recording;
}

Recording recordingOf(const std::vector<Wanted>& channels, const CCBLOCK* conversion = nullptr) {
  auto file = std::make_shared<ScratchFile>(std::string());
  FileMaker maker(file->path());
  const LINK at = conversion == nullptr ? 0 : maker.append(*conversion);
  Recording recording =
      recordingOf(maker, mixedRecords(0, records), {channels, record_bytes, 0, at});
  recording.file = file;
  return recording;
}

/// Turns records into rows of columns, from a row on.
using Load = void (*)(const char* from, std::size_t count, std::size_t row, Columns& to);

constexpr double offset = -40;
constexpr double factor = 0.25;

template <class Number>
void loadPhysical(const char* from, std::size_t count, double* to) {
  load<record_bytes, Number>(
      from, count, to, [](Number number) { return offset + factor * static_cast<double>(number); });
}

void loadLinear(const char* from, std::size_t count, std::size_t row, Columns& to) {
  loadPhysical<double>(from, count, to.at<double>(0, row));
  loadPhysical<double>(from + 8, count, to.at<double>(1, row));
  loadPhysical<float>(from + 16, count, to.at<double>(2, row));
  loadPhysical<std::uint16_t>(from + 20, count, to.at<double>(3, row));
  loadPhysical<std::uint32_t>(from + 22, count, to.at<double>(4, row));
}

/// Bit fields of 3, 12 and 48 bits, little-endian and big-endian.
std::vector<Wanted> bitFields() {
  return {{CNBLOCK::CN_DATATYPE_UINT_LE, 0, 3, 2},   {CNBLOCK::CN_DATATYPE_UINT_LE, 0, 12, 5},
          {CNBLOCK::CN_DATATYPE_UINT_LE, 2, 48, 1},  {CNBLOCK::CN_DATATYPE_UINT_BE, 10, 3, 2},
          {CNBLOCK::CN_DATATYPE_UINT_BE, 10, 12, 3}, {CNBLOCK::CN_DATATYPE_UINT_BE, 12, 48, 0}};
}

/// A file and a hand-written program for it.
struct Contest {
  Recording recording;
  std::uint32_t size;  ///< bytes of a record
  Load load;
  Columns columns;
  std::string text;
};

/// Reads the file's data, which begins after the header block or after a conversion.
template <class Take>
void readByHand(const Contest& contest, const Take& take) {
  static std::vector<char> bytes;
  bytes.resize(piece * contest.size);
  const Descriptor file(contest.recording.file->path());
  file.goTo(contest.recording.data_at);
  for (std::size_t done = 0; done < records; done += piece) {
    const std::size_t count = std::min(piece, records - done);
    file.read(bytes.data(), count * contest.size);
    take(bytes.data(), count, done);
  }
}

/// Whether the reader's columns hold what the hand-written program has.
bool areTheSame(Contest& contest) {
  std::size_t done = 0;
  bool are_same = true;
  readColumns(contest.recording.file->path(), {}, [&](const mdf_reader::Batch& rows, const auto&) {
    contest.load(contest.recording.data.data() + done * contest.size, rows.rows(), 0,
                 contest.columns);
    for (std::size_t i = 0; i < rows.columnCount(); ++i) {
      const mdf_reader::ColumnData& column = rows.column(i);
      are_same = are_same && std::memcmp(column.bytes(), contest.columns.values[i].data(),
                                         rows.rows() * widthOf(column.type())) == 0;
    }
    done += rows.rows();
  });
  return are_same && done == records;
}

Sides sidesOf(Recording recording, std::uint32_t size, Load load, Load load_by_baseline) {
  const auto contest = std::make_shared<Contest>(Contest{std::move(recording), size, load, {}, {}});
  Sides sides;
  sides.units = records;
  sides.subject = [=](std::size_t times) {
    for (; times > 0; --times) {
      std::size_t rows = 0;
      readColumns(contest->recording.file->path(), {},
                  [&](const mdf_reader::Batch& each, const auto&) { rows += each.rows(); });
      require(rows == records, "all rows to be read");
    }
  };
  sides.baseline = [=](std::size_t times) {
    for (; times > 0; --times) {
      readByHand(*contest, [&](const char* from, std::size_t count, std::size_t done) {
        load_by_baseline(from, count, done % batch, contest->columns);
      });
    }
  };
  sides.is_right = [=] { return load != load_by_baseline || areTheSame(*contest); };
  return sides;
}

Sides storedSides() {
  return sidesOf(recordingOf(mixedChannels()), record_bytes, loadMixed, loadMixed);
}

Sides linearSides() {
  CCBLOCK linear(CCBLOCK::CC_CONVTYPE_LINEAR);
  linear.addValue(offset);
  linear.addValue(factor);
  return sidesOf(recordingOf(mixedChannels(), &linear), record_bytes, loadLinear, loadLinear);
}

/// The baseline loads as many columns of the same records.
void loadSix(const char* from, std::size_t count, std::size_t row, Columns& to) {
  loadMixed(from, count, row, to);
  loadStored(from + 18, count, to.at<std::uint64_t>(5, row));
}

Sides bitFieldSides() { return sidesOf(recordingOf(bitFields()), record_bytes, nullptr, loadSix); }

template <class Number>
void appendDigits(Number number, char separator, std::string& text) {
  std::array<char, 32> digits;
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  *end = separator;
  text.append(digits.data(), static_cast<std::size_t>(end - digits.data()) + 1);
}

void appendRows(const char* from, std::size_t count, std::string& text) {
  for (const char* const end = from + count * record_bytes; from < end; from += record_bytes) {
    double a = 0;
    double b = 0;
    float c = 0;
    std::uint16_t d = 0;
    std::uint32_t e = 0;
    std::memcpy(&a, from, 8);
    std::memcpy(&b, from + 8, 8);
    std::memcpy(&c, from + 16, 4);
    std::memcpy(&d, from + 20, 2);
    std::memcpy(&e, from + 22, 4);
    appendDigits(a, ',', text);
    appendDigits(b, ',', text);
    appendDigits(static_cast<double>(c), ',', text);
    appendDigits(d, ',', text);
    appendDigits(e, '\n', text);
  }
}

/// CSV of a file, by the reader and by a function that appends the text of records. Both write to a
/// string that is thrown away piece by piece, and keep the last piece.
template <class Append>
Sides csvSidesOf(const std::shared_ptr<Contest>& contest, Append append) {
  const auto by_reader = std::make_shared<std::string>();
  Sides sides;
  sides.units = records;
  sides.subject = [=](std::size_t times) {
    for (; times > 0; --times) {
      readColumns(contest->recording.file->path(), {},
                  [&](const mdf_reader::Batch& rows, const mdf_reader::TableHead&) {
                    for (std::size_t row = 0; row < rows.rows(); row += 1024) {
                      by_reader->clear();
                      mdf_tools::CsvWriter().addRows(rows, row, std::min(row + 1024, rows.rows()),
                                                     *by_reader);
                    }
                  });
    }
  };
  sides.baseline = [=](std::size_t times) {
    for (; times > 0; --times) {
      readByHand(*contest, [&](const char* from, std::size_t count, std::size_t /*done*/) {
        contest->text.clear();
        append(from, count, contest->text);
      });
    }
  };
  sides.is_right = [=] {
    return by_reader->size() <= contest->text.size() &&
           contest->text.compare(contest->text.size() - by_reader->size(), by_reader->size(),
                                 *by_reader) == 0;
  };
  return sides;
}

Sides csvSides() {
  return csvSidesOf(std::make_shared<Contest>(
                        Contest{recordingOf(mixedChannels()), record_bytes, nullptr, {}, {}}),
                    appendRows);
}

constexpr std::size_t states = 40;

std::string stateName(std::size_t state) { return "state number " + std::to_string(state); }

/// A channel of 16 bits whose values are texts.
Recording stateRecording() {
  std::string data;
  std::uint32_t random = 1;
  for (std::size_t i = 0; i < records; ++i) {
    random = random * 1664525 + 1013904223;
    data += {static_cast<char>((random >> 16U) % states), '\0'};
  }
  auto file = std::make_shared<ScratchFile>(std::string());
  FileMaker maker(file->path());
  CCBLOCK texts(CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB);
  for (std::size_t state = 0; state < states; ++state) {
    texts.addValue(static_cast<REAL>(state));
    texts.addReference(maker.appendText(stateName(state)));
  }
  Recording recording = recordingOf(
      maker, std::move(data), {{{CNBLOCK::CN_DATATYPE_UINT_LE, 0, 16}}, 2, 0, maker.append(texts)});
  recording.file = file;
  return recording;
}

Sides stateSides() {
  const auto contest = std::make_shared<Contest>(Contest{stateRecording(), 2, nullptr, {}, {}});
  const auto names = std::make_shared<std::vector<std::string>>(65536);
  for (std::size_t state = 0; state < states; ++state) {
    (*names)[state] = stateName(state) + '\n';
  }
  return csvSidesOf(contest, [=](const char* from, std::size_t count, std::string& text) {
    for (std::size_t i = 0; i < count; ++i) {
      std::uint16_t state = 0;
      std::memcpy(&state, from + 2 * i, sizeof state);
      text += (*names)[state];
    }
  });
}

}  // namespace

void registerCases() {
  compare({"columns/five stored numbers", "read() and strided loads", 1.3}, storedSides);
  compare(
      {"columns/five linear conversions", "the same with a multiplication and an addition", 1.5},
      linearSides);
  compare({"columns/six bit fields of 3 to 48 bits", "read() and six strided loads", 3},
          bitFieldSides);
  compare({"columns/CSV of five numbers", "a loop of std::to_chars", 1.3}, csvSides);
  compare({"columns/CSV of texts for a channel of 16 bits", "a lookup in a table", 2}, stateSides);
}

}  // namespace mdf_bench
