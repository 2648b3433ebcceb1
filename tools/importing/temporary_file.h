#ifndef MDF_TOOLS_IMPORTING_TEMPORARY_FILE_H_
#define MDF_TOOLS_IMPORTING_TEMPORARY_FILE_H_

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "reader/bytes/descriptor.h"

namespace mdf_tools {

/// A file that has no name any more.
/// @throws CannotImport
mdf_reader::Descriptor temporaryFile();

/// Copies what follows in one file to where the other one stands.
/// @throws CannotImport where it cannot be read.
/// @throws ImportFailure where it cannot be written.
void copyRest(int from, const std::string& from_name, int to, const std::string& to_name);

/// read(2), again where a signal interrupts it.
ssize_t readSome(int file, char* bytes, std::size_t count);

/// Why the last call failed, in the system's words.
std::string reason();

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_TEMPORARY_FILE_H_
