// Frames of buses: their signals, and their log as text.

#include <mdf_writer/files/file_output.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bus/bus_group.h"
#include "bus/frame_writer.h"
#include "reader/bus/bus_frames.h"
#include "reader/bus/dbc_reader.h"
#include "reader/decoding/decoding.h"
#include "reader/summary/stored_time.h"
#include "support/comparison.h"
#include "support/files.h"
#include "support/recordings.h"

namespace mdf_bench {

namespace {

constexpr std::size_t frames = 2000000;
constexpr std::uint32_t first_id = 0x100;
constexpr std::size_t messages = 200;
constexpr std::int64_t frame_distance = 100000;  // in nanoseconds
constexpr std::int64_t log_start = 1700000000;   // in seconds since 1970

/// A signal of 64 bits of data, as Intel numbers them.
struct Signal {
  std::uint32_t start;
  std::uint32_t bits;
  double factor;
  double offset;
};
constexpr std::array<Signal, 8> signal_layout = {{{0, 4, 1, 0},
                                                  {4, 12, 0.25, -40},
                                                  {16, 8, 1, 0},
                                                  {24, 16, 0.01, 0},
                                                  {40, 3, 1, 0},
                                                  {43, 5, 2, 10},
                                                  {48, 12, 0.5, -500},
                                                  {60, 4, 1, 0}}};

mdf_reader::BusDatabase database() {
  std::string text = "VERSION \"\"\nBU_: Node\n";
  for (std::size_t message = 0; message < messages; ++message) {
    const std::string number = std::to_string(message);
    text += "BO_ " + std::to_string(first_id + message) + " Message" + number + ": 8 Node\n";
    for (std::size_t i = 0; i < signal_layout.size(); ++i) {
      const Signal& signal = signal_layout[i];
      text += " SG_ Signal" + std::to_string(i) + " : " + std::to_string(signal.start) + '|' +
              std::to_string(signal.bits) + "@1+ (" + std::to_string(signal.factor) + ',' +
              std::to_string(signal.offset) + ") [0|0] \"\" Node\n";
    }
  }
  return mdf_reader::readDbc(
      text, [](const mdf_reader::TextFault& fault) { require(false, fault.sentence); });
}

std::uint32_t idOf(std::size_t frame) {
  return first_id + static_cast<std::uint32_t>(frame * 7919 % messages);
}

std::uint64_t dataOf(std::size_t frame) { return (frame + 1) * 0x9E3779B97F4A7C15U; }

/// What stands where in a record of a file that was made of a log.
constexpr std::size_t id_at = 9;
constexpr std::size_t length_at = 14;
constexpr std::size_t data_at = 15;

void writeLog(const std::string& path) {
  mdf_writer::Plan plan;
  plan.start.nanoseconds = static_cast<std::uint64_t>(log_start) * 1000000000U;
  mdf_tools::BusGroup group(plan, {"can0", 0, mdf_reader::BusFrame::Kind::data, false});
  mdf_writer::FileOutput output(path, mdf_writer::Existing::replace);
  mdf_writer::Options options;
  options.block_bytes = std::size_t{1} << 24U;
  options.flush_interval = 0;
  mdf_writer::Recording recording(output, plan, options);
  for (std::size_t i = 0; i < frames; ++i) {
    const std::uint64_t data = dataOf(i);
    mdf_reader::BusFrame frame;
    frame.bus = "can0";
    frame.id = idOf(i);
    frame.length = sizeof data;
    frame.data = {reinterpret_cast<const char*>(&data), sizeof data};
    group.set(frame, static_cast<std::uint16_t>(i));
    require(recording.append(group.group(), static_cast<std::int64_t>(i) * frame_distance),
            "the log to be recorded");
  }
  require(recording.finish(), "the log to be recorded");
}

/// A file of frames, and where its records lie.
struct Log {
  Log() {
    writeLog(file.path());
    const std::string bytes = file.contents();
    for (std::size_t at = bytes.find("##DT"); at != bytes.npos;) {
      std::uint64_t length = 0;
      std::memcpy(&length, bytes.data() + at + 8, sizeof length);
      extents.emplace_back(at + 24, static_cast<std::size_t>(length) - 24);
      at = bytes.find("##DT", at + static_cast<std::size_t>(length));
    }
  }

  /// Hands on the records, a piece at a time.
  template <class Take>
  void forEachRecord(const Take& take) const {
    static std::vector<char> bytes(piece * record_bytes);
    const Descriptor input(file.path());
    for (const auto& [begin, size] : extents) {
      input.goTo(begin);
      for (std::size_t done = 0; done < size;) {
        const std::size_t count = std::min(bytes.size(), size - done);
        input.read(bytes.data(), count);
        for (std::size_t at = 0; at < count; at += record_bytes) {
          take(bytes.data() + at);
        }
        done += count;
      }
    }
  }

  ScratchFile file{std::string()};
  std::vector<std::pair<std::size_t, std::size_t>> extents;
};

std::uint32_t idIn(const char* record) {
  std::uint32_t id = 0;
  std::memcpy(&id, record + id_at, sizeof id);
  return id & 0x1FFFFFFFU;
}

/// The times and signals of a message; when it is full, it begins anew.
struct Columns {
  static constexpr std::size_t rows = 512;
  std::array<std::array<double, rows>, signal_layout.size() + 1> values;
  std::size_t row = 0;
};

void shiftAndMask(const Log& log, std::vector<Columns>& columns) {
  log.forEachRecord([&](const char* record) {
    const std::uint32_t index = idIn(record) - first_id;
    if (index >= columns.size()) {
      return;
    }
    Columns& to = columns[index];
    std::uint64_t data = 0;
    std::memcpy(&data, record + data_at, sizeof data);
    std::memcpy(&to.values[0][to.row], record, sizeof(double));
    for (std::size_t i = 0; i < signal_layout.size(); ++i) {
      const Signal& signal = signal_layout[i];
      const std::uint64_t raw = data >> signal.start & ((std::uint64_t{1} << signal.bits) - 1);
      to.values[i + 1][to.row] = signal.offset + signal.factor * static_cast<double>(raw);
    }
    to.row = (to.row + 1) % Columns::rows;
  });
}

struct Decode {
  Log log;
  ScratchFile decoded{std::string()};
  mdf_reader::Decoding decoding{{{"bench.dbc", "", database()}}, false};
  std::vector<Columns> columns = std::vector<Columns>(messages);

  void run() {
    mdf_writer::Plan plan;
    mdf_writer::FileOutput output(decoded.path(), mdf_writer::Existing::replace);
    mdf_reader::InputFile input(log.file.path());
    const mdf_reader::FindingSink report = [](const mdf_reader::Finding& finding) {
      require(false, finding.sentence);
    };
    const mdf_reader::Decoded result = mdf_reader::decode(
        {{input, report, [](const std::string& /*note*/) {}}}, decoding, plan, output, {});
    require(result.frames == frames && result.groups == messages, "all frames to be decoded");
  }

  /// Whether the decoded file has the values that shifting and masking gives.
  bool isRight() {
    std::size_t rows = 0;
    bool are_right = true;
    readColumns(decoded.path(), {}, [&](const mdf_reader::Batch& batch, const auto& head) {
      const std::uint32_t id =
          first_id +
          static_cast<std::uint32_t>(std::stoul(std::string(head.group->shownName().substr(7))));
      rows += batch.rows();
      for (std::size_t row = 0; row < batch.rows(); ++row) {
        const auto frame = static_cast<std::size_t>(
            std::llround(batch.column(0).real(row) * 1e9 / frame_distance));
        are_right = are_right && idOf(frame) == id;
        for (std::size_t i = 0; i < signal_layout.size(); ++i) {
          const Signal& signal = signal_layout[i];
          const std::uint64_t raw = dataOf(frame) >> signal.start & ((1ULL << signal.bits) - 1);
          are_right = are_right &&
                      std::abs(batch.column(i + 1).real(row) -
                               (signal.offset + signal.factor * static_cast<double>(raw))) < 1e-9;
        }
      }
    });
    return are_right && rows == frames;
  }
};

/// @param reads whether the signals are read, too, as columns.
Sides decodeLog(bool reads) {
  const auto decode = std::make_shared<Decode>();
  Sides sides;
  sides.units = frames;
  sides.subject = [=](std::size_t times) {
    for (; times > 0; --times) {
      decode->run();
      if (reads) {
        readColumns(decode->decoded.path(), {}, [](const auto& /*rows*/, const auto& /*head*/) {});
      }
    }
  };
  sides.baseline = [=](std::size_t times) {
    for (; times > 0; --times) {
      shiftAndMask(decode->log, decode->columns);
    }
  };
  sides.is_right = [=] {
    decode->run();
    return decode->isRight();
  };
  return sides;
}

constexpr std::string_view digits = "0123456789ABCDEF";

/// As candump writes it.
void addLine(const char* record, std::string& text) {
  double seconds = 0;
  std::memcpy(&seconds, record, sizeof seconds);
  const auto microseconds =
      log_start * 1000000 + static_cast<std::int64_t>(std::llround(seconds * 1e6));
  char line[64] = "(0000000000.000000) can0 ";
  char* at = line + 1;
  std::int64_t rest = microseconds;
  for (std::size_t i = 17; i > 0; --i) {
    if (i != 11) {
      at[i - 1] = static_cast<char>('0' + rest % 10);
      rest /= 10;
    }
  }
  at = line + 25;
  const std::uint32_t id = idIn(record);
  for (int shift = 8; shift >= 0; shift -= 4) {
    *at++ = digits[id >> static_cast<unsigned>(shift) & 15U];
  }
  *at++ = '#';
  const auto length = static_cast<unsigned char>(record[length_at]);
  for (std::size_t i = 0; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(record[data_at + i]);
    *at++ = digits[byte >> 4U];
    *at++ = digits[byte & 15U];
  }
  *at++ = '\n';
  text.append(line, at);
}

struct Listing {
  Log log;

  /// A file's frames as the program lists them, text piece by piece.
  template <class Take>
  void list(const Take& take) {
    mdf_reader::InputFile input(log.file.path());
    const mdf_reader::FindingSink report = [](const mdf_reader::Finding& finding) {
      require(false, finding.sentence);
    };
    mdf_reader::BusFrames all(input, {}, {}, report, [](const std::string& /*note*/) {});
    mdf_tools::CandumpWriter writer(mdf_reader::startTimeOf(all.header()));
    std::string text;
    while (const mdf_reader::BusFrame* const frame = all.next()) {
      writer.add(*frame, text);
      hand(text, take);
    }
    take(text);
  }

  template <class Take>
  void listByHand(const Take& take) {
    std::string text;
    log.forEachRecord([&](const char* record) {
      addLine(record, text);
      hand(text, take);
    });
    take(text);
  }

 private:
  template <class Take>
  static void hand(std::string& text, const Take& take) {
    constexpr std::size_t most = 65536;
    if (text.size() >= most) {
      take(text);
      text.clear();
    }
  }
};

Sides listLog() {
  const auto listing = std::make_shared<Listing>();
  const auto bytes = std::make_shared<std::size_t>(0);
  const auto count = [=](const std::string& text) { *bytes += text.size(); };
  Sides sides;
  sides.units = frames;
  sides.subject = [=](std::size_t times) {
    for (; times > 0; --times) {
      listing->list(count);
    }
  };
  sides.baseline = [=](std::size_t times) {
    for (; times > 0; --times) {
      listing->listByHand(count);
    }
  };
  sides.is_right = [=] {
    std::string ours;
    std::string by_hand;
    listing->list([&](const std::string& text) { ours += text; });
    listing->listByHand([&](const std::string& text) { by_hand += text; });
    return ours == by_hand && !ours.empty();
  };
  return sides;
}

}  // namespace

void registerCases() {
  const std::string loop = "reading the frames, shifting and masking their signals";
  compare({"decode frames/to a file", loop, 3}, [] { return decodeLog(false); });
  compare({"decode frames/to a file, and its signals read as columns", loop, 3},
          [] { return decodeLog(true); });
  compare({"list frames/as candump's log", "a hand-written formatter", 1.5},
          [] { return listLog(); });
}

}  // namespace mdf_bench
