// Copying files, and making unfinished ones whole.

#include <libdeflate.h>
#include <mdf_writer/files/file_output.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "changing/copy_check.h"
#include "changing/file_copy.h"
#include "changing/finishing.h"
#include "mdf_v4_10.h"
#include "reader/bytes/input_file.h"
#include "support/comparison.h"
#include "support/files.h"
#include "support/recordings.h"

namespace mdf_bench {

namespace {

using namespace mdf_v4_10;
using mdf_tools::CopyOptions;
using mdf_tools::DataForm;

constexpr std::size_t records = 2000000;
constexpr std::size_t groups = 60;

struct Pair {
  ScratchFile original{std::string()};
  ScratchFile copy{std::string()};
};

void writeSorted(const std::string& path) {
  FileMaker maker(path);
  const LINK data = maker.appendData(mixedRecords(0, records));
  maker.finish(maker.appendGroup({mixedChannels(), record_bytes, records}), data);
}

void writeMixed(const std::string& path) { writeMixedFile(path, records, groups); }

/// As the command does it.
void copy(const Pair& files, const CopyOptions& options) {
  const mdf_reader::FindingSink report = [](const mdf_reader::Finding& finding) {
    require(false, finding.sentence);
  };
  const mdf_reader::NoteSink note = [](const std::string& /*sentence*/) {};
  mdf_reader::InputFile original(files.original.path());
  {
    const Descriptor file(files.copy.path());
    mdf_writer::FileOutput output(file.number());
    output.cut(mdf_tools::copyFile(original, options, output, report, note));
  }
  mdf_reader::InputFile made(files.copy.path());
  require(mdf_tools::checkCopy(made, original) == 0, "a copy without problems");
}

/// Reads a file, and writes its bytes to another one.
void passBytes(const Pair& files) {
  std::vector<char> bytes(std::size_t{1} << 20U);
  mdf_reader::InputFile original(files.original.path());
  const Descriptor from(files.original.path());
  const Descriptor to(files.copy.path());
  for (std::uint64_t left = original.size(); left > 0;) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, bytes.size()));
    from.read(bytes.data(), count);
    to.write(bytes.data(), count);
    left -= count;
  }
}

/// Zips the bytes of a file's records, block by block.
void zipBytes(const Pair& files, const DataForm& form) {
  const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
      libdeflate_alloc_compressor(form.level), libdeflate_free_compressor);
  const std::size_t block = form.block_bytes / record_bytes * record_bytes;
  std::string bytes(block, '\0');
  std::string packed(libdeflate_zlib_compress_bound(compressor.get(), block), '\0');
  const Descriptor from(files.original.path());
  const Descriptor to(files.copy.path());
  for (std::size_t left = records * record_bytes; left > 0;) {
    const std::size_t count = std::min(left, block);
    from.read(bytes.data(), count);
    to.write(packed.data(), libdeflate_zlib_compress(compressor.get(), bytes.data(), count,
                                                     packed.data(), packed.size()));
    left -= count;
  }
}

Sides sidesOf(void (*write)(const std::string& path), const CopyOptions& options) {
  const auto files = std::make_shared<Pair>();
  write(files->original.path());
  Sides sides;
  sides.units = records;
  sides.subject = [=](std::size_t times) {
    for (; times > 0; --times) {
      copy(*files, options);
    }
  };
  sides.baseline = [=](std::size_t times) {
    for (; times > 0; --times) {
      options.form ? zipBytes(*files, *options.form) : passBytes(*files);
    }
  };
  sides.is_right = [=] {
    copy(*files, options);
    std::size_t rows = 0;
    readColumns(files->copy.path(), {},
                [&](const mdf_reader::Batch& each, const auto&) { rows += each.rows(); });
    return rows == records;
  };
  return sides;
}

CopyOptions zipping(std::size_t threads) {
  CopyOptions options;
  options.form = DataForm();
  options.form->zip = mdf_tools::Zip::deflate;
  options.form->threads = threads;
  return options;
}

CopyOptions sorting() {
  CopyOptions options;
  options.sorts = true;
  return options;
}

/// The time that zipping takes on two cores, as a part of that on one.
double timeOnTwoCores() {
  constexpr std::size_t rounds = 5;
  Pair files;
  writeSorted(files.original.path());
  const auto timeOf = [&](std::size_t threads) {
    const auto begin = std::chrono::steady_clock::now();
    copy(files, zipping(threads));
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  std::vector<double> ratios;
  for (std::size_t round = 0; round < rounds; ++round) {
    const double alone = timeOf(1);
    ratios.push_back(timeOf(2) / alone);
  }
  return median(ratios);
}

/// How often the bytes of an unfinished file are read until it is known what it needs.
double readingsOfAnUnfinishedFile() {
  constexpr std::size_t many = 20 * records;
  const ScratchFile file{std::string()};
  writeMixedFile(file.path(), many, groups);
  {
    const Descriptor unfinished(file.path());
    unfinished.write("UnFinMF ", 8);
    unfinished.goTo(60);
    unfinished.write("\1\0", 2);
  }
  mdf_reader::InputFile input(file.path());
  const mdf_reader::FindingSink report = [](const mdf_reader::Finding& /*finding*/) {};
  std::uint64_t counted = 0;
  for (const auto& count : mdf_tools::finishingOf(input, report).counts) {
    counted += count.records.value_or(0);
  }
  require(counted == many, "all records to be counted");
  return static_cast<double>(input.bytesRead()) / static_cast<double>(input.size());
}

}  // namespace

void registerCases() {
  const std::string passing = "read(2) and write(2) of its bytes";
  compare({"copy/as it is", passing, 1.5}, [] { return sidesOf(writeSorted, {}); });
  compare({"copy/as it is, 60 groups unsorted", passing, 1.5},
          [] { return sidesOf(writeMixed, {}); });
  compare({"copy/60 groups sorted", passing, 2.5}, [] { return sidesOf(writeMixed, sorting()); });
  compare({"copy/zipped", "libdeflate, read(2) and write(2)", 1.1},
          [] { return sidesOf(writeSorted, zipping(1)); });
  measure({"copy/zipped on two cores", "(of the time on one)", 1 / 1.8}, timeOnTwoCores);
  measure({"copy/an unfinished file of 60 groups", "(readings of its bytes)", 1.01},
          readingsOfAnUnfinishedFile);
}

}  // namespace mdf_bench
