#ifndef MDF_WRITER_ZIP_DEFLATER_H_
#define MDF_WRITER_ZIP_DEFLATER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

struct libdeflate_compressor;

namespace mdf_writer {

/// Makes zlib streams of data, one after another.
class Deflater {
 public:
  explicit Deflater(int level);

  /// Packs data, transposed in rows of so many bytes unless these are 0. Returns how many bytes of
  /// the stream are in `packed`, 0 where it would not be smaller than the data.
  std::size_t pack(std::string_view data, std::uint32_t row_bytes, std::vector<char>& packed);

 private:
  std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor_;
  std::vector<char> columns_;
};

/// Data of rows, column by column: of all rows the first byte, then the second, and so on. What
/// follows on the last whole row stays at the end.
void transpose(std::string_view rows, std::size_t row_bytes, std::vector<char>& columns);

}  // namespace mdf_writer

#endif  // MDF_WRITER_ZIP_DEFLATER_H_
