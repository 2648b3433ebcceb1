// Recording with the writer library: appending typed records, against copying their bytes into a
// buffer of 1 MiB and write(2); zipped on a thread of its own, against zipping those bytes alone.

#include <fcntl.h>
#include <libdeflate.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/files.h"
#include "writer/mdf_writer.h"
#include "writer_zip/zipper.h"

namespace mdf_bench {

namespace {

constexpr std::size_t records = 2000000;
constexpr std::size_t record_bytes = 8 + 8 + 4 + 2 + 4;
constexpr std::size_t buffer_bytes = std::size_t{1} << 20U;

struct Values {
  double pressure;
  float speed;
  std::uint16_t gear;
  std::uint32_t counter;
};

Values valuesOf(std::uint32_t i) {
  return {i * 0.5, static_cast<float>(i), static_cast<std::uint16_t>(i), i};
}

std::int64_t timeOf(std::uint32_t i) { return i * std::int64_t{1000}; }

double nanosecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

/// @param latencies gets how long each append took, in nanoseconds, unless there is none.
void record(const std::string& path, std::size_t block_bytes, mdf_writer::Packer* packer = nullptr,
            std::vector<double>* latencies = nullptr) {
  mdf_writer::Plan plan;
  mdf_writer::Group& group = plan.addGroup("group");
  const auto pressure = group.addChannel<double>("pressure");
  const auto speed = group.addChannel<float>("speed");
  const auto gear = group.addChannel<std::uint16_t>("gear");
  const auto counter = group.addChannel<std::uint32_t>("counter");
  mdf_writer::Options options;
  options.existing = mdf_writer::Existing::replace;
  options.block_bytes = block_bytes;
  options.packer = packer;
  mdf_writer::Recording recording(path, plan, options);
  for (std::uint32_t i = 0; i < records; ++i) {
    const Values values = valuesOf(i);
    group.set(pressure, values.pressure);
    group.set(speed, values.speed);
    group.set(gear, values.gear);
    group.set(counter, values.counter);
    const auto start = latencies != nullptr ? std::chrono::steady_clock::now()
                                            : std::chrono::steady_clock::time_point();
    recording.append(group, timeOf(i));
    if (latencies != nullptr) {
      latencies->push_back(nanosecondsSince(start));
    }
  }
  require(recording.finish(), recording.cause());
}

using Record = std::array<char, record_bytes>;

Record recordOf(std::uint32_t i) {
  const Values values = valuesOf(i);
  const double time = static_cast<double>(timeOf(i)) / 1e9;
  Record bytes;
  std::memcpy(bytes.data(), &time, 8);
  std::memcpy(bytes.data() + 8, &values.pressure, 8);
  std::memcpy(bytes.data() + 16, &values.speed, 4);
  std::memcpy(bytes.data() + 20, &values.gear, 2);
  std::memcpy(bytes.data() + 22, &values.counter, 4);
  return bytes;
}

void copyAndWrite(const std::string& path, std::vector<char>& buffer) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const auto flush = [&](std::size_t count) {
    require(write(file, buffer.data(), count) == static_cast<ssize_t>(count), "write(2) failed");
  };
  std::size_t used = 0;
  for (std::uint32_t i = 0; i < records; ++i) {
    if (used + record_bytes > buffer.size()) {
      flush(used);
      used = 0;
    }
    const Record bytes = recordOf(i);
    std::memcpy(&buffer[used], bytes.data(), record_bytes);
    used += record_bytes;
  }
  flush(used);
  close(file);
}

/// The data of a file of records in blocks of so many bytes, which begins with the first record.
bool holdsTheRecords(const std::string& file, std::size_t block_bytes) {
  const Record first = recordOf(0);
  const Record last = recordOf(records - 1);
  const std::size_t begins = file.find("##DT");
  return begins != std::string::npos && file.compare(0, 8, "MDF     ") == 0 &&
         file.compare(begins + 24, record_bytes, first.data(), record_bytes) == 0 &&
         file.compare(file.size() - record_bytes, record_bytes, last.data(), record_bytes) == 0 &&
         file.size() > records * record_bytes + records * record_bytes / block_bytes * 80;
}

Sides sides(std::size_t block_bytes) {
  const auto subject = std::make_shared<ScratchFile>(std::size_t{1});
  const auto baseline = std::make_shared<ScratchFile>(std::size_t{1});
  const auto buffer = std::make_shared<std::vector<char>>(buffer_bytes);
  return {[=](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              record(subject->path(), block_bytes);
            }
          },
          [=](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              copyAndWrite(baseline->path(), *buffer);
            }
          },
          [=] {
            record(subject->path(), block_bytes);
            return holdsTheRecords(subject->contents(), block_bytes);
          },
          records};
}

constexpr mdf_writer::ZipOptions fast_on_own_thread = {1, false, true};

/// Zips the records in blocks, as the recording does.
void zipAlone(const std::string& bytes) {
  const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor(
      libdeflate_alloc_compressor(fast_on_own_thread.level), libdeflate_free_compressor);
  std::vector<char> zip(buffer_bytes);
  constexpr std::size_t block = buffer_bytes / record_bytes * record_bytes;
  for (std::size_t at = 0; at < bytes.size(); at += block) {
    require(
        libdeflate_zlib_compress(compressor.get(), &bytes[at], std::min(block, bytes.size() - at),
                                 zip.data(), zip.size()) > 0,
        "libdeflate did not zip");
  }
}

/// By the clock: the work is done by two threads.
double timesZippingAlone() {
  std::string bytes;
  for (std::uint32_t i = 0; i < records; ++i) {
    const Record each = recordOf(i);
    bytes.append(each.data(), each.size());
  }
  const ScratchFile file(std::size_t{1});
  std::vector<double> alone;
  std::vector<double> recorded;
  for (int round = 0; round < 9; ++round) {
    auto start = std::chrono::steady_clock::now();
    zipAlone(bytes);
    alone.push_back(nanosecondsSince(start));
    start = std::chrono::steady_clock::now();
    mdf_writer::Zipper zipper(fast_on_own_thread);
    record(file.path(), buffer_bytes, &zipper);
    recorded.push_back(nanosecondsSince(start));
  }
  return median(recorded) / median(alone);
}

/// How long all but one of a thousand appends take at most, in nanoseconds.
double latencyOfAppend() {
  const ScratchFile file(std::size_t{1});
  mdf_writer::Zipper zipper(fast_on_own_thread);
  std::vector<double> latencies;
  latencies.reserve(records);
  record(file.path(), buffer_bytes, &zipper, &latencies);
  const auto slow = latencies.end() - records / 1000;
  std::nth_element(latencies.begin(), slow, latencies.end());
  return *slow;
}

}  // namespace

void registerCases() {
  const std::string name = "record 2 million typed records of 26 bytes/blocks of ";
  const std::string baseline = "memcpy into 1 MiB and write(2)";
  compare({name + "64 KiB", baseline, 1.5}, [] { return sides(std::size_t{1} << 16U); });
  compare({name + "1 MiB", baseline, 1.5}, [] { return sides(buffer_bytes); });
  const std::string zipped = "record zipped in blocks of 1 MiB/";
  measure({zipped + "by the clock", "(times zipping alone)", 1 / 0.9}, timesZippingAlone);
  measure({zipped + "99.9th percentile of append", "(ns)", 20000}, latencyOfAppend);
}

}  // namespace mdf_bench
