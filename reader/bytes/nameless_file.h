#ifndef MDF_READER_BYTES_NAMELESS_FILE_H_
#define MDF_READER_BYTES_NAMELESS_FILE_H_

#include <string>

#include "descriptor.h"

namespace mdf_reader {

/// The folder for files that may be large: $TMPDIR, or /var/tmp, as /tmp may lie in memory.
std::string folderForFiles();

/// A new file that nobody else sees, and that is gone with its descriptor; none where the folder
/// takes no files, and errno says why.
Descriptor namelessFile(const std::string& folder);

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_NAMELESS_FILE_H_
