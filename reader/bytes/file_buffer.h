#ifndef MDF_READER_BYTES_FILE_BUFFER_H_
#define MDF_READER_BYTES_FILE_BUFFER_H_

#include <cstdint>
#include <streambuf>

#include "paged_file.h"

namespace mdf_reader {

/// Lets streams read a paged file. Seeking drops what was read ahead, so seek after the file has
/// been read by other means.
class FileBuffer : public std::streambuf {
 public:
  explicit FileBuffer(PagedFile& file) : file_(file) {}

 protected:
  int_type underflow() override;
  std::streamsize xsgetn(char* bytes, std::streamsize count) override;
  pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                   std::ios_base::openmode which) override;
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

 private:
  std::uint64_t position() const;
  void goTo(std::uint64_t position);

  PagedFile& file_;
  std::uint64_t end_ = 0;  ///< where in the file the get area ends
};

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_FILE_BUFFER_H_
