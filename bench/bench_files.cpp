// Writing blocks to files and reading them from there.

#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/files.h"
#include "support/sample_blocks.h"

namespace mdf_bench {

namespace {

using mdf_v4_10::DTBLOCK;

constexpr std::size_t kibi = 1024;
constexpr std::size_t mebi = kibi * kibi;

std::string repeated(const std::string& bytes, std::size_t times) {
  std::string all;
  all.reserve(bytes.size() * times);
  for (std::size_t i = 0; i < times; ++i) {
    all += bytes;
  }
  return all;
}

/// A file for each side, with the same bytes in the end, and how each is written.
struct FilePair {
  /// `buffer_size` 0 leaves the stream its own buffer.
  FilePair(std::string bytes_to_write, std::size_t buffer_size)
      : bytes(std::move(bytes_to_write)), buffer(buffer_size) {
    if (buffer_size != 0) {
      stream.rdbuf()->pubsetbuf(buffer.data(), static_cast<std::streamsize>(buffer_size));
    }
    stream.open(subject.path(), std::ios_base::binary | std::ios_base::in | std::ios_base::out);
    require(stream.is_open(), "opening " + subject.path());
  }

  bool isRight() const { return subject.contents() == bytes && baseline.contents() == bytes; }

  std::string bytes;
  ScratchFile subject{bytes.size()};
  ScratchFile baseline{bytes.size()};
  std::vector<char> buffer;
  std::fstream stream;
  Descriptor descriptor{baseline.path()};
};

/// The small blocks of which most of a file's description consists.
class MixedBlocks {
 public:
  static constexpr std::size_t kinds = 8;

  void write(std::ostream& os) const {
    os << channel_ << name_ << conversion_ << unit_ << source_ << group_ << data_group_ << event_;
  }

  std::vector<std::string> bytes() const {
    return {written(channel_), written(name_),  written(conversion_), written(unit_),
            written(source_),  written(group_), written(data_group_), written(event_)};
  }

 private:
  mdf_v4_10::CNBLOCK channel_ = sampleChannel();
  mdf_v4_10::TXBLOCK name_{"engine_speed", 12};
  mdf_v4_10::CCBLOCK conversion_ = sampleConversion(2);
  mdf_v4_10::MDBLOCK unit_{"<CNunit><TX>km/h</TX></CNunit>", 30};
  mdf_v4_10::SIBLOCK source_ = sampleSource();
  mdf_v4_10::CGBLOCK group_ = sampleChannelGroup();
  mdf_v4_10::DGBLOCK data_group_ = sampleDataGroup();
  mdf_v4_10::EVBLOCK event_ = sampleEvent(1);
};

/// The least that encoding can cost: the blocks' bytes are copied.
class CopyingWriter {
 public:
  explicit CopyingWriter(const Descriptor& file) : file_(file) {}

  void put(const std::string& bytes) {
    if (bytes.size() > memory_.size() - used_) {
      flush();
    }
    std::memcpy(memory_.data() + used_, bytes.data(), bytes.size());
    used_ += bytes.size();
  }

  void flush() {
    file_.write(memory_.data(), used_);
    used_ = 0;
  }

 private:
  const Descriptor& file_;
  std::vector<char> memory_ = std::vector<char>(mebi);
  std::size_t used_ = 0;
};

Sides writeMixedBlocks(std::size_t buffer_size) {
  constexpr std::size_t blocks = 200000;
  constexpr std::size_t turns = blocks / MixedBlocks::kinds;
  const MixedBlocks mixed;
  std::string turn;
  for (const std::string& block : mixed.bytes()) {
    turn += block;
  }
  const auto files = std::make_shared<FilePair>(repeated(turn, turns), buffer_size);
  const auto writer = std::make_shared<CopyingWriter>(files->descriptor);
  return {[files, mixed](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              files->stream.seekp(0);
              for (std::size_t k = 0; k < turns; ++k) {
                mixed.write(files->stream);
              }
              files->stream.flush();
            }
          },
          [files, writer, bytes = mixed.bytes()](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              files->descriptor.goTo(0);
              for (std::size_t k = 0; k < turns; ++k) {
                for (const std::string& block : bytes) {
                  writer->put(block);
                }
              }
              writer->flush();
            }
          },
          [files] { return files->isRight(); }, blocks};
}

DTBLOCK dataBlock(std::size_t size) {
  DTBLOCK block;
  block.dt_data.resize(size);
  for (std::size_t i = 0; i < size; ++i) {
    block.dt_data[i] = static_cast<std::uint8_t>(i * 7 + i / 4096);
  }
  return block;
}

/// Memory that begins at the same address modulo the page size as other memory does.
class AlignedCopy {
 public:
  AlignedCopy(const std::string& bytes, const void* like) : memory_(bytes.size() + page) {
    const auto offset = [](const void* at) { return reinterpret_cast<std::uintptr_t>(at) % page; };
    at_ = memory_.data() + (page + offset(like) - offset(memory_.data())) % page;
    std::memcpy(at_, bytes.data(), bytes.size());
  }

  const char* data() const { return at_; }

 private:
  static constexpr std::size_t page = 4096;

  std::vector<char> memory_;
  char* at_;
};

/// Many small blocks one after another, or a single large one.
std::size_t dataBlocksInFile(std::size_t size) {
  return std::max<std::size_t>(16 * mebi / size, 1);
}

Sides writeDataBlocks(std::size_t size) {
  const auto block = std::make_shared<DTBLOCK>(dataBlock(size));
  const std::string bytes = written(*block);
  const std::size_t blocks = dataBlocksInFile(size);
  const auto files = std::make_shared<FilePair>(repeated(bytes, blocks), 0);
  const auto copy =
      std::make_shared<AlignedCopy>(bytes, block->dt_data.data() - DTBLOCK::DTBLOCK_CONSTANT_SIZE);
  return {[files, block, blocks](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              files->stream.seekp(0);
              for (std::size_t k = 0; k < blocks; ++k) {
                files->stream << *block;
              }
            }
          },
          [files, copy, blocks, count = bytes.size()](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              files->descriptor.goTo(0);
              for (std::size_t k = 0; k < blocks; ++k) {
                files->descriptor.write(copy->data(), count);
              }
            }
          },
          [files] { return files->isRight(); }, blocks};
}

double writeCallsOf(std::size_t size) {
  const DTBLOCK block = dataBlock(size);
  const ScratchFile file(written(block));
  std::ofstream stream(file.path(), std::ios_base::binary);
  const std::uint64_t before = writeCalls();
  stream << block;
  const std::uint64_t calls = writeCalls() - before;
  require(file.contents() == written(block), "writing a data block");
  return static_cast<double>(calls);
}

struct ReadDataFile {
  std::vector<std::uint8_t> data = dataBlock(64 * mebi).dt_data;
  ScratchFile file{written(DTBLOCK(data.data(), data.size()))};
  std::ifstream stream{file.path(), std::ios_base::binary};
  Descriptor descriptor{file.path()};

  DTBLOCK readBlock() {
    stream.seekg(0);
    return DTBLOCK(stream);
  }

  /// What is read into memory made for it.
  void readTo(void* memory) const {
    char header[DTBLOCK::DTBLOCK_CONSTANT_SIZE];
    descriptor.goTo(0);
    descriptor.read(header, sizeof header);
    descriptor.read(static_cast<char*>(memory), data.size());
    benchmark::DoNotOptimize(memory);
  }

  std::vector<std::uint8_t> readVector() const {
    std::vector<std::uint8_t> bytes(data.size());
    readTo(bytes.data());
    return bytes;
  }

  void readMemory() const {
    const std::unique_ptr<char[]> memory(new char[data.size()]);
    readTo(memory.get());
  }
};

Sides readDataBlock(void (*baseline)(const ReadDataFile&)) {
  const auto file = std::make_shared<ReadDataFile>();
  return {[file](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              file->readBlock();
            }
          },
          [file, baseline](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              baseline(*file);
            }
          },
          [file] {
            return file->readBlock().dt_data == file->data && file->readVector() == file->data;
          }};
}

}  // namespace

void registerCases() {
  const std::string mixed = "write 200,000 mixed small blocks to a file/";
  const char* const copying = "memcpy of each block to 1 MiB of memory and write(2) of that";
  compare({mixed + "default buffer", copying, 2.3}, [] { return writeMixedBlocks(0); });
  compare({mixed + "64 KiB buffer", copying, 1.7}, [] { return writeMixedBlocks(64 * kibi); });

  const std::pair<const char*, std::size_t> sizes[] = {
      {"4 KiB", 4 * kibi}, {"64 KiB", 64 * kibi}, {"1 MiB", mebi}, {"64 MiB", 64 * mebi}};
  for (const auto& [name, size] : sizes) {
    compare({std::string("write a DTBLOCK to a file/") + name, "write(2) of the same bytes", 1.05},
            [bytes = size] { return writeDataBlocks(bytes); });
    measure({std::string("write a DTBLOCK to a file/write calls for ") + name, "(calls)", 1},
            [bytes = size] { return writeCallsOf(bytes); });
  }

  const std::string reading = "read a DTBLOCK of 64 MiB from a file/";
  compare({reading + "vector", "a vector of that size and read(2)", 1.05},
          [] { return readDataBlock([](const ReadDataFile& file) { file.readVector(); }); });
  compare({reading + "floor", "fresh memory and read(2)", 1.3},
          [] { return readDataBlock([](const ReadDataFile& file) { file.readMemory(); }); });
}

}  // namespace mdf_bench
