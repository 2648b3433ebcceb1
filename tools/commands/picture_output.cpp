#include "picture_output.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include "command.h"
#include "extracting/new_file.h"
#include "pictures/drawing_program.h"

namespace mdf_tools {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& place) {
  throw Unwritable("cannot write to " + place + ": " + std::generic_category().message(errno));
}

void writeToOutput(const std::string& bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() ||
      std::fflush(stdout) != 0) {
    fail("standard output");
  }
}

/// A device or a pipe is written to, not replaced.
void writeToDevice(const fs::path& path, const std::string& bytes) {
  std::ofstream device(path, std::ios::binary);
  device << bytes;
  if (!device.flush()) {
    fail(path.string());
  }
}

void writeToFile(const fs::path& path, const std::string& bytes) {
  const std::string folder = path.parent_path().string();
  NewFile file(folder.empty() ? "." : folder, path.filename().string());
  file.write(bytes);
  file.complete(true);
}

void write(const std::string& path, const std::string& bytes) {
  std::error_code none;
  if (path == "-") {
    writeToOutput(bytes);
  } else if (fs::is_other(path, none)) {
    writeToDevice(path, bytes);
  } else {
    // A symbolic link stays; the file that it points to is replaced.
    const fs::path there = fs::canonical(path, none);
    writeToFile(none ? fs::path(path) : there, bytes);
  }
}

}  // namespace

int writePicture(const std::string& path, const std::function<std::string()>& draw) {
  try {
    write(path, draw());
    return exit_fine;
  } catch (const DrawingFailed& error) {
    std::cerr << "mdf: " << error.what() << '\n';
  } catch (const Unwritable& error) {
    std::cerr << "mdf: " << error.what() << '\n';
  }
  return exit_problem;
}

}  // namespace mdf_tools
