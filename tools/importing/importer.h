#ifndef MDF_TOOLS_IMPORTING_IMPORTER_H_
#define MDF_TOOLS_IMPORTING_IMPORTER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "column_facts.h"
#include "mdf_writer/mdf_writer.h"
#include "number_scan.h"

namespace mdf_tools {

/// How tables and logs are read.
struct ImportOptions {
  enum class Format { found_out, csv, json_lines, candump, capture };

  Format format = Format::found_out;
  char separator = '\0';  ///< of CSV; '\0' for one to be found out
  bool has_decimal_comma = false;
  std::string time;  ///< the name of the column of times; "" for the first one if it is one
  std::vector<std::pair<std::string, ValueType>> types;  ///< by patterns of names; the last counts
  bool skips_bad_lines = false;
  std::size_t kept_bytes = std::size_t{1} << 26U;  ///< of memory, for rows that are read once
};

struct Imported {
  std::uint64_t tables = 0;
  std::uint64_t rows = 0;
  std::uint64_t buses = 0;
  std::uint64_t frames = 0;
  std::uint64_t bad_lines = 0;
  std::vector<std::string> notes;  ///< what may not be as it was meant, as sentences
};

/// Makes a measurement file of the tables in text files, with a channel group for each, or of logs
/// of buses, with a channel group for each kind of frame on each bus. Tables are read to find out
/// the columns' types, and the rows that memory does not hold again; logs are read once.
/// @throws ImportFailure; what the output has got is then no file.
Imported importFiles(const std::vector<std::string>& paths, const ImportOptions& options,
                     mdf_writer::Plan& plan, mdf_writer::Output& output);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_IMPORTER_H_
