#ifndef MDF_FUZZ_TARGETS_H_
#define MDF_FUZZ_TARGETS_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What is tried with arbitrary bytes. A reader has its class's name in small letters; `blocks`
/// reads, dumps and writes a block of a type that the first byte chooses; `build` does what the
/// bytes say with a block; `dump` and `check` are what `mdf dump` and `mdf check` make of a file,
/// `draw` what `mdf tree`, `mdf graph` and the options of `mdf dump` make of it, `export` what `mdf
/// export`, `mdf plot` and `mdf stats` make of it, `frames` what `mdf frames` does, `show` what
/// `mdf info`, `mdf list` and `mdf extract` do; `import` makes a file of a text as `mdf import`
/// does, `candump` and `capture` one of a log of frames; `repair` finishes a file as `mdf repair`
/// does; `copy` writes a file again as `mdf copy` does; `diff` compares a file with itself and with
/// one that has another byte, as `mdf diff` does; `join` joins a file with itself, begun at another
/// time, as `mdf join` does; `dbc` reads a description of a bus; `outline` reads what `mdf view
/// --cache` kept; `measure` asks the reader library for all that it gives.
namespace mdf_fuzz {

/// Tries one input and says in a few words what came of it.
/// @throws Violation when something is wrong.
using Target = std::string (*)(std::string_view input);

const std::vector<std::pair<std::string, Target>>& targets();

/// The target with this name; null when there is none.
Target findTarget(std::string_view name);

std::string tryBlocks(std::string_view input);
std::string tryBuild(std::string_view input);
std::string tryCandump(std::string_view input);
std::string tryCapture(std::string_view input);
std::string tryCheck(std::string_view input);
std::string tryCopy(std::string_view input);
std::string tryDbc(std::string_view input);
std::string tryDiff(std::string_view input);
std::string tryDump(std::string_view input);
std::string tryDraw(std::string_view input);
std::string tryExport(std::string_view input);
std::string tryFrames(std::string_view input);
std::string tryImport(std::string_view input);
std::string tryJoin(std::string_view input);
std::string tryMeasurement(std::string_view input);
std::string tryOutline(std::string_view input);
std::string tryRepair(std::string_view input);
std::string tryShow(std::string_view input);

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_TARGETS_H_
