// Prints the values of channels, each with its master channel's: values FILE CHANNEL...

#include <mdf_reader/mdf_reader.h>

#include <iostream>

int main(int argc, char** argv) try {
  if (argc < 3) {
    std::cerr << "Usage: values FILE CHANNEL...\n";
    return 2;
  }
  const mdf_reader::Measurement trip(argv[1]);
  mdf_reader::Selection selection;
  selection.channels.assign(argv + 2, argv + argc);
  const auto groups = trip.forEachRow(selection, [](const mdf_reader::Row& row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      std::cout << row.name(i) << '=' << row.text(i) << row.unit(i) << ' ';
    }
    std::cout << '\n';
    return true;  // go on
  });
  for (const auto& finding : trip.findings()) {
    std::cerr << finding.offset << ": " << finding.sentence << '\n';
  }
  return groups > 0 && trip.findings().empty() ? 0 : 1;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 2;
}
