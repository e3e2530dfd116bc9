#pragma once
// Where a simulated camera has its registers: the bootstrap registers of GigE Vision 2.x, and its features' own.

#include <cstdint>

namespace krtransport::cameraregister {

// GigE Vision 2.x, bootstrap registers.
inline constexpr std::uint64_t kVersion = 0x0000;
inline constexpr std::uint64_t kDeviceMode = 0x0004;
inline constexpr std::uint64_t kMACHigh = 0x0008;
inline constexpr std::uint64_t kMACLow = 0x000C;
inline constexpr std::uint64_t kIPConfigOptions = 0x0010;
inline constexpr std::uint64_t kIPConfigCurrent = 0x0014;
inline constexpr std::uint64_t kIPAddress = 0x0024;
inline constexpr std::uint64_t kSubnetMask = 0x0034;
inline constexpr std::uint64_t kDefaultGateway = 0x0044;
inline constexpr std::uint64_t kManufacturerName = 0x0048;
inline constexpr std::uint64_t kModelName = 0x0068;
inline constexpr std::uint64_t kDeviceVersion = 0x0088;
inline constexpr std::uint64_t kManufacturerInfo = 0x00A8;
inline constexpr std::uint64_t kSerialNumber = 0x00D8;
inline constexpr std::uint64_t kUserDefinedName = 0x00E8;
inline constexpr std::uint64_t kFirstURL = 0x0200;
inline constexpr std::uint64_t kSecondURL = 0x0400;
inline constexpr std::uint64_t kInterfaceCount = 0x0600;
inline constexpr std::uint64_t kPersistentAddress = 0x064C;
inline constexpr std::uint64_t kPersistentMask = 0x065C;
inline constexpr std::uint64_t kPersistentGateway = 0x066C;
inline constexpr std::uint64_t kLinkSpeed = 0x0670;
inline constexpr std::uint64_t kMessageChannelCount = 0x0900;
inline constexpr std::uint64_t kStreamChannelCount = 0x0904;
inline constexpr std::uint64_t kGVCPCapability = 0x0934;
inline constexpr std::uint64_t kHeartbeatTimeout = 0x0938;
inline constexpr std::uint64_t kControlPrivilege = 0x0A00;
inline constexpr std::uint64_t kPacketSize = 0x0D04;

/// In kIPConfigCurrent: an address of 169.254/16, which is always on.
inline constexpr std::uint32_t kLinkLocal = 0x4;

// The camera's features.
inline constexpr std::uint64_t kWidthMax = 0x00010000;
inline constexpr std::uint64_t kHeightMax = 0x00010004;
inline constexpr std::uint64_t kWidth = 0x00010008;
inline constexpr std::uint64_t kHeight = 0x0001000C;
inline constexpr std::uint64_t kPixelFormat = 0x00010010;
inline constexpr std::uint64_t kPayloadSize = 0x00010014;
inline constexpr std::uint64_t kTestPattern = 0x00010018;
inline constexpr std::uint64_t kReverseX = 0x0001001C;
inline constexpr std::uint64_t kAcquisitionMode = 0x00010020;
inline constexpr std::uint64_t kAcquisitionStart = 0x00010024;
inline constexpr std::uint64_t kAcquisitionStop = 0x00010028;
inline constexpr std::uint64_t kTLParamsLocked = 0x0001002C;
inline constexpr std::uint64_t kAcquisitionFrameRate = 0x00010030;
inline constexpr std::uint64_t kExposureTime = 0x00010038;
inline constexpr std::uint64_t kGain = 0x00010040;
inline constexpr std::uint64_t kOffsetX = 0x00010048;
inline constexpr std::uint64_t kOffsetY = 0x0001004C;
inline constexpr std::uint64_t kAcquisitionFrameCount = 0x00010050;
inline constexpr std::uint64_t kAcquisitionFrameRateEnable = 0x00010054;
inline constexpr std::uint64_t kResultingFrameRate = 0x00010058;
inline constexpr std::uint64_t kExposureMode = 0x00010060;
inline constexpr std::uint64_t kLinePeriod = 0x00010064;
inline constexpr std::uint64_t kMissedTriggers = 0x00010068;
inline constexpr std::uint64_t kTimestampLatch = 0x0001006C;
inline constexpr std::uint64_t kTimestampLatchValue = 0x00010070;
inline constexpr std::uint64_t kTemperature = 0x00010078;
inline constexpr std::uint64_t kCalibration = 0x00010080;
inline constexpr std::uint64_t kFault = 0x00010084;
inline constexpr std::uint64_t kFaultyValue = 0x00010088;
inline constexpr std::uint64_t kTriggerSelector = 0x00010100;
inline constexpr std::uint64_t kTriggerMode = 0x00010120;
inline constexpr std::uint64_t kTriggerSource = 0x00010124;
inline constexpr std::uint64_t kTriggerActivation = 0x00010128;
inline constexpr std::uint64_t kTriggerSoftware = 0x0001012C;
inline constexpr std::uint64_t kTriggerDelay = 0x00010130;
inline constexpr std::uint64_t kUartBaudRate = 0x00010300;
inline constexpr std::uint64_t kUartLoopback = 0x00010304;
inline constexpr std::uint64_t kBulkSelector = 0x00010310;
inline constexpr std::uint64_t kBulkLoopback = 0x00010320;
inline constexpr std::uint64_t kBulkBaudRate = 0x00010340;
inline constexpr std::uint64_t kBulkSystemClockDivider = 0x00010360;
inline constexpr std::uint64_t kSourceSelector = 0x00010380;
inline constexpr std::uint64_t kPoclEnable = 0x00010384;
inline constexpr std::uint64_t kChunkModeActive = 0x00010200;
inline constexpr std::uint64_t kChunkSelector = 0x00010204;
inline constexpr std::uint64_t kChunkEnable = 0x00010208;
/// The texts of a camera that has wide ones, one behind the other.
inline constexpr std::uint64_t kWideTexts = 0x00010400;
inline constexpr std::uint32_t kWideTextBytes = 64;

/// From a trigger's registers to the next trigger's, and so with chunks, UARTs and bulk ports.
inline constexpr std::uint32_t kTriggerStride = 0x20;
inline constexpr std::uint32_t kChunkStride = 4;
inline constexpr std::uint32_t kUartStride = 8;
inline constexpr std::uint32_t kBulkStride = 4;

// Values of enumerations that the camera acts on.
inline constexpr std::uint32_t kContinuous = 0;
inline constexpr std::uint32_t kSingleFrame = 1;
inline constexpr std::uint32_t kMultiFrame = 2;
inline constexpr std::uint32_t kFrameStart = 0;
inline constexpr std::uint32_t kAcquisitionStartTrigger = 1;
inline constexpr std::uint32_t kTriggerCount = 2;
inline constexpr std::uint32_t kSoftware = 0;
inline constexpr std::uint32_t kLine1 = 1;
inline constexpr std::uint32_t kRisingEdge = 0;
inline constexpr std::uint32_t kFallingEdge = 1;
inline constexpr std::uint32_t kAnyEdge = 2;
inline constexpr std::uint32_t kChunkFrameID = 0;
inline constexpr std::uint32_t kChunkExposureTime = 1;
inline constexpr std::uint32_t kChunkTimestamp = 2;
inline constexpr std::uint32_t kChunkCount = 3;

inline constexpr std::uint32_t kNoFault = 0;
inline constexpr std::uint32_t kReadingFails = 1;
inline constexpr std::uint32_t kWritingFails = 2;
inline constexpr std::uint32_t kAllFails = 3;

/// Where the description begins; its length is in the first URL.
inline constexpr std::uint64_t kDescription = 0x00100000;

// The limits that the registers keep and the description states.
inline constexpr std::uint32_t kWidthMin = 64;
inline constexpr std::uint32_t kWidthIncrement = 4;
inline constexpr std::uint32_t kHeightMin = 16;
inline constexpr std::uint32_t kHeightIncrement = 2;
inline constexpr double kFrameRateMin = 1.0;
inline constexpr double kFrameRateMax = 1000.0;
inline constexpr double kExposureTimeMinUs = 10.0;
inline constexpr double kExposureTimeMaxUs = 1000000.0;
inline constexpr double kGainMaxDb = 24.0;
inline constexpr double kTriggerDelayMaxUs = 1000000.0;
inline constexpr std::uint32_t kLinePeriodMinUs = 100;
inline constexpr std::uint32_t kLinePeriodMaxUs = 10000000;
inline constexpr std::uint32_t kFrameCountMax = 65535;
inline constexpr std::uint32_t kPacketSizeMin = 576;
inline constexpr std::uint32_t kPacketSizeMax = 16000;
inline constexpr std::uint32_t kFaultyValueMax = 100;

/// The entries that SourceSelector may have.
inline constexpr std::uint32_t kMostSources = 8;

// What changes as time passes on the camera's clock.
inline constexpr std::uint64_t kCalibrationNs = 500000000;
inline constexpr double kLowestTemperature = 40.0;      ///< Degrees Celsius; …
inline constexpr double kTemperatureRise = 5.0;         ///< … as much warmer …
inline constexpr std::uint64_t kWarmingNs = 5000000000; ///< … after this time, and as cold again after the same.

/// The temperature at a time of the clock.
inline double GetTemperature(std::uint64_t aNowNs) {
  const double place = static_cast<double>(aNowNs % (2 * kWarmingNs)) / static_cast<double>(kWarmingNs);
  return kLowestTemperature + kTemperatureRise * (place < 1 ? place : 2 - place);
}

} // namespace krtransport::cameraregister
