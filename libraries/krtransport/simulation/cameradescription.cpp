#include "simulation/cameradescription.h"

#include "simulation/camerafeatures.h"
#include "simulation/descriptionwriter.h"

#include <vector>

namespace krtransport {

namespace {

constexpr DescriptionCategory kCategories[] = {
    {"DeviceControl", "What the camera is."},
    {"ImageFormatControl", "Size and format of the image."},
    {"AcquisitionControl", "When frames are taken."},
    {"AnalogControl", "The sensor's amplifier."},
    {"ChunkDataControl", "What frames carry behind the image."},
    {"TransportLayerControl", "How frames travel."},
};
constexpr DescriptionCategory kSerialCategory = {"SerialPortControl", "The camera's serial ports.", false};

} // namespace

std::string MakeCameraDescription(const LabCamera& aCamera) {
  const CameraFeatures features(aCamera);
  std::vector<DescriptionCategory> categories(std::begin(kCategories), std::end(kCategories));
  if (features.HasSerialPorts())
    categories.push_back(kSerialCategory);
  std::string text = DescriptionWriter(features, categories)
                         .Write({.modelName = aCamera.modelName, .vendorName = aCamera.vendorName, .nameSpace = "GEV"});
  text.resize((text.size() + 3) / 4 * 4, '\n');
  return text;
}

} // namespace krtransport
