#include "writer_zip/zipper.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "reader/bytes/inflate.h"
#include "support/recorded_output.h"
#include "writer/mdf_writer.h"

namespace mdf_tests {
namespace {

using mdf_writer::Options;
using mdf_writer::Plan;
using mdf_writer::Recording;
using mdf_writer::ZipOptions;
using mdf_writer::Zipper;

std::string counted(std::size_t size) {
  std::string bytes;
  for (std::size_t i = 0; bytes.size() < size; ++i) {
    bytes += std::to_string(i);
  }
  return bytes.substr(0, size);
}

std::string noise(std::size_t size) {
  std::mt19937 random(3);
  std::string bytes;
  while (bytes.size() < size) {
    bytes += static_cast<char>(random());
  }
  return bytes;
}

struct Block {
  std::string data;
  std::uint32_t row_bytes;
};

/// What a reader makes of a stream.
std::string unzipped(std::string_view stream, const Block& block) {
  const mdf_reader::Inflated inflated = mdf_reader::inflate(stream, block.data.size());
  EXPECT_EQ(inflated.state, mdf_reader::Inflating::fine);
  std::string rows;
  mdf_reader::transposeBack(inflated.bytes, block.row_bytes, rows);
  return rows;
}

TEST(Zipper, PacksWhatAReaderUnpacks) {
  const std::vector<Block> blocks = {
      {counted(5000), 0}, {counted(70000), 1},        {counted(70001), 13},   {counted(40000), 8},
      {counted(20), 7},   {std::string(201, 'x'), 2}, {counted(90000), 40000}};
  for (const ZipOptions& options :
       {ZipOptions{1, true, false}, ZipOptions{6, true, true}, ZipOptions{99, false, true}}) {
    Zipper zipper(options);
    EXPECT_EQ(zipper.transposes(), options.is_transposed);
    EXPECT_EQ(zipper.ahead(), options.has_own_thread ? 1U : 0U);
    std::size_t taken = 0;
    const auto take = [&] {
      const Block& block = blocks[taken++];
      const std::string_view stream = zipper.take();
      EXPECT_LT(stream.size(), block.data.size());
      EXPECT_TRUE(stream.empty() || unzipped(stream, block) == block.data);
      EXPECT_EQ(stream.empty(), block.data.size() == 20);
    };
    for (std::size_t given = 0; given < blocks.size(); ++given) {
      zipper.give(blocks[given].data, blocks[given].row_bytes);
      if (given + 1 > taken + zipper.ahead()) {
        take();
      }
    }
    while (taken < blocks.size()) {
      take();
    }
  }
}

TEST(Zipper, GivesNothingForWhatDoesNotGetSmaller) {
  Zipper zipper;
  const std::string data = noise(10000);
  zipper.give(data, 0);
  EXPECT_EQ(zipper.take(), "");
}

TEST(Zipper, EndsWithBlocksThatNobodyTakes) {
  const std::string data = counted(1000000);
  Zipper zipper({12, false, true});
  zipper.give(data, 0);
  zipper.give(data, 0);
}

/// Writes down what it is asked to do. It packs nothing.
class Witness : public mdf_writer::Packer {
 public:
  explicit Witness(std::size_t ahead) : ahead_(ahead) {}

  bool transposes() const override { return true; }
  std::size_t ahead() const override { return ahead_; }
  void give(std::string_view data, std::uint32_t row_bytes) override {
    calls += "give " + std::to_string(data.size()) + '/' + std::to_string(row_bytes) + '\n';
  }
  std::string_view take() override {
    calls += "take\n";
    return {};
  }

  std::string calls;

 private:
  std::size_t ahead_;
};

/// Three blocks of 512 records and one of 8.
std::string callsFor(Witness& packer, bool is_unsorted) {
  Plan plan;
  auto& group = plan.addGroup("g", mdf_writer::Group::Order::index);
  group.addChannel<double>("value");
  Options options;
  options.block_bytes = 4096;
  options.flush_interval = 0;
  options.is_unsorted = is_unsorted;
  options.packer = &packer;
  RecordedOutput output;
  Recording recording(output, plan, options);
  for (int i = 0; i < 3 * 512 + 8; ++i) {
    recording.append(group);
  }
  packer.calls += "finish\n";
  EXPECT_TRUE(recording.finish());
  return packer.calls;
}

TEST(Packing, WaitsForABlockOnlyWhenTheNextOneIsFull) {
  Witness at_once(0);
  EXPECT_EQ(callsFor(at_once, false),
            "give 4096/8\ntake\ngive 4096/8\ntake\ngive 4096/8\ntake\nfinish\n"
            "give 64/8\ntake\n");
  Witness ahead(1);
  EXPECT_EQ(callsFor(ahead, false),
            "give 4096/8\ngive 4096/8\ntake\ngive 4096/8\ntake\nfinish\ntake\n"
            "give 64/8\ntake\n");
  Witness unsorted(1);
  EXPECT_EQ(callsFor(unsorted, true),
            "give 4095/0\ngive 4095/0\ntake\ngive 4095/0\ntake\nfinish\ntake\n"
            "give 1611/0\ntake\n");
}

TEST(Packing, IsRefusedWhereAnOutputCannotGoBack) {
  Plan plan;
  Zipper zipper;
  Options options;
  options.packer = &zipper;
  RecordedOutput output(1000, false);
  const Recording recording(output, plan, options);
  EXPECT_EQ(recording.cause(),
            "cannot record zipped data to an output that cannot go back, such as a pipe");
  EXPECT_EQ(output.bytes(), "");
}

}  // namespace
}  // namespace mdf_tests
