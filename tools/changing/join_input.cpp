#include "join_input.h"

#include <utility>

#include "copy_failure.h"
#include "file_describer.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

JoinInput::JoinInput(InputFile& input, std::string called, const FindingSink& sink)
    : file(input),
      name(std::move(called)),
      report(sink),
      blocks(input, sink),
      description(readDescription(input, sink)),
      data(input),
      conversions(input, sink),
      describer(std::make_unique<FileDescriber>(input, sink)) {
  if (blocks.table().size() == 0) {
    throw CopyFailure(name + " has no header block");
  }
}

JoinInput::~JoinInput() = default;

}  // namespace mdf_tools
