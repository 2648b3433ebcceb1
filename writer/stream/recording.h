#ifndef MDF_WRITER_STREAM_RECORDING_H_
#define MDF_WRITER_STREAM_RECORDING_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../files/file_output.h"
#include "../plan/event.h"
#include "../plan/plan.h"
#include "added_blocks.h"
#include "data_stream.h"
#include "description.h"
#include "packer.h"
#include "packing.h"
#include "reduction.h"
#include "storage.h"

namespace mdf_writer {

/// What survives that the machine loses power. A program that is killed loses nothing that was
/// flushed, in either case.
enum class Durability {
  none,    ///< what the system has written by itself
  flushes  ///< everything up to the last flush
};

/// How a recording is written. What is said nowhere else stays as it is here.
struct Options {
  /// Data in memory for each group, and in each block of the file: 4 KiB to 16 MiB. What lies
  /// beyond is taken as the nearest of these; a block holds a record at least.
  std::size_t block_bytes = 65536;

  /// All groups in one data group, their records in the order in which they came, each marked by
  /// its group. Else each group has a data group of its own, which programs read faster.
  bool is_unsorted = false;

  /// Nanoseconds of the records' time after which the next record flushes, and by which a record
  /// lies before the last one that flushed if it is to flush: clocks are set back. 0 for never.
  std::int64_t flush_interval = 1'000'000'000;

  Durability durability = Durability::none;
  Existing existing = Existing::keep;

  /// Packs full blocks, as mdf::writer_zip does; none leaves them as they are. It must last as long
  /// as the recording. Blocks hold 4 MiB at most then, and groups that flush a place of a block or
  /// two in the file. Not for an output that cannot go back.
  Packer* packer = nullptr;
};

/// A file while it is being written.
///
/// From its first moment on there is a file that can be opened. It says of itself that it is
/// unfinished, which means that its groups do not state how many records they have; those that were
/// flushed can be read. finish() makes it a finished one. When the medium takes no more, the file
/// is finished with the records that it took, and cause() says what happened.
///
/// Nothing is allocated for a record, except where a value of variable length is longer than all
/// before it.
class Recording {
 public:
  /// Begins a file at a path. Nothing is made where the plan is wrong or the path cannot be used:
  /// then good() is false.
  Recording(const std::string& path, Plan& plan, const Options& options = {});

  /// Writes to an output, which must last as long as the recording. Where that cannot go back, as a
  /// pipe, all groups share a data group, and the file stays an unfinished one: the numbers of its
  /// records and the length of its data are in places that were written long ago.
  Recording(Output& output, Plan& plan, const Options& options = {});

  /// Finishes the file, if that was not done.
  ~Recording();
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  /// Whether everything has been written so far.
  bool good() const { return cause_.empty(); }

  /// Why not, as a sentence.
  const std::string& cause() const { return cause_; }

  /// Makes a group a part of the file that was added to the plan after the recording had begun.
  /// Such groups come in their order, with all their channels, and the next flush brings them into
  /// the file. False when it was not taken: when its plan is wrong, it has sample reductions, its
  /// records are longer than blocks, all groups share a data group, or the file takes no more.
  bool addGroup(Group& group);

  /// Appends the group's record as it was set, at a time in nanoseconds since the start. False when
  /// it was not taken: when the file takes no more, or the group is not in the order of time. Where
  /// a flush after it failed, cause() and records() say whether it is in the file.
  bool append(Group& group, std::int64_t nanoseconds) {
    if (!isPlanned(group) || group.order_ != Group::Order::time) {
      return false;
    }
    mdf_v4_10::detail::storeLe(group.record_.data(), secondsOf(nanoseconds));
    return put(group, nanoseconds);
  }

  /// Appends the record of a group that is not in the order of time.
  bool append(Group& group) {
    return isPlanned(group) && group.order_ != Group::Order::time && put(group, last_flush_);
  }

  /// Appends a record as its bytes: data, then invalidation bytes. False also when there are more
  /// or fewer than the group's records have, or when the group has values of variable length.
  bool appendBytes(Group& group, std::string_view record);

  /// Adds an event, or an attachment, which the next flush brings into the file. False when it was
  /// not taken: when a text is not UTF-8, the event's group is one of another plan, an event ends
  /// before it begins, or the file takes no more. An output that cannot go back takes neither: of
  /// attachments, it takes those of the plan.
  bool addEvent(const Event& event);
  bool addAttachment(const Attachment& attachment);

  /// Brings everything that was appended into the file.
  bool flush();

  /// Completes the file. Nothing can be appended afterwards. True when it holds every record that
  /// was appended.
  bool finish();

  /// How many records a group has.
  std::uint64_t records(const Group& group) const {
    return isPlanned(group) ? states_[group.index_].records : 0;
  }

 private:
  /// Values of variable length of one channel.
  struct Values {
    GroupPlaces::Values places;
    DataStream* own = nullptr;  ///< of signal data; none where they are records
    std::uint64_t count = 0;
    std::uint64_t bytes = 0;  ///< of values, without their lengths
  };

  struct State {
    Group* group;
    GroupPlaces places;
    DataStream* stream = nullptr;
    std::size_t data_bytes = 0;
    std::size_t invalidation_bytes = 0;
    bool is_plain = false;  ///< its records are the group's bytes as they are
    std::uint64_t records = 0;
    std::int64_t first = 0;  ///< nanoseconds, of a group in the order of time
    std::int64_t last = 0;
    bool has_range = true;  ///< those two are known, as the records have them
    std::vector<Values> values;
    std::vector<Reduction> reductions;
  };

  static double secondsOf(std::int64_t nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e9;
  }

  /// Whether a group was in the plan when the recording began.
  bool isPlanned(const Group& group) const {
    return group.plan_ == &plan_ && group.index_ < states_.size();
  }

  bool put(Group& group, std::int64_t nanoseconds) {
    State& state = states_[group.index_];
    char* const at = state.is_plain ? state.stream->tryAppend(state.data_bytes) : nullptr;
    if (at == nullptr) {
      return putSlowly(state, nanoseconds);
    }
    std::memcpy(at, group.record_.data(), state.data_bytes);
    return count(state, nanoseconds);
  }

  bool count(State& state, std::int64_t nanoseconds) {
    if (state.records++ == 0) {
      state.first = nanoseconds;
    }
    state.last = nanoseconds;
    return static_cast<std::uint64_t>(nanoseconds) - quiet_begin_ < quiet_ || flushAt(nanoseconds);
  }

  void begin(Output& output);
  void makeStreams();
  void addState(Group& group, GroupPlaces places);
  void addStreams(State& state);
  void makeReductions();
  DataStream* addStream(std::uint64_t link_at, DataStream::Kind kind, std::size_t block_bytes,
                        std::size_t record_bytes);
  bool putSlowly(State& state, std::int64_t nanoseconds);
  bool putValue(State& state, Values& values);
  bool putRecord(State& state, std::string_view data, std::string_view invalidation);
  std::string_view withId(std::uint64_t record_id, std::string_view bytes);
  bool reduce(State& state, std::int64_t nanoseconds, std::string_view data,
              std::string_view invalidation);
  bool endInterval(Reduction& reduction, std::uint64_t records);
  bool endReductions();
  bool flushAt(std::int64_t nanoseconds);
  bool forEach(bool (DataStream::*what)());
  bool show();
  bool showChains();
  bool showAll(const std::vector<DataStream*>& streams);
  bool syncIfAsked();
  void close();
  bool fail();
  bool keepWhatFits();
  bool cutValues(DataStream& stream);
  bool cutRecords(DataStream& stream);
  bool hasItsValues(const State& state, std::string_view record) const;
  std::size_t recordAt(const DataStream& stream, std::string_view bytes, State*& state,
                       Values*& values);
  bool complete();
  bool putCounts();
  bool putReductionCounts(const State& state);
  bool putRange(const State& state);
  std::string sentence(const std::string& what) const;
  std::string leftBehind() const;

  Plan& plan_;
  Options options_;
  std::string path_;
  std::unique_ptr<FileOutput> file_;
  std::unique_ptr<Storage> storage_;
  std::unique_ptr<Packing> packing_;  ///< none where blocks stay as they are
  Description description_;
  std::vector<State> states_;
  std::vector<std::unique_ptr<DataStream>> streams_;
  std::vector<DataStream*> value_streams_;   ///< in the order in which they are written
  std::vector<DataStream*> record_streams_;  ///< after those
  std::vector<DataStream*> reduction_streams_;
  std::size_t longest_ = 0;      ///< bytes of data in a block
  std::optional<Chain> groups_;  ///< none as long as nothing can be added
  std::optional<Chain> events_;
  std::optional<Chain> attachments_;
  std::string id_;  ///< of the record that is being put, as bytes
  std::int64_t last_flush_ = 0;
  std::uint64_t quiet_begin_ = 0;  ///< times of records that do not flush: from here,
  std::uint64_t quiet_ = 0;        ///< so many nanoseconds, modulo 2^64
  bool is_finished_ = false;
  bool is_marked_finished_ = false;  ///< the file's identification says so
  bool is_cut_ = false;              ///< records were dropped
  std::string cause_;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_RECORDING_H_
