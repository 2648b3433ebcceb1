// The program: looking through a file, and recording.

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <streambuf>
#include <string>
#include <vector>

#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "support/comparison.h"
#include "support/files.h"
#include "support/sample_blocks.h"

namespace mdf_bench {

namespace {

using mdf_reader::InputFile;
using mdf_v4_10::CNBLOCK;
using mdf_v4_10::HDBLOCK;
using mdf_v4_10::IDBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::TXBLOCK;
using mdf_v4_10::UINT64;

/// A header, and channels each followed by a name.
constexpr std::size_t blocks_in_file = 1000001;

void writeManyBlocks(const std::string& path) {
  std::vector<char> buffer(std::size_t{1} << 20U);
  std::ofstream file;
  file.rdbuf()->pubsetbuf(buffer.data(), static_cast<std::streamsize>(buffer.size()));
  file.open(path, std::ios_base::binary);
  const TXBLOCK name("engine_speed...", 16);
  LINK end = IDBLOCK::IDBLOCK_SIZE + HDBLOCK::HDBLOCK_SIZE;
  file << IDBLOCK("example ") << HDBLOCK(0, end, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  CNBLOCK channel = sampleChannel();
  channel.setDatablock(0);
  for (std::size_t left = blocks_in_file / 2; left != 0; --left) {
    channel.setNameTxblock(end + static_cast<LINK>(channel.getSize()));
    end += static_cast<LINK>(channel.getSize() + name.getSize());
    channel.setNextCnblock(left > 1 ? end : 0);
    file << channel << name;
  }
  require(file.flush().good(), "writing a file of many blocks");
}

std::vector<std::uint64_t> walk(InputFile& file) {
  return mdf_reader::walkBlocks(file, nullptr).offsets();
}

/// A stream buffer over a file in memory.
class MappedFile : public std::streambuf {
 public:
  explicit MappedFile(const std::string& path) {
    const int number = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    size_ = static_cast<std::size_t>(lseek(number, 0, SEEK_END));
    void* const memory = mmap(nullptr, size_, PROT_READ, MAP_SHARED | MAP_POPULATE, number, 0);
    close(number);
    require(memory != MAP_FAILED, "mapping " + path);
    bytes_ = static_cast<char*>(memory);
    setg(bytes_, bytes_, bytes_ + size_);
  }
  ~MappedFile() override { munmap(bytes_, size_); }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

 protected:
  pos_type seekoff(off_type offset, std::ios_base::seekdir /*from the beginning*/,
                   std::ios_base::openmode /*in*/) override {
    setg(bytes_, bytes_ + offset, bytes_ + size_);
    return offset;
  }
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override {
    return seekoff(position, std::ios_base::beg, which);
  }

 private:
  std::size_t size_ = 0;
  char* bytes_ = nullptr;
};

struct ManyBlocks {
  ManyBlocks() { writeManyBlocks(scratch.path()); }

  ScratchFile scratch{std::string()};
};

struct Scan : ManyBlocks {
  InputFile file{scratch.path()};
  std::vector<std::uint64_t> offsets = walk(file);
  MappedFile mapped{scratch.path()};
  std::istream stream{&mapped};
};

Sides scanManyBlocks() {
  const auto scan = std::make_shared<Scan>();
  return {[scan](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              benchmark::DoNotOptimize(walk(scan->file).data());
            }
          },
          [scan](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              for (const std::uint64_t offset : scan->offsets) {
                char header[mdf_v4_10::HeaderSection::HEADER_SIZE];
                scan->stream.seekg(static_cast<std::streamoff>(offset));
                scan->stream.read(header, sizeof header);
                benchmark::DoNotOptimize(&header);
              }
            }
          },
          [scan] { return walk(scan->file).size() == blocks_in_file && scan->stream.good(); },
          blocks_in_file};
}

/// Runs the program mdf, with its standard error in a file.
rusage runProgram(const std::vector<std::string>& arguments, const std::string& messages) {
  std::string program = MDF_PROGRAM;
  std::vector<char*> argv = {program.data()};
  std::vector<std::string> words = arguments;
  for (std::string& word : words) {
    argv.push_back(word.data());
  }
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, messages.c_str(), O_WRONLY | O_TRUNC,
                                   0);
  pid_t child = 0;
  require(posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ) == 0,
          "starting " + program);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage used{};
  require(wait4(child, &status, 0, &used) == child && status == 0, program + " " + arguments[0]);
  return used;
}

/// The system counts the starting process's memory as the program's, too.
double mebibytesOfDump() {
  const ManyBlocks file;
  const ScratchFile messages{std::string()};
  const rusage dump = runProgram({"dump", file.scratch.path()}, messages.path());
  rusage own{};
  getrusage(RUSAGE_SELF, &own);
  require(own.ru_maxrss < dump.ru_maxrss, "a dump with more memory than this program");
  return static_cast<double>(dump.ru_maxrss) / 1024;
}

constexpr std::size_t write_size = 65536;

/// Writes a fresh file piece by piece, as large as the recording.
void writePlainFile(const std::string& path, const std::string& bytes) {
  require(truncate(path.c_str(), 0) == 0, "emptying " + path);
  const Descriptor file(path);
  for (std::size_t at = 0; at < bytes.size(); at += write_size) {
    file.write(bytes.data() + at, std::min(write_size, bytes.size() - at));
  }
}

double nanoseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_usec) * 1e3;
}

unsigned long long recordsIn(const std::string& message) {
  const std::string start = "recorded ";
  require(message.compare(0, start.size(), start) == 0, message);
  const unsigned long long records = std::strtoull(message.c_str() + start.size(), nullptr, 10);
  require(records > 0, message);
  return records;
}

/// The highest rate that can be asked for; samples that come too late for it are left out.
double recordAtHighestRate() {
  constexpr int repetitions = 9;
  const ScratchFile file{std::string()};
  const ScratchFile plain{std::string()};
  const ScratchFile messages{std::string()};
  std::vector<double> program;
  std::vector<double> baseline;
  for (int i = 0; i < repetitions; ++i) {
    const rusage used =
        runProgram({"record", file.path(), "--duration", "500ms", "--rate", "100kHz", "--force"},
                   messages.path());
    const auto records = static_cast<double>(recordsIn(messages.contents()));
    program.push_back((nanoseconds(used.ru_utime) + nanoseconds(used.ru_stime)) / records);
    const std::string bytes = file.contents();
    const double start = threadTime();
    writePlainFile(plain.path(), bytes);
    baseline.push_back((threadTime() - start) / records);
  }
  return median(program) / median(baseline);
}

}  // namespace

void registerCases() {
  // The first one, as long as this program is small itself.
  measure({"look through a million blocks/memory of mdf dump", "(MiB)", 64}, mebibytesOfDump);
  compare({"look through a million blocks/time for each",
           "seek and read of the headers, mapped file", 250, Limit::nanoseconds},
          scanManyBlocks);
  measure({"record/mdf record at 100 kHz", "write(2) of the same bytes", 3}, recordAtHighestRate);
}

}  // namespace mdf_bench
