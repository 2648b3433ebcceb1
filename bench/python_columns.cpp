// The columns that scripts/bench-python compares Python with: makes its file, and reads it.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "support/recordings.h"

namespace {

using namespace mdf_bench;

constexpr std::size_t records = 5000000;

/// A measurement file, and its records alone.
void make(const std::string& folder) {
  const std::string data = mixedRecords(0, records);
  std::ofstream(folder + "/records.bin", std::ios::binary) << data;
  FileMaker maker(folder + "/records.mf4");
  const mdf_v4_10::LINK at = maker.appendData(data);
  maker.finish(maker.appendGroup({mixedChannels(), record_bytes, records}), at);
}

/// Seconds of CPU time for all columns.
double read(const std::string& folder) {
  const double begin = threadTime();
  std::size_t rows = 0;
  readColumns(folder + "/records.mf4", {},
              [&](const mdf_reader::Batch& batch, const auto&) { rows += batch.rows(); });
  require(rows == records, "all records to be read");
  return (threadTime() - begin) * 1e-9;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::string_view(argv[1]) == "make") {
    make(argv[2]);
    return 0;
  }
  if (argc == 3 && std::string_view(argv[1]) == "read") {
    read(argv[2]);
    std::printf("%.9f\n", read(argv[2]));
    return 0;
  }
  (void)std::fputs("Usage: python_columns make|read FOLDER\n", stderr);
  return 2;
}
