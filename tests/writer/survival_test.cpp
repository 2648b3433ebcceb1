#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <tuple>

#include "../tools/support/file_size_limit.h"
#include "../tools/support/scratch_folder.h"
#include "support/every_second_block.h"
#include "support/read_back.h"
#include "support/recorded_output.h"
#include "writer/mdf_writer.h"
#include "writer_zip/zipper.h"

namespace mdf_tests {
namespace {

using mdf_writer::Durability;
using mdf_writer::Group;
using mdf_writer::Options;
using mdf_writer::Plan;
using mdf_writer::Recording;

/// Two groups, one of which has texts. Both count, so that one sees what is missing.
struct Counting {
  /// @param has_all unless the group of texts comes into the file with its first record.
  explicit Counting(bool has_all = true) : numbers(plan.addGroup("numbers")) {
    plan.start = {1700000000000000000, 0, false};
    numbers.reductions = {4};
    if (has_all) {
      addTexts();
    }
  }

  void addTexts() {
    texts = &plan.addGroup("texts");
    text = texts->addText("text");
  }

  /// The k-th record of a group at k seconds; every tenth is also one of the texts.
  bool append(Recording& recording, int k) {
    numbers.set(number, static_cast<std::uint32_t>(k));
    const std::int64_t time = k * std::int64_t{1'000'000'000};
    return recording.append(numbers, time) && (k % 10 != 0 || appendText(recording, k, time)) &&
           (k % 40 != 3 || recording.addEvent({std::to_string(k), time})) &&
           (k % 200 != 4 || recording.addAttachment({std::to_string(k) + ".txt", "", "", "abc"}));
  }

  bool appendText(Recording& recording, int k, std::int64_t time) {
    if (texts == nullptr) {
      addTexts();
      if (!recording.addGroup(*texts)) {
        return false;
      }
    }
    texts->set(text, textOf(k));
    return recording.append(*texts, time);
  }

  std::uint64_t textsIn(const Recording& recording) const {
    return texts == nullptr ? 0 : recording.records(*texts);
  }

  static std::string textOf(int k) {
    return std::string(static_cast<std::size_t>(k % 70 * 3), 'x');
  }

  Plan plan;
  Group& numbers;
  Group* texts = nullptr;
  mdf_writer::Channel<std::uint32_t> number = numbers.addChannel<std::uint32_t>("number");
  mdf_writer::VariableChannel text;
};

std::string numbersUpTo(std::uint64_t count) {
  std::string table = count == 0 ? "" : "time,number\n";
  for (std::uint64_t k = 0; k < count; ++k) {
    table += std::to_string(k) + ',' + std::to_string(k) + '\n';
  }
  return table;
}

std::string textsUpTo(std::uint64_t count) {
  std::string table = count == 0 ? "" : "time,text\n";
  for (int k = 0; k < static_cast<int>(count); ++k) {
    table += std::to_string(10 * k) + ',' + Counting::textOf(10 * k) + '\n';
  }
  return table;
}

/// Events or attachments are the first ones of those that come with every so many records.
void expectBeginning(const std::string& found, int step, int first,
                     const std::function<std::string(const std::string&)>& line) {
  std::string expected;
  for (int k = first; expected.size() < found.size(); k += step) {
    expected += line(std::to_string(k));
  }
  EXPECT_EQ(found, expected);
}

/// The means, least and greatest numbers of the file's sample reduction, as far as its links lead:
/// a line for each interval.
std::string reducedOf(const std::string& file) {
  using mdf_v4_10::detail::loadLe;
  const auto number = [&](std::size_t at) {
    return static_cast<std::size_t>(loadLe<std::uint64_t>(&file.at(at)));
  };
  constexpr std::size_t record = 12;
  std::string lines;
  for (std::size_t list = number(file.find("##SR") + 32); list != 0; list = number(list + 24)) {
    const std::size_t block = number(list + 32);
    EXPECT_EQ(file.substr(block, 4), "##RD");
    for (std::size_t at = block + 24; at < block + number(block + 8); at += 3 * record) {
      for (std::size_t i = 0; i < 3; ++i) {
        const std::string each = file.substr(at + i * record, record);
        lines += std::to_string(static_cast<int>(loadLe<double>(each.data()))) + ' ' +
                 std::to_string(loadLe<std::uint32_t>(&each[8])) + ' ';
      }
      lines.back() = '\n';
    }
  }
  return lines;
}

/// Four records are an interval, of which the last one may have fewer, if the file is finished.
std::string reducedUpTo(std::uint64_t records, std::uint64_t intervals) {
  std::string lines;
  for (std::uint64_t k = 0; k < intervals; ++k) {
    const std::string time = std::to_string(4 * k) + ' ';
    const std::uint64_t last = std::min(4 * k + 3, records - 1);
    lines += time + std::to_string((4 * k + last + 1) / 2) + ' ' + time + std::to_string(4 * k) +
             ' ' + time + std::to_string(last) + '\n';
  }
  return lines;
}

std::uint64_t linesOf(const std::string& table) {
  const auto lines = static_cast<std::uint64_t>(std::count(table.begin(), table.end(), '\n'));
  return lines == 0 ? 0 : lines - 1;
}

/// The file is one without findings, and shows the first records of both groups, so many at least.
void expectWhole(const std::string& file, std::uint64_t least_numbers, std::uint64_t least_texts) {
  // Of many moments the same is left.
  static std::set<std::tuple<std::string, std::uint64_t, std::uint64_t>> known;
  if (!known.insert({file, least_numbers, least_texts}).second) {
    return;
  }
  EXPECT_EQ(findingsOf(file), std::vector<std::string>());
  const std::string numbers = tableOf(file, "numbers");
  EXPECT_EQ(numbers, numbersUpTo(linesOf(numbers)));
  EXPECT_GE(linesOf(numbers), least_numbers);
  const std::string texts = tableOf(file, "texts");
  EXPECT_EQ(texts, textsUpTo(linesOf(texts)));
  EXPECT_GE(linesOf(texts), least_texts);
  const std::string reduced = reducedOf(file);
  const auto intervals =
      static_cast<std::uint64_t>(std::count(reduced.begin(), reduced.end(), '\n'));
  EXPECT_EQ(reduced, reducedUpTo(linesOf(numbers), intervals));
  EXPECT_LE(intervals, (linesOf(numbers) + 3) / 4);
  EXPECT_GE(intervals, least_numbers == 0 ? 0 : (least_numbers - 1) / 4);
  const Added added = addedTo(file);
  expectBeginning(added.events, 40, 3, [](const std::string& k) { return k + ' ' + k + '\n'; });
  EXPECT_GE(added.events.size(), 4 * ((least_numbers + 36) / 40));
  expectBeginning(added.attachments, 200, 4, [](const std::string& k) { return k + ".txt abc\n"; });
  EXPECT_GE(added.attachments.size(), 10 * ((least_numbers + 195) / 200));
}

enum class Zip { none, deflated, transposed_on_thread, every_second_block };

struct Case {
  bool is_unsorted;
  int flush_every;  ///< so many records
  Zip zip;
  int records;
  bool has_all = true;  ///< groups from the beginning
};

/// Said by itself, as the bytes between the members have no values.
void PrintTo(const Case& layout, std::ostream* out) {
  *out << (layout.is_unsorted ? "unsorted" : "sorted") << ", flushed every " << layout.flush_every
       << " of " << layout.records << " records, zip " << static_cast<int>(layout.zip)
       << (layout.has_all ? "" : ", with a group that comes later");
}

class Survival : public testing::TestWithParam<Case> {
 protected:
  Options options() {
    Options options;
    options.block_bytes = 4096;
    options.is_unsorted = GetParam().is_unsorted;
    options.flush_interval = GetParam().flush_every * std::int64_t{1'000'000'000};
    options.durability = Durability::flushes;
    options.packer = packer();
    return options;
  }

  static int records() { return GetParam().records; }
  static bool hasAll() { return GetParam().has_all; }

 private:
  mdf_writer::Packer* packer() {
    switch (GetParam().zip) {
      case Zip::deflated:
        return &deflating_;
      case Zip::transposed_on_thread:
        return &on_thread_;
      case Zip::every_second_block:
        choosy_.emplace();  // begins to count again
        return &*choosy_;
      case Zip::none:
        break;
    }
    return nullptr;
  }

  mdf_writer::Zipper deflating_{{6, false, false}};
  mdf_writer::Zipper on_thread_{{1, true, true}};
  std::optional<EverySecondBlock> choosy_;
};

/// How many records were flushed after so many steps, and in all.
struct Progress {
  std::size_t steps;
  std::uint64_t numbers;
  std::uint64_t texts;
};

std::vector<Progress> recordAll(Counting& counting, RecordedOutput& output, const Options& options,
                                int records) {
  std::vector<Progress> progress;
  Recording recording(output, counting.plan, options);
  EXPECT_TRUE(recording.good()) << recording.cause();
  progress.push_back({output.steps().size(), 0, 0});
  for (int k = 0; k < records; ++k) {
    EXPECT_TRUE(counting.append(recording, k));
    if (k % (records / 5) == 7) {
      EXPECT_TRUE(recording.flush());
      progress.push_back({output.steps().size(), recording.records(counting.numbers),
                          counting.textsIn(recording)});
    }
  }
  EXPECT_TRUE(recording.finish()) << recording.cause();
  const auto count = static_cast<std::uint64_t>(records);
  progress.push_back({output.steps().size(), count, count / 10});
  return progress;
}

TEST_P(Survival, EveryMomentLeavesAFileAndEveryPowerLossWhatWasFlushed) {
  Counting counting(hasAll());
  RecordedOutput output;
  const std::vector<Progress> progress = recordAll(counting, output, options(), records());
  std::mt19937 random(1);
  std::size_t reached = 0;
  std::string killed;
  for (std::size_t done = 0; done <= output.steps().size(); ++done) {
    if (done > 0) {
      RecordedOutput::apply(output.steps()[done - 1], killed);
    }
    if (done < progress.front().steps) {
      continue;  // the file does not have its name yet
    }
    while (reached + 1 < progress.size() && progress[reached + 1].steps <= done) {
      ++reached;
    }
    SCOPED_TRACE("after step " + std::to_string(done));
    expectWhole(killed, progress[reached].numbers, progress[reached].texts);
    for (int i = 0; i < 3; ++i) {
      expectWhole(afterPowerLoss(output.steps(), done, random), progress[reached].numbers,
                  progress[reached].texts);
    }
    if (HasFailure()) {
      break;
    }
  }
  expectWhole(output.bytes(), progress.back().numbers, progress.back().texts);
}

/// Records until something fails, or to the end; true for that.
bool recordOn(Counting& counting, Recording& recording, int records) {
  for (int k = 0; k < records && recording.good(); ++k) {
    counting.append(recording, k);
  }
  return recording.finish();
}

/// The file is a finished one of all records that the recording counts.
void expectFinished(const std::string& file, const Counting& counting, const Recording& recording,
                    const std::string& trouble = ": the medium is full") {
  const std::uint64_t numbers = recording.records(counting.numbers);
  const std::uint64_t texts = counting.textsIn(recording);
  EXPECT_EQ(findingsOf(file), std::vector<std::string>());
  EXPECT_EQ(tableOf(file, "numbers"), numbersUpTo(numbers));
  EXPECT_EQ(tableOf(file, "texts"), textsUpTo(texts));
  if (!recording.good()) {
    EXPECT_EQ(recording.cause(), "cannot write to" + trouble + "; the " +
                                     std::to_string(numbers + texts) +
                                     " records written before that make a complete file");
  }
}

TEST_P(Survival, AFullMediumLeavesAFinishedFileOfWhatItTook) {
  std::uint64_t size = 0;
  for (std::uint64_t room = 0; size == 0; room += 97) {
    Counting counting(hasAll());
    RecordedOutput output(room);
    Recording recording(output, counting.plan, options());
    if (recordOn(counting, recording, records())) {
      size = output.bytes().size();
    }
    if (output.bytes().substr(0, 3) != "MDF") {
      EXPECT_EQ(recording.cause(), "cannot record to: the medium is full; nothing was recorded");
      continue;
    }
    SCOPED_TRACE("room for " + std::to_string(room) + " bytes: " + recording.cause());
    expectFinished(output.bytes(), counting, recording);
  }
  EXPECT_GT(size, 10000U);
}

TEST_P(Survival, AWriteThatFailsOnceLeavesAFinishedFileOfWhatCameBefore) {
  bool finished = false;
  for (std::size_t number = 2; !finished; ++number) {
    Counting counting(hasAll());
    RecordedOutput output;
    output.failWrite(number);
    Recording recording(output, counting.plan, options());
    finished = recordOn(counting, recording, records());
    SCOPED_TRACE("write " + std::to_string(number) + ": " + recording.cause());
    if (output.bytes().substr(0, 2) == "Un") {
      EXPECT_EQ(recording.cause(),
                "cannot complete: the medium is full; the file says that it is unfinished");
      expectWhole(output.bytes(), 0, 0);
    } else {
      expectFinished(output.bytes(), counting, recording);
    }
  }
}

TEST_P(Survival, ASyncThatFailsIsReportedAndSaysWhatTheFileSays) {
  std::set<std::string> causes;
  bool finished = false;
  for (std::size_t number = 3; !finished; ++number) {
    Counting counting(hasAll());
    RecordedOutput output;
    output.failSync(number);
    Recording recording(output, counting.plan, options());
    finished = recordOn(counting, recording, records());
    if (recording.cause().substr(0, 9) == "cannot co") {
      causes.insert(output.bytes().substr(0, 2) + ": " + recording.cause());
    } else {
      expectFinished(output.bytes(), counting, recording);
    }
  }
  EXPECT_EQ(causes,
            (std::set<std::string>{
                "MD: cannot complete: the medium is full; it is not certain what the medium holds",
                "Un: cannot complete: the medium is full; the file says that it is unfinished"}));
}

/// Small blocks and many flushes, so that files end in all places.
Options smallBlocks() {
  Options options;
  options.block_bytes = 4096;
  options.flush_interval = 1'000'000'000;
  options.existing = mdf_writer::Existing::replace;
  return options;
}

TEST(FullMedium, OfAFileThatMayNotGrowLeavesAFinishedOne) {
  const ScratchFolder folder;
  const std::string path = folder / "run.mf4";
  for (std::uint64_t room = 8000; room < 60000; room += 1777) {
    Counting counting;
    const FileSizeLimit limit(room);
    Recording recording(path, counting.plan, smallBlocks());
    EXPECT_FALSE(recordOn(counting, recording, 100000));
    SCOPED_TRACE("room for " + std::to_string(room) + " bytes");
    EXPECT_LE(bytesOf(path).size(), room);
    expectFinished(bytesOf(path), counting, recording, ' ' + path + ": File too large");
  }
}

/// Gives this process a file system of its own with so many bytes there.
bool mountDisk(const std::string& folder, const std::string& bytes) {
  const int flags = CLONE_NEWNS | (geteuid() == 0 ? 0 : CLONE_NEWUSER);
  return unshare(flags) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("none", folder.c_str(), "tmpfs", 0, ("size=" + bytes).c_str()) == 0;
}

class FullDisk : public testing::TestWithParam<const char*> {};

TEST_P(FullDisk, LeavesAFinishedFile) {
  const ScratchFolder folder;
  const pid_t child = fork();
  if (child == 0) {
    if (!mountDisk(folder.path(), GetParam())) {
      _exit(2);
    }
    const std::string path = folder / "run.mf4";
    Counting counting;
    Recording recording(path, counting.plan, smallBlocks());
    const bool ended = recordOn(counting, recording, 1000000);
    expectFinished(bytesOf(path), counting, recording, ' ' + path + ": No space left on device");
    _exit(ended || testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_NE(WEXITSTATUS(status), 2) << "this system gives processes no file systems of their own";
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, FullDisk, testing::Values("16k", "64k", "100k", "1m"));

TEST(FullMedium, KeepsNoRecordWhoseShortValueItDidNotTake) {
  for (std::uint64_t room = 6000; room < 13000; room += 501) {
    Plan plan;
    Group& group = plan.addGroup("g", Group::Order::index);
    group.addText("empty");
    Options options;
    options.block_bytes = 4096;
    options.flush_interval = 0;
    RecordedOutput output(room);
    Recording recording(output, plan, options);
    while (recording.append(group)) {
    }
    std::string expected = "index,empty\n";
    for (std::uint64_t k = 0; k < recording.records(group); ++k) {
      expected += std::to_string(k) + ",\n";
    }
    SCOPED_TRACE("room for " + std::to_string(room) + " bytes");
    EXPECT_EQ(findingsOf(output.bytes()), std::vector<std::string>());
    EXPECT_EQ(tableOf(output.bytes(), "g"), expected);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, Survival,
    testing::Values(Case{false, 10, Zip::none, 500}, Case{false, 300, Zip::none, 600},
                    Case{true, 10, Zip::none, 500}, Case{true, 300, Zip::none, 600},
                    Case{false, 10, Zip::none, 500, false}, Case{false, 60, Zip::deflated, 2000},
                    Case{false, 60, Zip::deflated, 1000, false},
                    Case{false, 60, Zip::every_second_block, 2000},
                    Case{false, 700, Zip::transposed_on_thread, 2500},
                    Case{true, 60, Zip::transposed_on_thread, 1500},
                    Case{true, 700, Zip::every_second_block, 2500}));

TEST(Killing, AtAnyMomentLeavesAFile) {
  const ScratchFolder folder;
  const std::string path = folder / "run.mf4";
  std::mt19937 random(2);
  int found = 0;
  for (int round = 0; round < 200; ++round) {
    const pid_t child = fork();
    if (child == 0) {
      Counting counting;
      Options options;
      options.existing = mdf_writer::Existing::replace;
      options.flush_interval = 1'000'000'000;
      options.block_bytes = 4096;
      mdf_writer::Zipper zipper({1, true, true});
      options.packer = round % 2 == 0 ? nullptr : &zipper;
      Recording recording(path, counting.plan, options);
      for (int k = 0; recording.good(); ++k) {
        counting.append(recording, k);
      }
      _exit(1);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 5000));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    if (access(path.c_str(), F_OK) == 0) {
      ++found;
      expectWhole(bytesOf(path), 0, 0);
    }
  }
  EXPECT_GT(found, 0);
}

}  // namespace
}  // namespace mdf_tests
