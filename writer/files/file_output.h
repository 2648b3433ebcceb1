#ifndef MDF_WRITER_FILES_FILE_OUTPUT_H_
#define MDF_WRITER_FILES_FILE_OUTPUT_H_

#include <string>

#include "output.h"

namespace mdf_writer {

/// What becomes of a file that is there already.
enum class Existing { keep, replace };

/// A file of the system. It is made beside its name and takes the name when it is published: under
/// the name there is either what was there before or the new file, never a part of it. Devices and
/// pipes are written to as they are.
class FileOutput : public Output {
 public:
  /// Where the file cannot be made, isOpen() is false, and cause() says why.
  FileOutput(const std::string& path, Existing existing);

  /// Writes to what is open already, such as standard output, and does not close it.
  explicit FileOutput(int descriptor);

  /// Removes a file that was not published.
  ~FileOutput() override;
  FileOutput(const FileOutput&) = delete;
  FileOutput& operator=(const FileOutput&) = delete;

  bool isOpen() const { return descriptor_ >= 0; }

  /// Where the bytes are until the file is published, and from then on.
  const std::string& place() const { return temporary_.empty() ? path_ : temporary_; }

  bool isSeekable() const override { return is_seekable_; }
  std::size_t write(std::uint64_t offset, const char* bytes, std::size_t count) override;
  bool cut(std::uint64_t size) override;
  bool publish() override;
  bool sync() override;
  std::string cause() const override { return cause_; }

 private:
  void openBeside();
  bool takeName();
  bool fail();

  std::string path_;       ///< empty for a descriptor
  std::string temporary_;  ///< beside it, until the file is published
  Existing existing_ = Existing::keep;
  int descriptor_ = -1;
  bool is_seekable_ = false;
  bool is_name_synced_ = true;
  std::string cause_;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_FILES_FILE_OUTPUT_H_
