#include "simulation/clcamera/clcameradescription.h"

#include "simulation/camerafeatures.h"
#include "simulation/clcamera/clcamerafeatures.h"
#include "simulation/clcamera/zipping.h"
#include "simulation/descriptionwriter.h"

namespace krtransport {

namespace {

constexpr DescriptionCategory kCategories[] = {
    {"DeviceControl", "What the camera is."},         {"ImageFormatControl", "Size and format of the image."},
    {"AcquisitionControl", "When frames are taken."}, {"AnalogControl", "The sensor's amplifier."},
    {"UserSetControl", "Values that are kept."},
};
constexpr const char* kFileName = "camera.xml";

} // namespace

std::string MakeStoredDescription(const LabCLCamera& aCamera, std::size_t aIndex) {
  const CameraFeatures features(ListCLCameraFeatures(), aCamera.pixelFormats);
  const std::string text = DescriptionWriter(features, kCategories)
                               .Write({.modelName = aCamera.modelName,
                                       .vendorName = aCamera.vendorName,
                                       .nameSpace = "CL",
                                       .minorVersion = static_cast<std::uint32_t>(aIndex)});
  return aCamera.descriptions.at(aIndex) == DescriptionFormat::Zipped ? MakeZip(kFileName, text) : text;
}

} // namespace krtransport
