#ifndef MDF_WRITER_PLAN_PLAN_H_
#define MDF_WRITER_PLAN_PLAN_H_

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "attachment.h"
#include "group.h"
#include "hierarchy.h"
#include "texts.h"

namespace mdf_writer {

/// A moment, as a file says it.
struct Moment {
  std::uint64_t nanoseconds = 0;    ///< since 1970-01-01 UTC
  std::int16_t zone_minutes = 0;    ///< offset of the local time zone without daylight saving
  bool is_daylight_saving = false;  ///< an hour on top of the offset
};

/// This moment, by the machine's clock and time zone.
Moment now();

/// What a file will hold, before there is any data: its properties and its groups. It must last as
/// long as a recording of it, and one plan is for one recording at a time.
class Plan {
 public:
  explicit Plan(std::string text = {}) : comment(std::move(text)) {}
  ~Plan() = default;
  Plan(const Plan&) = delete;
  Plan& operator=(const Plan&) = delete;

  std::string comment;    ///< what the file is about, in words
  Properties properties;  ///< such as {"author", "..."}, {"subject", "..."}
  Moment start = now();   ///< what times count from

  /// Which program writes the file. Of `program` 8 characters have room in the identification.
  std::string program = "mdf";
  std::string program_vendor;
  std::string program_version;
  std::string history = "recorded";  ///< what it did, for the file's history

  std::vector<Attachment> attachments;    ///< those that the file has from the beginning
  std::vector<HierarchyEntry> hierarchy;  ///< of the groups' channels, in any order and depth

  /// A new group. It stays where it is as long as the plan lasts.
  Group& addGroup(std::string name, Group::Order order = Group::Order::time);

  const std::deque<Group>& groups() const { return groups_; }

  /// What is wrong with the plan, as a sentence; empty for nothing.
  std::string fault() const;

 private:
  friend class Recording;

  std::string faultOf(const std::vector<HierarchyEntry>& entries) const;
  std::string faultOf(const HierarchyEntry& entry, const HierarchyEntry* next) const;

  std::deque<Group> groups_;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_PLAN_PLAN_H_
