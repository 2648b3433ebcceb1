// Prints the values of channels, each with its master channel's: values FILE CHANNEL...

#include <mdf_reader/mdf_reader.h>

#include <iostream>
#include <string>

int main(int argc, char** argv) try {
  if (argc < 3) {
    std::cerr << "Usage: values FILE CHANNEL...\n";
    return 2;
  }
  const mdf_reader::Measurement trip(argv[1]);
  mdf_reader::Query query;
  query.channels.assign(argv + 2, argv + argc);
  auto batches = trip.read(query);
  bool has_any = false;
  while (const auto* batch = batches.next()) {
    has_any = true;
    for (std::size_t row = 0; row < batch->rows(); ++row) {
      std::string line;
      for (std::size_t i = 0; i < batch->columnCount(); ++i) {
        line += batch->name(i) + '=';
        batch->column(i).print(row, line);
        line += batch->unit(i) + ' ';
      }
      std::cout << line << '\n';
    }
  }
  for (const auto& finding : trip.findings()) {
    std::cerr << finding.offset << ": " << finding.sentence << '\n';
  }
  return has_any && trip.findings().empty() ? 0 : 1;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 2;
}
