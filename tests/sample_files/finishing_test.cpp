// Unfinished files become finished ones, byte for byte, whenever the work on them is interrupted.

#include "changing/finishing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "changing/repair_report.h"
#include "checking/file_check.h"
#include "fuzz/memory_file.h"
#include "reader/bytes/input_file.h"
#include "tools/samples/sample.h"
#include "tools/samples/sample_file.h"
#include "tools/sampling/exported.h"
#include "tools/support/data_blocks.h"
#include "writer/support/recorded_output.h"

using namespace mdf_tests;
using mdf_reader::Finding;

namespace {

/// A file without its end, and the one that it becomes.
struct Case {
  std::string what;
  std::string unfinished;
  std::string finished;
  std::string
      sentence;  ///< after "repaired out: "; @ and a number for a place before the file's end
};

/// The same file twice: as its writer left it, and as it should be. What is between them is told.
struct Twice {
  SampleFile unfinished;
  SampleFile finished;
};

enum Flag : std::uint16_t {
  cycle_counters = 1,
  reduction_counters = 2,
  last_data = 4,
  last_reduction = 8,
  last_list = 16,
  variable_length_sizes = 32,
};

Twice twice(unsigned flags, std::uint16_t custom_flags = 0) {
  return {SampleFile::unfinished(static_cast<std::uint16_t>(flags), custom_flags), SampleFile()};
}

/// Lets both files have what a function adds: that of records stated, and whether it is finished.
template <class Add>
Case caseOf(const std::string& what, Twice files, const Add& add, const std::string& sentence) {
  add(files.unfinished, false);
  add(files.finished, true);
  return {what, files.unfinished.bytes(), files.finished.bytes(), sentence};
}

Case openBlock() {
  return caseOf(
      "an open block, and a torn record at the end of the file", twice(cycle_counters | last_data),
      [](SampleFile& file, bool is_finished) {
        const auto group =
            file.addSortedGroup(countingGroup(is_finished ? 3 : 0), countingChannels(), 0);
        file.link(group, 2, file.add("DT", {}, is_finished ? countingRecords(3) : ""));
        if (!is_finished) {
          file.append(countingRecords(4).substr(0, 36));
        }
      },
      "3 records in 1 group; cut 6 bytes of a torn record at @6; counts of 1 group and 1 data "
      "block set; nothing lost");
}

/// A record that is torn where other blocks follow.
Case tornBeforeOthers() {
  return caseOf(
      "a torn record with blocks after it", twice(cycle_counters),
      [](SampleFile& file, bool is_finished) {
        const std::string data = countingRecords(3);
        const auto block = file.addData(is_finished ? data.substr(0, 20) : data.substr(0, 29));
        if (is_finished) {
          file.append(zeros(9));
        }
        file.addSortedGroup(countingGroup(is_finished ? 2 : 1), countingChannels(), block);
      },
      "2 records in 1 group; cut 9 bytes of a torn record at 340; counts of 1 group and 1 data "
      "block set; nothing lost");
}

/// A list that was made for five blocks, of which two came. It moves to the end of the file.
Case openList() {
  return caseOf(
      "a list with room for more blocks", twice(cycle_counters | last_list),
      [](SampleFile& file, bool is_finished) {
        const std::string data = countingRecords(8);
        const auto first = file.addData(data.substr(0, 40));
        const auto second = file.addData(data.substr(40));
        const std::uint64_t begin = (file.bytes().size() + 7) / 8 * 8;
        const auto list = addEqualList(file, {first, second, 0, 0, 0}, 40);
        file.write(list + 24 + 48 + 4, u32(is_finished ? 5 : 0));
        const auto group =
            file.addSortedGroup(countingGroup(is_finished ? 8 : 0), countingChannels(), list);
        if (is_finished) {
          file.write(begin, zeros(24 + 48 + 16));
          file.link(group, 2, addEqualList(file, {first, second}, 40));
        }
      },
      "8 records in 1 group; counts of 1 group and 1 data list set; nothing lost");
}

/// The last of two zipped blocks is not in the file any more.
Case listBeyondTheEnd() {
  return caseOf(
      "a list whose last blocks the file does not have", twice(cycle_counters | last_list),
      [](SampleFile& file, bool is_finished) {
        const auto block = addZipped(file, "DT", countingRecords(3));
        const std::uint64_t begin = (file.bytes().size() + 7) / 8 * 8;
        const auto list = addOffsetList(file, {block, 1 << 20, 1 << 21}, {0, 30, 60});
        const auto header = addHeaderList(file, list, 0, 0);
        file.addSortedGroup(countingGroup(is_finished ? 3 : 9), countingChannels(), header);
        if (is_finished) {
          file.write(begin, zeros(24 + 32 + 32));
          file.link(header, 0, addOffsetList(file, {block}, {0}));
        }
      },
      "3 records in 1 group; counts of 1 group and 1 data list set; see above for what could not "
      "be repaired");
}

Case listOffsets() {
  return caseOf(
      "a count and offsets of a list that were not written", twice(cycle_counters | last_list),
      [](SampleFile& file, bool is_finished) {
        const std::string data = countingRecords(5);
        const auto first = file.addData(data.substr(0, 20));
        const auto second = file.addData(data.substr(20));
        const auto list = addOffsetList(file, {first, second}, {0, is_finished ? 20U : 0U});
        file.write(list + 24 + 24 + 4, u32(is_finished ? 2 : 1));
        file.addSortedGroup(countingGroup(is_finished ? 5 : 0), countingChannels(), list);
      },
      "5 records in 1 group; counts of 1 group and 1 data list set; nothing lost");
}

Case reduction() {
  return caseOf(
      "a sample reduction in an open block", twice(reduction_counters | last_reduction),
      [](SampleFile& file, bool is_finished) {
        const auto group = file.addGroupOf(countingGroup(2), countingChannels());
        file.addDataGroup({group}, file.addData(countingRecords(2)));
        const std::string values = countingRecords(6);
        const auto reduction =
            file.add("SR", {0, 0}, Bytes().u64(is_finished ? 2 : 0).f64(1).u8s({1, 0}).zeros(6));
        file.link(group, 4, reduction);
        file.link(reduction, 1, file.add("RD", {}, is_finished ? values : ""));
        if (!is_finished) {
          file.append(values + "torn");
        }
      },
      "2 records in 1 group; cut 4 bytes of a torn record at @4; counts of 1 sample reduction "
      "and "
      "1 data block set; nothing lost");
}

/// Texts among the records, the last one torn.
Case variableLength() {
  return caseOf(
      "values of variable length among records",
      twice(cycle_counters | last_data | variable_length_sizes),
      [](SampleFile& file, bool is_finished) {
        GroupSpec value_spec{is_finished ? 2U : 0U, is_finished ? 12U : 0U};
        value_spec.record_id = 2;
        value_spec.flags = 1;
        const auto values = file.addGroupOf(value_spec, {});
        ChannelSpec text = stored(7, 64);
        text.byte_offset = 8;
        text.type = 1;
        text.data = values;
        GroupSpec spec{is_finished ? 2U : 0U, 16};
        spec.record_id = 1;
        const auto group = file.addGroupOf(spec, {timeMaster(), text});
        const std::string data = Bytes()
                                     .u8(2)
                                     .u32(3)
                                     .text("abc")
                                     .u8(1)
                                     .f64(0)
                                     .u64(0)
                                     .u8(2)
                                     .u32(1)
                                     .text("d")
                                     .u8(1)
                                     .f64(0.5)
                                     .u64(7);
        const auto data_group = file.addDataGroup({group, values}, 0, 1);
        file.link(data_group, 2, file.add("DT", {}, is_finished ? data : ""));
        if (!is_finished) {
          file.append(data + u8(2) + u32(9) + "torn");
        }
      },
      "2 records in 1 group; cut 9 bytes of a torn record at @9; counts of 2 groups and 1 data "
      "block set; nothing lost");
}

/// Values apart from the records, the last one torn.
Case signalData() {
  return caseOf(
      "an open block of signal data", twice(last_data),
      [](SampleFile& file, bool is_finished) {
        ChannelSpec text = stored(7, 64);
        text.byte_offset = 8;
        text.type = 1;
        const auto group = file.addGroupOf({1, 16}, {timeMaster(), text});
        file.addDataGroup({group}, file.addData(f64(0) + u64(0)));
        const std::string value = u32(3) + "abc";
        const auto data = file.add("SD", {}, is_finished ? value : value + u32(5) + "to");
        file.link(file.channels()[1], 5, data);
      },
      "1 record in 1 group; cut 6 bytes of a torn value at @6; counts of 1 data block set; "
      "nothing lost");
}

Case customFlags() {
  return caseOf(
      "flags of the writing program", twice(cycle_counters, 0x8001),
      [](SampleFile& file, bool is_finished) {
        file.addSortedGroup(countingGroup(is_finished ? 2 : 0), countingChannels(),
                            file.addData(countingRecords(2)));
      },
      "2 records in 1 group; counts of 1 group set; see above for what could not be repaired");
}

std::vector<Case> cases() {
  return {openBlock(), tornBeforeOthers(), openList(),   listBeyondTheEnd(), listOffsets(),
          reduction(), variableLength(),   signalData(), customFlags()};
}

/// Finishes the file that the output holds.
mdf_tools::Repaired finish(RecordedOutput& output) {
  const mdf_fuzz::MemoryFile memory;
  memory.hold(output.bytes());
  mdf_reader::InputFile file(memory.path());
  std::vector<Finding> losses;
  const auto finishing =
      mdf_tools::finishingOf(file, [&](const Finding& finding) { losses.push_back(finding); });
  EXPECT_TRUE(mdf_tools::apply(finishing, output));
  return {"in", "out", {finishing}, losses};
}

/// An output that holds a file, on its medium.
void hold(RecordedOutput& output, const std::string& bytes) {
  output.write(0, bytes.data(), bytes.size());
  output.sync();
}

std::string finished(const std::string& bytes) {
  RecordedOutput output;
  hold(output, bytes);
  finish(output);
  return output.bytes();
}

/// What is wrong with a file, but for notes.
std::vector<std::string> problemsOf(const std::string& bytes) {
  const mdf_fuzz::MemoryFile memory;
  memory.hold(bytes);
  mdf_reader::InputFile file(memory.path());
  std::vector<std::string> problems;
  mdf_tools::checkFile(file, [&](const Finding& finding) {
    if (textOf(finding.code).severity != mdf_reader::Severity::note) {
      problems.push_back(std::to_string(finding.offset) + ": " + finding.sentence);
    }
  });
  return problems;
}

std::string withOffset(const Case& each) {
  const std::size_t at = each.sentence.find('@');
  if (at == std::string::npos) {
    return each.sentence;
  }
  const std::size_t before_end = std::stoul(each.sentence.substr(at + 1));
  const std::size_t end = each.sentence.find(';', at);
  return each.sentence.substr(0, at) + std::to_string(each.unfinished.size() - before_end) +
         each.sentence.substr(end);
}

TEST(Finishing, SetsWhatIsOpenAndNothingElse) {
  for (const Case& each : cases()) {
    SCOPED_TRACE(each.what);
    RecordedOutput output;
    hold(output, each.unfinished);
    const mdf_tools::Repaired repaired = finish(output);
    EXPECT_BYTES(output.bytes(), each.finished);
    EXPECT_EQ(mdf_tools::repairSentence(repaired), "repaired out: " + withOffset(each));
    EXPECT_EQ(problemsOf(output.bytes()), std::vector<std::string>());
  }
}

TEST(Finishing, CanBeInterruptedAnywhereAndBegunAgain) {
  std::mt19937 random(1);
  for (const Case& each : cases()) {
    SCOPED_TRACE(each.what);
    RecordedOutput output;
    hold(output, each.unfinished);
    const std::size_t before = output.steps().size();
    finish(output);
    const std::string table = csvOf(each.finished).text;
    std::string killed = each.unfinished;
    for (std::size_t done = before; done < output.steps().size(); ++done) {
      RecordedOutput::apply(output.steps()[done], killed);
      EXPECT_EQ(csvOf(finished(killed)).text, table) << "after step " << done;
      for (int i = 0; i < 4; ++i) {
        const std::string left = afterPowerLoss(output.steps(), done + 1, random);
        EXPECT_EQ(csvOf(finished(left)).text, table) << "after losing power in step " << done;
      }
    }
  }
}

TEST(Finishing, StopsWhereTheFileTakesNoMore) {
  for (std::size_t write = 2; write < 5; ++write) {
    RecordedOutput output;
    hold(output, openBlock().unfinished);
    const mdf_fuzz::MemoryFile memory;
    memory.hold(output.bytes());
    mdf_reader::InputFile file(memory.path());
    const auto finishing = mdf_tools::finishingOf(file, [](const Finding& /*finding*/) {});
    output.failWrite(write);
    EXPECT_FALSE(mdf_tools::apply(finishing, output));
    EXPECT_EQ(output.bytes().substr(0, 8), "UnFinMF ");
  }
}

/// Every sample, as if it were not finished, and cut off: what there was to read before is there
/// afterwards. Files that were not cut are whole.
TEST(Finishing, KeepsWhatThereIsToReadOfEachSample) {
  constexpr std::size_t step = 97;
  for (const Sample& sample : allSamples()) {
    const bool was_fine = problemsOf(sample.bytes).empty();
    std::size_t cuts = 0;
    for (std::size_t size = sample.bytes.size(); size > 200; size -= std::min(size, step), ++cuts) {
      for (const unsigned flags : {127U, 1U << (cuts % 7)}) {
        SCOPED_TRACE(sample.name + " up to " + std::to_string(size) + " with flags " +
                     std::to_string(flags));
        std::string bytes = sample.bytes.substr(0, size);
        bytes.replace(0, 8, "UnFinMF ");
        bytes.replace(60, 2, u16(flags));
        const std::string whole = finished(bytes);
        EXPECT_EQ(csvOf(whole).text, csvOf(bytes).text);
        if (was_fine && cuts == 0) {
          EXPECT_EQ(problemsOf(whole), std::vector<std::string>());
        }
      }
    }
  }
}

}  // namespace
