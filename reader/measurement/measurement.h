#ifndef MDF_READER_MEASUREMENT_MEASUREMENT_H_
#define MDF_READER_MEASUREMENT_MEASUREMENT_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../blocks/finding.h"
#include "../blocks/identification.h"
#include "../columns/batch.h"
#include "../columns/query.h"
#include "../data/record_count.h"
#include "../decoding/decoded.h"
#include "../model/attachments.h"
#include "../model/description.h"
#include "../model/events.h"
#include "../model/hierarchy.h"
#include "../model/history.h"

namespace mdf_reader {

/// A channel and the channel group that it is in.
struct FoundChannel {
  const ChannelGroup* group;
  const Channel* channel;
};

/// A block as it stands in the file, whatever its type.
struct Block {
  struct Link {
    std::string role;         ///< such as "dg_cg_first", "dl_data[2]"; "link 3" where none is known
    std::int64_t target = 0;  ///< as stored: an offset in the file, 0 for none
  };
  struct Field {
    std::string name;   ///< such as "dg_rec_id_size"
    std::string value;  ///< "12", "-60", "0.5", "00 ff 12"; "" where it is cut off
  };

  std::uint64_t offset = 0;
  std::string type;           ///< the two letters, such as "DG"
  std::uint64_t length = 0;   ///< as stored
  std::vector<Link> links;    ///< as far as they are there
  std::vector<Field> fields;  ///< none for a type that is not known
};

/// The channel groups of all data groups, in the order of the file.
class ChannelGroups {
 public:
  class Iterator {
   public:
    explicit Iterator(std::vector<const ChannelGroup*>::const_iterator at) : at_(at) {}
    const ChannelGroup& operator*() const { return **at_; }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    bool operator!=(const Iterator& other) const { return at_ != other.at_; }

   private:
    std::vector<const ChannelGroup*>::const_iterator at_;
  };

  explicit ChannelGroups(const std::vector<DataGroup>& data_groups);

  Iterator begin() const { return Iterator(groups_.begin()); }
  Iterator end() const { return Iterator(groups_.end()); }
  std::size_t size() const { return groups_.size(); }
  /// The channel group with this index, from 0 on.
  const ChannelGroup& operator[](std::size_t index) const { return *groups_[index]; }

 private:
  std::vector<const ChannelGroup*> groups_;
};

/// Batches of the records of a query, channel group by channel group. They can be moved, and read
/// after their measurement is gone.
class Batches {
 public:
  ~Batches();
  Batches(const Batches&) = delete;
  Batches& operator=(const Batches&) = delete;
  Batches(Batches&& other) noexcept;
  Batches& operator=(Batches&& other) noexcept;

  /// The next records of a group; null after the last ones. It lasts until the next call.
  const Batch* next();
  /// Gives away the batch of the last call of next(), to be kept as long as wanted: its values,
  /// names and units are its own. Its group and channels last as long as these batches. Null where
  /// that gave none.
  std::unique_ptr<const Batch> take();

  /// What is known of the tables before records are read: one for each channel group that comes, in
  /// the order of the file, also where it has no records. Their groups and channels last as long as
  /// these batches.
  /// @param most how many are enough.
  std::vector<TableHead> heads(std::size_t most = SIZE_MAX);

 private:
  friend class Measurement;
  struct State;
  explicit Batches(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

/// Batches of the frames of CAN and LIN buses, of all channel groups that hold such, in the order
/// of their times. Records without a valid time or identifier are left out. They can be moved, and
/// read after their measurement is gone.
class FrameBatches {
 public:
  ~FrameBatches();
  FrameBatches(const FrameBatches&) = delete;
  FrameBatches& operator=(const FrameBatches&) = delete;
  FrameBatches(FrameBatches&& other) noexcept;
  FrameBatches& operator=(FrameBatches&& other) noexcept;

  /// How many channel groups hold frames.
  std::size_t groups() const;
  /// The columns: time, bus, frame, id, extended, direction, fd, brs, esi, error, length and data,
  /// with the words that `mdf frames --format csv` has for them. They are of no channel.
  const TableHead& head() const;
  /// The next frames, so many at most; null after the last ones.
  std::unique_ptr<const Batch> next(std::size_t rows);

 private:
  friend class Measurement;
  struct State;
  explicit FrameBatches(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

struct DecodedSignals;

/// A measurement file, read where it stands. It owns all that it hands out: texts, groups and
/// channels last as long as it does, wherever it is moved to. One thread at a time may use it; two
/// files can be read in two threads. The file is never written to.
class Measurement {
 public:
  /// Opens the file and reads its description: all blocks but those with data.
  /// @param path the file's name; "-" is standard input, which is read into memory.
  /// @throws Unreadable when it cannot be opened or is no file of MDF 4.
  explicit Measurement(const std::string& path);
  ~Measurement();
  Measurement(const Measurement&) = delete;
  Measurement& operator=(const Measurement&) = delete;
  Measurement(Measurement&& other) noexcept;
  Measurement& operator=(Measurement&& other) noexcept;

  /// What the first 64 bytes say: version, program, whether the file was finished.
  const Identification& identification() const;
  /// When the measurement was started, and its comment.
  const Header& header() const;
  const std::vector<DataGroup>& dataGroups() const;
  /// The channel groups of all data groups, each with its channels.
  const ChannelGroups& groups() const;

  /// The channels with this name, in the order of the file. Several groups may have one.
  /// @param pattern a name, or a pattern as for file names: "speed*". A member of a structure has
  /// its own name and "structure.member".
  std::vector<FoundChannel> channels(const std::string& pattern) const;

  /// How many records a group has. Where the file leaves that open, the data is read and they are
  /// counted.
  RecordCount records(const ChannelGroup& group) const;

  /// Visits the records of a group in order, until `visit` says false. Each is as stored, without
  /// its record id; the bytes last until the next one.
  void forEachRecord(const ChannelGroup& group,
                     const std::function<bool(std::string_view record)>& visit) const;

  /// Reads channels as batches of columns, channel group by channel group.
  Batches read(const Query& query) const;

  /// Reads the frames of buses.
  /// @param from,to limits of their times, in seconds since the measurement was started.
  FrameBatches frames(std::optional<double> from, std::optional<double> to) const;

  /// Makes signals of the frames of CAN buses, as databases of the DBC form describe them: a
  /// measurement of its own, with a channel group for each message and bus. It lies in $TMPDIR or
  /// /var/tmp, and is gone with its object.
  /// @param databases their files: "car.dbc", or "car.dbc@can1" for one bus. Of those that know an
  /// identifier, the first one counts.
  /// @param is_j1939 whether the parameter group is all that counts of each identifier of 29 bits.
  /// @throws CannotDecode
  DecodedSignals decode(const std::vector<std::string>& databases, bool is_j1939) const;

  std::vector<Attachment> attachments() const;
  /// Hands the data of an embedded attachment on, see readAttachmentData().
  AttachmentData readAttachment(const Attachment& attachment,
                                const std::function<void(std::string_view)>& take) const;
  std::vector<Event> events() const;
  std::vector<HierarchyEntry> hierarchy() const;
  std::vector<HistoryEntry> history() const;

  /// The block at an offset. Nothing where the file has none.
  std::optional<Block> block(std::uint64_t offset) const;

  /// What the file is and what is in it as JSON: "info" is what `mdf info --json` says of a file,
  /// "channels", "attachments" and "events" what `mdf list` does with their names and --json.
  std::string describe() const;

  /// How raw values of a channel become physical ones, as one line of JSON: the type of its
  /// conversion, and its "values" and "references" (texts, conversions, null) in the order of the
  /// format. The type alone where references lead to the same again and again. "" for none.
  std::string describeConversion(const Channel& channel) const;

  /// What was found to be wrong so far, the first 1,000 of it, each once. It grows with what is
  /// asked for: data is examined when it is read. To have a file examined as a whole, use the
  /// program: mdf check.
  const std::vector<Finding>& findings() const;
  /// How many findings there were, kept or not. What is read again is found again; of findings that
  /// were kept that counts once.
  std::uint64_t findingCount() const;

 private:
  friend class Batches;
  friend class FrameBatches;
  struct State;
  explicit Measurement(std::shared_ptr<State> state);
  std::shared_ptr<State> state_;  ///< which batches have in common with it
};

/// Signals of a measurement's frames.
struct DecodedSignals {
  Measurement signals;
  Decoded frames;                     ///< what became of them
  std::vector<DatabaseFault> faults;  ///< of the databases
  std::vector<std::string> notes;     ///< on frames that were left out
};

}  // namespace mdf_reader

#endif  // MDF_READER_MEASUREMENT_MEASUREMENT_H_
