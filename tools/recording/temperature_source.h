#ifndef MDF_TOOLS_RECORDING_TEMPERATURE_SOURCE_H_
#define MDF_TOOLS_RECORDING_TEMPERATURE_SOURCE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "signal_source.h"
#include "text_file.h"

namespace mdf_tools {

/// Temperatures in °C, from /sys/class/hwmon and, for thermal zones that do not show up there as
/// well, from /sys/class/thermal.
///
/// Reading a sensor may take milliseconds, since some are on a slow bus. So each is read at most
/// ten times a second, and not all at the same time.
class TemperatureSource : public SignalSource {
 public:
  explicit TemperatureSource(const std::filesystem::path& root);
  void sample(double seconds) override;

 private:
  struct Sensor {
    TextFile file;
    Pace pace;
  };

  void addChip(const std::filesystem::path& folder);
  void addZone(const std::filesystem::path& folder);
  void addSensor(const std::filesystem::path& file, const std::string& name);

  std::vector<Sensor> sensors_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_TEMPERATURE_SOURCE_H_
