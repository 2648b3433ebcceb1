#include "data_form_option.h"

#include <CLI/CLI.hpp>
#include <cstddef>

#include "number_option.h"

namespace mdf_tools {

std::optional<DataForm> DataFormChoice::chosen() const {
  if (zip.empty()) {
    return std::nullopt;
  }
  DataForm wanted = form;
  wanted.zip = zip == "none" ? Zip::none : zip == "deflate" ? Zip::deflate : Zip::transposed;
  return wanted;
}

void addDataFormOptions(CLI::App& command, DataFormChoice& choice) {
  CLI::Option* const zip =
      command.add_option("--zip", choice.zip, "Put data into new blocks, zipped in this way");
  zip->check(CLI::IsMember({"deflate", "transposed", "none"}))
      ->option_text("deflate|transposed|none");
  command.add_option("--level", choice.form.level, "From 1, the fastest, to 12, the smallest")
      ->type_name("N")
      ->check(isCount() & CLI::Range(1, 12))
      ->needs(zip)
      ->capture_default_str();
  command
      .add_option("--block-size", choice.form.block_bytes,
                  "The most data of a block in bytes, before it is zipped")
      ->type_name("BYTES")
      ->check(isCount() & CLI::Range(std::size_t{1024}, std::size_t{1} << 24U))
      ->needs(zip)
      ->capture_default_str();
}

}  // namespace mdf_tools
