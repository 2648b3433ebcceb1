#include "targets.h"

#include <algorithm>

#include "block_check.h"

namespace mdf_fuzz {

namespace {

template <class Block>
std::string tryReader(std::string_view input) {
  return readChecked<Block>(std::string(input)).outcome;
}

template <class Block>
std::string readerName() {
  std::string name(letters_of<Block>);
  for (char& letter : name) {
    letter = static_cast<char>(letter - 'A' + 'a');
  }
  return name + "block";
}

template <class... Blocks>
std::vector<std::pair<std::string, Target>> readersOf(BlockList<Blocks...> /*blocks*/) {
  return {{readerName<Blocks>(), tryReader<Blocks>}...};
}

/// A block that was read can be dumped and written; what was written reads back as the bytes say.
template <class Block>
std::string tryBlock(std::string_view input) {
  const Read<Block> read = readChecked<Block>(std::string(input));
  if (read.block) {
    printChecked(*read.block);
    readChecked<Block>(writeChecked(*read.block));
  }
  return read.outcome;
}

template <class... Blocks>
std::string tryBlockNumber(std::size_t number, std::string_view input,
                           BlockList<Blocks...> /*blocks*/) {
  constexpr Target tries[] = {tryBlock<Blocks>...};
  return tries[number % sizeof...(Blocks)](input);
}

}  // namespace

std::string tryBlocks(std::string_view input) {
  if (input.empty()) {
    return "nothing";
  }
  return tryBlockNumber(static_cast<unsigned char>(input[0]), input.substr(1), AllBlocks{});
}

const std::vector<std::pair<std::string, Target>>& targets() {
  static const auto all = [] {
    auto list = readersOf(AllBlocks{});
    list.insert(list.end(), {{"blocks", tryBlocks},
                             {"build", tryBuild},
                             {"candump", tryCandump},
                             {"capture", tryCapture},
                             {"copy", tryCopy},
                             {"dbc", tryDbc},
                             {"dump", tryDump},
                             {"check", tryCheck},
                             {"diff", tryDiff},
                             {"draw", tryDraw},
                             {"export", tryExport},
                             {"frames", tryFrames},
                             {"import", tryImport},
                             {"join", tryJoin},
                             {"outline", tryOutline},
                             {"repair", tryRepair},
                             {"show", tryShow},
                             {"measure", tryMeasurement}});
    return list;
  }();
  return all;
}

Target findTarget(std::string_view name) {
  const auto found = std::find_if(targets().begin(), targets().end(),
                                  [&](const auto& each) { return each.first == name; });
  return found == targets().end() ? nullptr : found->second;
}

}  // namespace mdf_fuzz
