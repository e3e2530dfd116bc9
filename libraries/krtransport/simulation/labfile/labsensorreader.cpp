#include "simulation/labfile/labsensorreader.h"

#include "simulation/cameraregisters.h"
#include "simulation/testpattern.h"

#include <algorithm>
#include <array>

namespace krtransport {

namespace {

constexpr std::uint32_t kMostSensorPixels = 16384;
constexpr std::size_t kMostPixelFormats = 256;

// Whether frames of a format can be painted; the least picture tells.
bool CanBePainted(KrPixelType aType) {
  std::array<std::uint8_t, 1024> picture = {};
  constexpr std::uint32_t kSide = 8; // All groups of pixels divide it, and 16 bytes a pixel are the most.
  return FillPattern(aType, kSide, kSide, 0, picture.data());
}

void ReadPixelFormats(LabMap& aMap, std::vector<KrPixelType>& aFormats) {
  const std::span<const YamlNode> items = aMap.TakeItems("pixelFormats", kMostPixelFormats);
  std::vector<KrPixelType> formats;
  for (const YamlNode& item : items) {
    const std::optional<KrPixelType> type = KrFindPixelType(std::string_view(item.text));
    if (!type || !CanBePainted(*type))
      aMap.Report(item.place, "\"pixelFormats\" has to be names of formats that can be simulated, as Mono8");
    else if (std::ranges::find(formats, *type) != formats.end())
      aMap.Report(item.place, "the pixel format " + item.text + " is there twice");
    else
      formats.push_back(*type);
  }
  if (!formats.empty())
    aFormats = formats;
}

} // namespace

void ReadSensor(LabMap& aMap, LabSensor& aSensor) {
  const YamlNode* const node = aMap.Find("sensor");
  if (!node)
    return;
  LabMap sensor(*node, "a sensor", aMap.GetProblem());
  sensor.TakeNumber("width", aSensor.sensorWidth, cameraregister::kWidthMin, kMostSensorPixels);
  sensor.TakeNumber("height", aSensor.sensorHeight, cameraregister::kHeightMin, kMostSensorPixels);
  sensor.TakeReal("frameRate", cameraregister::kFrameRateMin, cameraregister::kFrameRateMax, aSensor.framesPerSecond);
  ReadPixelFormats(sensor, aSensor.pixelFormats);
  sensor.Finish();
  if (aSensor.sensorWidth % cameraregister::kWidthIncrement != 0 ||
      aSensor.sensorHeight % cameraregister::kHeightIncrement != 0)
    aMap.Report(node->place, "a sensor's width has to be a multiple of 4, its height of 2");
}

} // namespace krtransport
