#ifndef MDF_READER_DECODING_MESSAGE_LOOKUP_H_
#define MDF_READER_DECODING_MESSAGE_LOOKUP_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "../bus/bus_database.h"

namespace mdf_reader {

/// What the messages of some buses mean.
struct NamedDatabase {
  std::string path;
  std::string bus;  ///< a bus, its number, or a pattern; "" for every bus
  BusDatabase database;
};

/// A message that frames with an identifier hold.
struct FoundMessage {
  const BusMessage* message = nullptr;  ///< none for an unknown one
  bool is_j1939 = false;                ///< whoever sends it
};

/// Finds the messages of frames, of those that have signals. Of several databases, the first that
/// knows an identifier counts.
class MessageLookup {
 public:
  /// @param databases must last as long as the lookup.
  /// @param is_j1939 whether the parameter group is all that counts of each identifier of 29 bits.
  MessageLookup(const std::vector<NamedDatabase>& databases, bool is_j1939);

  FoundMessage find(std::string_view bus, std::uint32_t id, bool is_extended) const;

 private:
  struct Table {
    const NamedDatabase* from;
    std::unordered_map<std::uint32_t, const BusMessage*> standard;
    std::unordered_map<std::uint32_t, const BusMessage*> extended;
    std::unordered_map<std::uint32_t, const BusMessage*> parameter_groups;
  };

  std::vector<Table> tables_;
};

/// The parameter group of an identifier of SAE J1939: without priority and sender, and without the
/// addressee if it has one.
std::uint32_t parameterGroupOf(std::uint32_t id);

}  // namespace mdf_reader

#endif  // MDF_READER_DECODING_MESSAGE_LOOKUP_H_
