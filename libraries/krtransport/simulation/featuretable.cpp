#include "simulation/featuretable.h"

#include "simulation/cameraregisters.h"

#include <algorithm>
#include <array>
#include <optional>

namespace krtransport {

using namespace cameraregister;

namespace {

constexpr std::string_view kDevice = "DeviceControl";
constexpr std::string_view kImageFormat = "ImageFormatControl";
constexpr std::string_view kAcquisition = "AcquisitionControl";
constexpr std::string_view kAnalog = "AnalogControl";
constexpr std::string_view kChunkData = "ChunkDataControl";
constexpr std::string_view kTransportLayer = "TransportLayerControl";

constexpr auto kReadOnly = RegisterAccess::ReadOnly;
constexpr auto kWriteOnly = RegisterAccess::WriteOnly;

constexpr std::array<FeatureEntry, 4> kTestPatterns = {{
    {"GreyDiagonalRampMoving", "A diagonal ramp that moves by one pixel with each frame.", 0},
    {"GreyDiagonalRamp", "A diagonal ramp that stands still.", 1},
    {"FrameCounter", "The frame's number as black and white blocks over a diagonal ramp.", 2},
    {"Off", "A scene that the sensor sees: a diagonal ramp, as bright as ExposureTime and Gain make it.", 3},
}};

constexpr std::array<FeatureEntry, 3> kAcquisitionModes = {{
    {"Continuous", "Frames until acquisition is stopped.", kContinuous},
    {"SingleFrame", "One frame.", kSingleFrame},
    {"MultiFrame", "As many frames as AcquisitionFrameCount says.", kMultiFrame},
}};

constexpr std::array<FeatureEntry, 1> kExposureModes = {{{"Timed", "As long as ExposureTime says.", 1}}};

constexpr std::array<FeatureEntry, 2> kTriggers = {{
    {"FrameStart", "Starts the exposure of one frame.", kFrameStart},
    {"AcquisitionStart", "Starts the frames of one acquisition.", kAcquisitionStartTrigger},
}};

constexpr std::array<FeatureEntry, 2> kTriggerModes = {{
    {"Off", "Nothing is waited for.", 0},
    {"On", "The trigger is waited for.", 1},
}};

constexpr std::array<FeatureEntry, 2> kTriggerSources = {{
    {"Software", "The command TriggerSoftware.", kSoftware},
    {"Line1", "The simulated line, which pulses by itself.", kLine1},
}};

constexpr std::array<FeatureEntry, 3> kTriggerActivations = {{
    {"RisingEdge", "The begin of a pulse.", kRisingEdge},
    {"FallingEdge", "The end of a pulse.", kFallingEdge},
    {"AnyEdge", "Begin and end of a pulse.", kAnyEdge},
}};

constexpr std::array<FeatureEntry, 4> kFaults = {{
    {"Off", "Every access succeeds.", kNoFault},
    {"Reading", "Reading fails.", kReadingFails},
    {"Writing", "Writing fails.", kWritingFails},
    {"Both", "Reading and writing fail.", kAllFails},
}};

constexpr std::array<FeatureEntry, kChunkCount> kChunks = {{
    {"FrameID", "The frame's number.", kChunkFrameID},
    {"ExposureTime", "The exposure time that the frame was taken with.", kChunkExposureTime},
    {"Timestamp", "The time at which the exposure began.", kChunkTimestamp},
}};

constexpr std::array<std::string_view, 5> kPayloadDependencies = {"Width", "Height", "PixelFormat", "ChunkModeActive",
                                                                  "ChunkEnable"};
constexpr std::array<std::string_view, 3> kFrameRateDependencies = {"ExposureTime", "AcquisitionFrameRate",
                                                                    "AcquisitionFrameRateEnable"};
constexpr std::array<std::string_view, 1> kLatchDependencies = {"TimestampLatch"};

// clang-format off
constexpr std::array kFeatures = {
    Feature{.name = "DeviceVendorName", .category = kDevice, .kind = FeatureKind::Text, .address = kManufacturerName,
            .tip = "The camera's maker.", .access = kReadOnly, .length = 32},
    Feature{.name = "DeviceModelName", .category = kDevice, .kind = FeatureKind::Text, .address = kModelName,
            .tip = "The camera's model.", .access = kReadOnly, .length = 32},
    Feature{.name = "DeviceManufacturerInfo", .category = kDevice, .kind = FeatureKind::Text,
            .address = kManufacturerInfo, .tip = "What the maker says besides.", .access = kReadOnly, .length = 48,
            .visibility = "Expert"},
    Feature{.name = "DeviceVersion", .category = kDevice, .kind = FeatureKind::Text, .address = kDeviceVersion,
            .tip = "The version of the camera.", .access = kReadOnly, .length = 32},
    Feature{.name = "DeviceSerialNumber", .category = kDevice, .kind = FeatureKind::Text, .address = kSerialNumber,
            .tip = "The number of this one camera.", .access = kReadOnly, .length = 16, .visibility = "Expert"},
    Feature{.name = "DeviceUserID", .category = kDevice, .kind = FeatureKind::Text, .address = kUserDefinedName,
            .tip = "The name that the user gave to the camera.", .length = 16},
    Feature{.name = "TimestampLatch", .category = kDevice, .kind = FeatureKind::Command, .address = kTimestampLatch,
            .tip = "Stores the time of the camera's clock in TimestampLatchValue.", .access = kWriteOnly,
            .visibility = "Expert"},
    Feature{.name = "TimestampLatchValue", .category = kDevice, .address = kTimestampLatchValue,
            .tip = "The time that was stored last.", .access = kReadOnly, .length = 8, .visibility = "Expert",
            .unit = "ns", .dependsOn = kLatchDependencies},
    Feature{.name = "DeviceTemperature", .category = kDevice, .kind = FeatureKind::Float, .address = kTemperature,
            .tip = "The sensor's temperature, which changes all the time.", .access = kReadOnly, .length = 8,
            .visibility = "Expert", .isVolatile = true, .unit = "C", .representation = "Linear"},
    Feature{.name = "SimulatedCalibration", .category = kDevice, .kind = FeatureKind::Command,
            .address = kCalibration, .tip = "Does nothing for half a second, and is done then.",
            .visibility = "Expert", .isStandard = false, .isVolatile = true},
    Feature{.name = "SimulatedFault", .category = kDevice, .kind = FeatureKind::Enumeration, .address = kFault,
            .tip = "Which accesses to SimulatedFaultyValue fail.", .visibility = "Guru", .isStandard = false,
            .isVolatile = true, .entries = kFaults},
    Feature{.name = "SimulatedFaultyValue", .category = kDevice, .address = kFaultyValue,
            .tip = "A number without a meaning, whose accesses fail as SimulatedFault says.", .visibility = "Guru",
            .isStandard = false, .isVolatile = true, .maximum = kFaultyValueMax},

    Feature{.name = "WidthMax", .category = kImageFormat, .address = kWidthMax, .tip = "The sensor's width in pixels.",
            .access = kReadOnly, .visibility = "Expert"},
    Feature{.name = "HeightMax", .category = kImageFormat, .address = kHeightMax,
            .tip = "The sensor's height in lines.", .access = kReadOnly, .visibility = "Expert"},
    Feature{.name = "Width", .category = kImageFormat, .address = kWidth, .tip = "The image's width in pixels.",
            .isLocked = true, .minimum = kWidthMin, .increment = kWidthIncrement, .limit = "WidthMax",
            .limitLess = "OffsetX"},
    Feature{.name = "Height", .category = kImageFormat, .address = kHeight, .tip = "The image's height in lines.",
            .isLocked = true, .minimum = kHeightMin, .increment = kHeightIncrement, .limit = "HeightMax",
            .limitLess = "OffsetY"},
    Feature{.name = "OffsetX", .category = kImageFormat, .address = kOffsetX,
            .tip = "The pixels of the sensor to the left of the image.", .increment = kWidthIncrement,
            .limit = "WidthMax", .limitLess = "Width"},
    Feature{.name = "OffsetY", .category = kImageFormat, .address = kOffsetY,
            .tip = "The lines of the sensor above the image.", .increment = kHeightIncrement, .limit = "HeightMax",
            .limitLess = "Height"},
    Feature{.name = "ReverseX", .category = kImageFormat, .kind = FeatureKind::Boolean, .address = kReverseX,
            .tip = "Whether the picture is mirrored; a colour filter's order stays.", .visibility = "Expert"},
    Feature{.name = "PixelFormat", .category = kImageFormat, .kind = FeatureKind::Enumeration, .address = kPixelFormat,
            .tip = "How a pixel is stored.", .isLocked = true},
    Feature{.name = "TestPattern", .category = kImageFormat, .kind = FeatureKind::Enumeration, .address = kTestPattern,
            .tip = "The picture that the camera makes.", .entries = kTestPatterns},

    Feature{.name = "AcquisitionMode", .category = kAcquisition, .kind = FeatureKind::Enumeration,
            .address = kAcquisitionMode, .tip = "How many frames one start of acquisition gives.", .isLocked = true,
            .entries = kAcquisitionModes},
    Feature{.name = "AcquisitionStart", .category = kAcquisition, .kind = FeatureKind::Command,
            .address = kAcquisitionStart, .tip = "Starts to take frames.", .access = kWriteOnly},
    Feature{.name = "AcquisitionStop", .category = kAcquisition, .kind = FeatureKind::Command,
            .address = kAcquisitionStop, .tip = "Stops to take frames.", .access = kWriteOnly},
    Feature{.name = "AcquisitionFrameCount", .category = kAcquisition, .address = kAcquisitionFrameCount,
            .tip = "The frames of one acquisition in the mode MultiFrame.", .isLocked = true, .minimum = 1,
            .maximum = kFrameCountMax, .start = 1, .prerequisite = "AcquisitionMode", .requiredValue = kMultiFrame},
    Feature{.name = "AcquisitionFrameRateEnable", .category = kAcquisition, .kind = FeatureKind::Boolean,
            .address = kAcquisitionFrameRateEnable,
            .tip = "Whether AcquisitionFrameRate limits the frame rate, or the sensor and the exposure time alone.",
            .start = 1},
    Feature{.name = "AcquisitionFrameRate", .category = kAcquisition, .kind = FeatureKind::Float,
            .address = kAcquisitionFrameRate, .tip = "Frames per second, as far as the exposure time allows.",
            .length = 8, .minimum = kFrameRateMin, .maximum = kFrameRateMax, .start = 30.0, .unit = "Hz",
            .representation = "Linear", .prerequisite = "AcquisitionFrameRateEnable"},
    Feature{.name = "ResultingFrameRate", .category = kAcquisition, .kind = FeatureKind::Float,
            .address = kResultingFrameRate, .tip = "Frames per second that come without a trigger.",
            .access = kReadOnly, .length = 8, .isStandard = false, .unit = "Hz", .representation = "Linear",
            .dependsOn = kFrameRateDependencies},
    Feature{.name = "ExposureMode", .category = kAcquisition, .kind = FeatureKind::Enumeration,
            .address = kExposureMode, .tip = "What ends an exposure.", .start = 1, .entries = kExposureModes},
    Feature{.name = "ExposureTime", .category = kAcquisition, .kind = FeatureKind::Float, .address = kExposureTime,
            .tip = "The exposure time; frames come no faster than it allows. Test patterns do not change.",
            .length = 8, .minimum = kExposureTimeMinUs, .maximum = kExposureTimeMaxUs, .start = 1000.0, .unit = "us",
            .representation = "Logarithmic"},
    Feature{.name = "TriggerSelector", .category = kAcquisition, .kind = FeatureKind::Enumeration,
            .address = kTriggerSelector, .tip = "The trigger that the other features set up.", .entries = kTriggers},
    Feature{.name = "TriggerMode", .category = kAcquisition, .kind = FeatureKind::Enumeration, .address = kTriggerMode,
            .tip = "Whether the trigger is waited for.", .entries = kTriggerModes, .selector = "TriggerSelector",
            .stride = kTriggerStride},
    Feature{.name = "TriggerSoftware", .category = kAcquisition, .kind = FeatureKind::Command,
            .address = kTriggerSoftware,
            .tip = "Triggers. A trigger that is not waited for is counted as missed.", .access = kWriteOnly,
            .selector = "TriggerSelector", .stride = kTriggerStride},
    Feature{.name = "TriggerSource", .category = kAcquisition, .kind = FeatureKind::Enumeration,
            .address = kTriggerSource, .tip = "Where the trigger comes from.", .entries = kTriggerSources,
            .selector = "TriggerSelector", .stride = kTriggerStride},
    Feature{.name = "TriggerActivation", .category = kAcquisition, .kind = FeatureKind::Enumeration,
            .address = kTriggerActivation, .tip = "The edge of a line's pulse that triggers.",
            .entries = kTriggerActivations, .selector = "TriggerSelector", .stride = kTriggerStride},
    Feature{.name = "TriggerDelay", .category = kAcquisition, .kind = FeatureKind::Float, .address = kTriggerDelay,
            .tip = "The time from the trigger to what it starts.", .length = 8, .maximum = kTriggerDelayMaxUs,
            .unit = "us", .representation = "Linear", .selector = "TriggerSelector", .stride = kTriggerStride},
    Feature{.name = "SimulatedLinePeriod", .category = kAcquisition, .address = kLinePeriod,
            .tip = "The time from one pulse of Line1 to the next; a pulse takes half of it.", .isStandard = false,
            .minimum = kLinePeriodMinUs, .maximum = kLinePeriodMaxUs, .increment = 2, .start = 10000, .unit = "us"},
    Feature{.name = "SimulatedMissedTriggers", .category = kAcquisition, .address = kMissedTriggers,
            .tip = "Triggers since the start of acquisition that were not waited for.", .access = kReadOnly,
            .visibility = "Expert", .isStandard = false, .isVolatile = true},

    Feature{.name = "Gain", .category = kAnalog, .kind = FeatureKind::Float, .address = kGain,
            .tip = "The sensor's gain; test patterns are made behind it and do not change.", .length = 8,
            .maximum = kGainMaxDb, .unit = "dB", .representation = "Linear"},

    Feature{.name = "ChunkModeActive", .category = kChunkData, .kind = FeatureKind::Boolean,
            .address = kChunkModeActive, .tip = "Whether frames carry further data behind the image.",
            .visibility = "Expert", .isLocked = true},
    Feature{.name = "ChunkSelector", .category = kChunkData, .kind = FeatureKind::Enumeration,
            .address = kChunkSelector, .tip = "The data that ChunkEnable sets up.", .visibility = "Expert",
            .entries = kChunks, .prerequisite = "ChunkModeActive"},
    Feature{.name = "ChunkEnable", .category = kChunkData, .kind = FeatureKind::Boolean, .address = kChunkEnable,
            .tip = "Whether frames carry the selected data.", .visibility = "Expert", .isLocked = true,
            .selector = "ChunkSelector", .stride = kChunkStride, .prerequisite = "ChunkModeActive"},

    Feature{.name = "PayloadSize", .category = kTransportLayer, .address = kPayloadSize,
            .tip = "The bytes of one frame.", .access = kReadOnly, .visibility = "Expert", .unit = "B",
            .dependsOn = kPayloadDependencies},
    Feature{.name = "GevSCPSPacketSize", .category = kTransportLayer, .address = kPacketSize,
            .tip = "The bytes of one packet, its headers included.", .visibility = "Expert", .isLocked = true,
            .minimum = kPacketSizeMin, .maximum = kPacketSizeMax, .increment = 4, .start = 1500, .unit = "B"},
    Feature{.name = "GevHeartbeatTimeout", .category = kTransportLayer, .address = kHeartbeatTimeout,
            .tip = "The silence after which an application loses control; what is below 500 ms is raised to it.",
            .visibility = "Guru", .isVolatile = true, .maximum = 0xFFFFFFFF, .start = 3000, .unit = "ms"},
    Feature{.name = "TLParamsLocked", .category = kTransportLayer, .address = kTLParamsLocked,
            .tip = "1 while a stream runs: what a frame's size depends on cannot be changed then.",
            .visibility = "Invisible", .isVolatile = true, .maximum = 1},
};
// clang-format on

} // namespace

std::span<const Feature> ListFeatures() {
  return kFeatures;
}

const Feature* FindFeature(std::string_view aName) {
  const auto found = std::ranges::find(kFeatures, aName, &Feature::name);
  return found == kFeatures.end() ? nullptr : &*found;
}

std::vector<FeatureEntry> ListEntries(const Feature& aFeature, std::span<const KrPixelType> aPixelFormats) {
  std::vector<FeatureEntry> entries(aFeature.entries.begin(), aFeature.entries.end());
  if (aFeature.address != kPixelFormat)
    return entries;
  for (const KrPixelType type : aPixelFormats) {
    const std::optional<KrPixelTypeInfo> info = KrFindPixelType(type);
    if (info)
      entries.push_back({info->name, {}, type});
  }
  return entries;
}

} // namespace krtransport
