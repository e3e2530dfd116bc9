#include "simulation/clcamera/clcamerafeatures.h"

#include "simulation/cameraregisters.h"

#include <array>

namespace krtransport {

namespace {

constexpr std::string_view kDevice = "DeviceControl";
constexpr std::string_view kImageFormat = "ImageFormatControl";
constexpr std::string_view kAcquisition = "AcquisitionControl";
constexpr std::string_view kAnalog = "AnalogControl";
constexpr std::string_view kUserSets = "UserSetControl";

constexpr auto kReadOnly = RegisterAccess::ReadOnly;
constexpr auto kWriteOnly = RegisterAccess::WriteOnly;

constexpr std::array<FeatureEntry, 3> kTestPatterns = {{
    {"Off", "What the sensor sees.", 0},
    {"GreyDiagonalRamp", "A diagonal ramp that stands still.", 1},
    {"GreyDiagonalRampMoving", "A diagonal ramp that moves by one pixel with each frame.", 2},
}};

constexpr std::array<FeatureEntry, 2> kSets = {{
    {"Default", "The values that the camera begins with; they cannot be changed.", clregister::kDefaultSet},
    {"UserSet0", "The values that were saved last; they stay without power.", clregister::kUserSet0},
}};

// clang-format off
constexpr std::array kFeatures = {
    Feature{.name = "DeviceVendorName", .category = kDevice, .kind = FeatureKind::Text,
            .address = clregister::kManufacturerName, .tip = "The camera's maker.", .access = kReadOnly,
            .length = clregister::kTextBytes},
    Feature{.name = "DeviceModelName", .category = kDevice, .kind = FeatureKind::Text,
            .address = clregister::kModelName, .tip = "The camera's model.", .access = kReadOnly,
            .length = clregister::kTextBytes},
    Feature{.name = "DeviceFamilyName", .category = kDevice, .kind = FeatureKind::Text,
            .address = clregister::kFamilyName, .tip = "The family of the model.", .access = kReadOnly,
            .length = clregister::kTextBytes, .visibility = "Expert"},
    Feature{.name = "DeviceVersion", .category = kDevice, .kind = FeatureKind::Text,
            .address = clregister::kDeviceVersion, .tip = "The version of the camera.", .access = kReadOnly,
            .length = clregister::kTextBytes},
    Feature{.name = "DeviceManufacturerInfo", .category = kDevice, .kind = FeatureKind::Text,
            .address = clregister::kManufacturerInfo, .tip = "What the maker says besides.", .access = kReadOnly,
            .length = clregister::kTextBytes, .visibility = "Expert"},
    Feature{.name = "DeviceSerialNumber", .category = kDevice, .kind = FeatureKind::Text,
            .address = clregister::kSerialNumber, .tip = "The number of this one camera.", .access = kReadOnly,
            .length = clregister::kTextBytes, .visibility = "Expert"},
    Feature{.name = "DeviceUserID", .category = kDevice, .kind = FeatureKind::Text,
            .address = clregister::kUserDefinedName,
            .tip = "The name that the user gave to the camera, up to 64 bytes; it stays without power.",
            .length = clregister::kTextBytes},
    Feature{.name = "DeviceTemperature", .category = kDevice, .kind = FeatureKind::Float,
            .address = cameraregister::kTemperature, .tip = "The sensor's temperature, which changes all the time.",
            .access = kReadOnly, .length = 8, .visibility = "Expert", .isVolatile = true, .unit = "C",
            .representation = "Linear"},

    Feature{.name = "WidthMax", .category = kImageFormat, .address = cameraregister::kWidthMax,
            .tip = "The sensor's width in pixels.", .access = kReadOnly, .visibility = "Expert"},
    Feature{.name = "HeightMax", .category = kImageFormat, .address = cameraregister::kHeightMax,
            .tip = "The sensor's height in lines.", .access = kReadOnly, .visibility = "Expert"},
    Feature{.name = "Width", .category = kImageFormat, .address = cameraregister::kWidth,
            .tip = "The image's width in pixels.", .minimum = cameraregister::kWidthMin,
            .increment = cameraregister::kWidthIncrement, .limit = "WidthMax", .limitLess = "OffsetX"},
    Feature{.name = "Height", .category = kImageFormat, .address = cameraregister::kHeight,
            .tip = "The image's height in lines.", .minimum = cameraregister::kHeightMin,
            .increment = cameraregister::kHeightIncrement, .limit = "HeightMax", .limitLess = "OffsetY",
            .inquiry = "HeightMax"},
    Feature{.name = "OffsetX", .category = kImageFormat, .address = cameraregister::kOffsetX,
            .tip = "The pixels of the sensor to the left of the image.",
            .increment = cameraregister::kWidthIncrement, .limit = "WidthMax", .limitLess = "Width"},
    Feature{.name = "OffsetY", .category = kImageFormat, .address = cameraregister::kOffsetY,
            .tip = "The lines of the sensor above the image.", .increment = cameraregister::kHeightIncrement,
            .limit = "HeightMax", .limitLess = "Height", .inquiry = "HeightMax"},
    Feature{.name = "PixelFormat", .category = kImageFormat, .kind = FeatureKind::Enumeration,
            .address = cameraregister::kPixelFormat, .tip = "How a pixel is sent."},
    Feature{.name = "TestPattern", .category = kImageFormat, .kind = FeatureKind::Enumeration,
            .address = cameraregister::kTestPattern, .tip = "The picture that the camera sends.",
            .entries = kTestPatterns},

    Feature{.name = "AcquisitionFrameRate", .category = kAcquisition, .kind = FeatureKind::Float,
            .address = cameraregister::kAcquisitionFrameRate, .tip = "Frames per second.", .length = 8,
            .minimum = cameraregister::kFrameRateMin, .maximum = cameraregister::kFrameRateMax, .start = 30.0,
            .unit = "Hz", .representation = "Linear"},
    Feature{.name = "ExposureTime", .category = kAcquisition, .kind = FeatureKind::Float,
            .address = cameraregister::kExposureTime, .tip = "The exposure time.", .length = 8,
            .minimum = cameraregister::kExposureTimeMinUs, .maximum = cameraregister::kExposureTimeMaxUs,
            .start = 1000.0, .unit = "us", .representation = "Logarithmic"},

    Feature{.name = "Gain", .category = kAnalog, .kind = FeatureKind::Float, .address = cameraregister::kGain,
            .tip = "The sensor's gain.", .length = 8, .maximum = cameraregister::kGainMaxDb, .unit = "dB",
            .representation = "Linear"},

    Feature{.name = "UserSetSelector", .category = kUserSets, .kind = FeatureKind::Enumeration,
            .address = clregister::kUserSetSelector, .tip = "The set of values that the commands load and save.",
            .entries = kSets},
    Feature{.name = "UserSetLoad", .category = kUserSets, .kind = FeatureKind::Command,
            .address = clregister::kUserSetLoad, .tip = "Sets all features to the values of the set.",
            .access = kWriteOnly, .selector = "UserSetSelector"},
    Feature{.name = "UserSetSave", .category = kUserSets, .kind = FeatureKind::Command,
            .address = clregister::kUserSetSave, .tip = "Makes the values of now those of the set.",
            .access = kWriteOnly, .selector = "UserSetSelector"},
};
// clang-format on

} // namespace

std::span<const Feature> ListCLCameraFeatures() {
  return kFeatures;
}

} // namespace krtransport
