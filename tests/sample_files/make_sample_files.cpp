// Writes the sample files of the tests to a folder, for people who want to look into them.

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "tools/samples/sample.h"

namespace {

int writeTo(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  for (const mdf_tests::Sample& sample : mdf_tests::allSamples()) {
    const std::filesystem::path path = folder / (sample.name + ".mf4");
    std::ofstream file(path, std::ios::binary);
    file << sample.bytes;
    file.close();
    if (!file) {
      std::cerr << "make_sample_files: cannot write " << path.string() << '\n';
      return 1;
    }
    std::cout << path.string() << ": " << sample.shows << '\n';
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc == 2 ? argv[1] : "";
  if (folder.empty() || folder.front() == '-') {
    std::cerr << "Usage: make_sample_files FOLDER\n";
    return 2;
  }
  try {
    return writeTo(folder);
  } catch (const std::exception& error) {
    std::cerr << "make_sample_files: " << error.what() << '\n';
    return 1;
  }
}
