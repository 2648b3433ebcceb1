#ifndef MDF_TOOLS_PRINTING_PROGRESS_H_
#define MDF_TOOLS_PRINTING_PROGRESS_H_

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// A line on a terminal that says how much of a file has been read. It appears when work takes
/// longer than an interval, is renewed after each further one, and goes with the object.
class Progress {
 public:
  /// @param name what the line calls the file; "" for nothing.
  Progress(const InputFile& file, const std::string& name, std::ostream& terminal,
           std::chrono::milliseconds interval);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Prints something else to the terminal while the line is out of the way. It stays away as long
  /// as what is printed does not end a line.
  void interrupt(const std::function<void()>& print, bool ends_line = true);

 private:
  void show();
  void hide();

  const InputFile& file_;
  std::string name_;  ///< with what separates it from what follows
  std::ostream& terminal_;
  std::chrono::milliseconds interval_;
  std::mutex mutex_;
  std::condition_variable end_;
  bool is_over_ = false;
  bool is_shown_ = false;
  bool is_line_open_ = false;  ///< of something else
  std::thread thread_;
};

/// "3.2 of 4.0 GiB": how much of something has been read. A count beyond the whole, where bytes are
/// read again, stands alone: "5.1 GiB".
std::string readSoFar(std::uint64_t bytes, std::uint64_t whole);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_PROGRESS_H_
