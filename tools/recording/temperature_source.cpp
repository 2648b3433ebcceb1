#include "temperature_source.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <system_error>

namespace mdf_tools {

namespace fs = std::filesystem;

namespace {

constexpr double reading_interval = 0.1;  // seconds
constexpr std::string_view input_suffix = "_input";

bool startsWith(const std::string& text, std::string_view beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

/// The names in a folder with this beginning, 2 before 10; none when there is no such folder.
std::vector<std::string> namesIn(const fs::path& folder, std::string_view beginning) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (startsWith(name, beginning)) {
      names.push_back(std::move(name));
    }
  }
  std::sort(names.begin(), names.end(), [](const std::string& left, const std::string& right) {
    return left.size() != right.size() ? left.size() < right.size() : left < right;
  });
  return names;
}

/// The first line of a file, or a fallback when there is none.
std::string firstLine(const fs::path& path, const std::string& otherwise) {
  TextFile file(path);
  std::string_view text = file.read();
  const std::string_view line = takeLine(text);
  return line.empty() ? otherwise : std::string(line);
}

/// Sensors count in thousandths of a degree.
std::optional<float> parseCelsius(std::string_view text) {
  std::string_view line = takeLine(text);
  const std::optional<float> thousandths = takeFloat(line);
  return thousandths ? std::optional<float>(*thousandths / 1000.0F) : std::nullopt;
}

}  // namespace

TemperatureSource::TemperatureSource(const fs::path& root) {
  const fs::path chips = root / "sys/class/hwmon";
  for (const std::string& name : namesIn(chips, "hwmon")) {
    addChip(chips / name);
  }
  const fs::path zones = root / "sys/class/thermal";
  for (const std::string& name : namesIn(zones, "thermal_zone")) {
    addZone(zones / name);
  }
  for (std::size_t i = 0; i < sensors_.size(); ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(sensors_.size());
    sensors_[i].pace = Pace(reading_interval, share * reading_interval);
  }
}

void TemperatureSource::addChip(const fs::path& folder) {
  const std::string chip = firstLine(folder / "name", folder.filename().string());
  for (const std::string& name : namesIn(folder, "temp")) {
    const std::size_t end = name.rfind(input_suffix);
    if (end != std::string::npos && end + input_suffix.size() == name.size()) {
      const std::string sensor = name.substr(0, end);
      const std::string label = firstLine(folder / (sensor + "_label"), sensor);
      addSensor(folder / name, "temp_" + namePart(chip) + "_" + namePart(label));
    }
  }
}

void TemperatureSource::addZone(const fs::path& folder) {
  const bool is_chip_as_well = !namesIn(folder, "hwmon").empty();
  if (!is_chip_as_well) {
    const std::string zone = folder.filename().string().substr(std::string("thermal_").size());
    const std::string type = firstLine(folder / "type", "thermal");
    addSensor(folder / "temp", "temp_" + namePart(type) + "_" + namePart(zone));
  }
}

void TemperatureSource::addSensor(const fs::path& file, const std::string& name) {
  Sensor sensor{TextFile(file), Pace(reading_interval)};
  if (const std::optional<float> celsius = parseCelsius(sensor.file.read())) {
    add(float32Signal(name, "°C"), bitsOf(*celsius));
    sensors_.push_back(std::move(sensor));
  }
}

void TemperatureSource::sample(double seconds) {
  for (std::size_t i = 0; i < sensors_.size(); ++i) {
    if (sensors_[i].pace.isDue(seconds)) {
      if (const std::optional<float> celsius = parseCelsius(sensors_[i].file.read())) {
        set(i, bitsOf(*celsius));
      }
    }
  }
}

}  // namespace mdf_tools
