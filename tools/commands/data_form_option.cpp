#include "data_form_option.h"

#include <cstddef>

#include "command_line/command_line.h"
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

void addDataFormOptions(CommandLine& command, DataFormChoice& choice) {
  const Option zip =
      command.addOption("--zip", choice.zip, "Put data into new blocks, zipped in this way")
          .choice({"deflate", "transposed", "none"});
  command.addOption("--level", choice.form.level, "From 1, the fastest, to 12, the smallest")
      .typeName("N")
      .check(expectCount)
      .within(1, 12)
      .needs(zip)
      .showDefault();
  command
      .addOption("--block-size", choice.form.block_bytes,
                 "The most data of a block in bytes, before it is zipped")
      .typeName("BYTES")
      .check(expectCount)
      .within(std::size_t{1024}, std::size_t{1} << 24U)
      .needs(zip)
      .showDefault();
}

}  // namespace mdf_tools
