#include "simulation/cameradescription.h"

#include "simulation/cameraregisters.h"
#include "simulation/descriptiontext.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace krtransport {

namespace {

using namespace cameraregister;

std::string FormatHex(std::uint64_t aValue) {
  char text[24];
  std::snprintf(text, sizeof(text), "0x%08llX", static_cast<unsigned long long>(aValue));
  return text;
}

// Names in a description consist of letters and digits.
std::string MakeName(const std::string& aText) {
  std::string name;
  std::ranges::copy_if(aText, std::back_inserter(name), [](char aCharacter) {
    return (aCharacter >= '0' && aCharacter <= '9') || (aCharacter >= 'A' && aCharacter <= 'Z') ||
           (aCharacter >= 'a' && aCharacter <= 'z');
  });
  return name.empty() ? "Camera" : name;
}

std::string MakePixelFormatEntries(const LabCamera& aCamera) {
  std::string entries;
  for (const KrPixelType type : aCamera.pixelFormats) {
    const std::optional<KrPixelTypeInfo> info = KrFindPixelType(type);
    if (!info)
      continue;
    entries += "    <EnumEntry Name=\"" + std::string(info->name) + "\" NameSpace=\"Standard\">\n      <Value>" +
               FormatHex(type) + "</Value>\n    </EnumEntry>\n";
  }
  return entries;
}

// Whole numbers are limits enough for all ranges of the camera.
std::string FormatLimit(double aLimit) {
  return std::to_string(static_cast<long long>(aLimit)) + ".0";
}

using Replacements = std::map<std::string, std::string>;

Replacements MakeReplacements(const LabCamera& aCamera) {
  return {
      {"ModelID", MakeName(aCamera.modelName.ToUtf8())},
      {"VendorID", MakeName(aCamera.vendorName.ToUtf8())},
      {"PixelFormatEntries", MakePixelFormatEntries(aCamera)},
      {"ManufacturerName", FormatHex(kManufacturerName)},
      {"ModelName", FormatHex(kModelName)},
      {"DeviceVersion", FormatHex(kDeviceVersion)},
      {"ManufacturerInfo", FormatHex(kManufacturerInfo)},
      {"SerialNumber", FormatHex(kSerialNumber)},
      {"UserDefinedName", FormatHex(kUserDefinedName)},
      {"WidthMax", FormatHex(kWidthMax)},
      {"HeightMax", FormatHex(kHeightMax)},
      {"Width", FormatHex(kWidth)},
      {"Height", FormatHex(kHeight)},
      {"PixelFormat", FormatHex(kPixelFormat)},
      {"PayloadSize", FormatHex(kPayloadSize)},
      {"TestPattern", FormatHex(kTestPattern)},
      {"AcquisitionMode", FormatHex(kAcquisitionMode)},
      {"AcquisitionStart", FormatHex(kAcquisitionStart)},
      {"AcquisitionStop", FormatHex(kAcquisitionStop)},
      {"TLParamsLocked", FormatHex(kTLParamsLocked)},
      {"AcquisitionFrameRate", FormatHex(kAcquisitionFrameRate)},
      {"ExposureTime", FormatHex(kExposureTime)},
      {"Gain", FormatHex(kGain)},
      {"WidthMin", std::to_string(kWidthMin)},
      {"WidthIncrement", std::to_string(kWidthIncrement)},
      {"HeightMin", std::to_string(kHeightMin)},
      {"HeightIncrement", std::to_string(kHeightIncrement)},
      {"FrameRateMin", FormatLimit(kFrameRateMin)},
      {"FrameRateMax", FormatLimit(kFrameRateMax)},
      {"ExposureTimeMin", FormatLimit(kExposureTimeMinUs)},
      {"ExposureTimeMax", FormatLimit(kExposureTimeMaxUs)},
      {"GainMax", FormatLimit(kGainMaxDb)},
  };
}

// Puts the replacements in the place of the names between two $ signs.
std::string Expand(std::string_view aText, const Replacements& aReplacements) {
  std::string expanded;
  while (!aText.empty()) {
    const std::size_t begin = aText.find('$');
    expanded += aText.substr(0, begin);
    if (begin == std::string_view::npos)
      break;
    const std::size_t end = aText.find('$', begin + 1);
    expanded += aReplacements.at(std::string(aText.substr(begin + 1, end - begin - 1)));
    aText.remove_prefix(end + 1);
  }
  return expanded;
}

} // namespace

std::string MakeCameraDescription(const LabCamera& aCamera) {
  const Replacements replacements = MakeReplacements(aCamera);
  std::string text;
  for (const std::string_view section : kDescriptionSections)
    text += Expand(section, replacements);
  text.resize((text.size() + 3) / 4 * 4, '\n');
  return text;
}

} // namespace krtransport
