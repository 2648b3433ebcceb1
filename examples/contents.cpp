// Prints what is in a file, as the reader library sees it: contents FILE

#include <mdf_reader/mdf_reader.h>

#include <iostream>

using namespace mdf_reader;

static void printGroup(const Measurement& trip, const ChannelGroup& group) {
  std::cout << "group " << group.shownName() << ": " << trip.records(group) << " records\n";
  for (const Channel& channel : group.channels) {
    const std::string indentation(2 + 2 * channel.depth, ' ');
    std::cout << indentation << channel.name << (channel.isMaster() ? ", master" : "");
    if (!channel.unit.empty()) std::cout << ", in " << channel.unit;
    if (const auto conversion = trip.block(channel.conversion)) {
      std::cout << ", conversion of type " << conversion->fields[0].value;
    }
    std::cout << '\n';
  }
}

int main(int argc, char** argv) try {
  if (argc != 2) {
    std::cerr << "Usage: contents FILE\n";
    return 2;
  }
  const Measurement trip(argv[1]);
  std::cout << "version " << trip.identification().version << ", by "
            << trip.identification().program << '\n';
  for (const ChannelGroup& group : trip.groups()) printGroup(trip, group);
  for (const Attachment& each : trip.attachments()) {
    std::cout << "attachment " << each.name << ": ";
    if (!each.is_embedded) {
      std::cout << "not in the file\n";
      continue;
    }
    std::size_t bytes = 0;
    const auto state = trip.readAttachment(each, [&](auto piece) { bytes += piece.size(); });
    std::cout << bytes << " bytes, " << (state == AttachmentData::fine ? "fine" : "damaged")
              << '\n';
  }
  for (const Event& each : trip.events()) {
    std::cout << "event " << each.name << " at " << each.position() << '\n';
  }
  for (const HierarchyEntry& each : trip.hierarchy()) {
    std::cout << std::string(2 * each.depth, ' ') << "hierarchy " << each.name << ": "
              << each.elements.size() << " channels\n";
  }
  for (const HistoryEntry& each : trip.history()) {
    std::cout << "history: " << each.comment << '\n';
  }
  for (const Finding& each : trip.findings()) {
    std::cerr << each.offset << ": " << each.sentence << '\n';
  }
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 2;
}
