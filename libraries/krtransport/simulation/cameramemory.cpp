#include "simulation/cameramemory.h"

#include "simulation/bootstrapregisters.h"
#include "simulation/cameraregisters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace krtransport {

using namespace cameraregister;

namespace {

constexpr std::uint32_t kLeastHeartbeatMs = 500;
constexpr double kNanosecondsPerMicrosecond = 1000.0;
constexpr double kNanosecondsPerSecond = 1e9;
constexpr std::array kSourceRegisters = {kWidth, kHeight, kOffsetX, kOffsetY, kPixelFormat};
/// What a camera keeps while it has no power: who controls it is told by others.
constexpr std::array kLastingRegisters = {kControlPrivilege, kIPAddress,         kSubnetMask,     kDefaultGateway,
                                          kIPConfigCurrent,  kPersistentAddress, kPersistentMask, kPersistentGateway};
constexpr double kPlainExposureUs = 1000.0; ///< With this and no gain a scene is shown as it is.

constexpr std::string_view kNameFeature = "DeviceUserID";

struct TextRow {
  std::string_view feature;
  KrString LabCamera::*text;
};
constexpr std::array<TextRow, 6> kTexts = {{
    {"DeviceVendorName", &LabCamera::vendorName},
    {"DeviceModelName", &LabCamera::modelName},
    {"DeviceVersion", &LabCamera::version},
    {"DeviceManufacturerInfo", &LabCamera::manufacturerInfo},
    {"DeviceSerialNumber", &LabCamera::serialNumber},
    {kNameFeature, &LabCamera::userDefinedName},
}};

std::uint64_t ToNanoseconds(double aMicroseconds) {
  return static_cast<std::uint64_t>(aMicroseconds * kNanosecondsPerMicrosecond);
}

// What a scene is multiplied by; a factor of ten in amplitude for each 20 dB.
double GetBrightness(double aExposureTimeUs, double aGainDb) {
  return aExposureTimeUs / kPlainExposureUs * std::pow(10.0, aGainDb / 20.0);
}

bool HoldsFloat(const Feature& aFeature) {
  return aFeature.kind == FeatureKind::Float;
}

} // namespace

CameraMemory::CameraMemory(const LabGEVCamera& aCamera)
    : mCameraFeatures(aCamera), mBulkClock(aCamera.bulkClock), mHasPocl(aCamera.frameGrabber.pocl != LabPocl::None) {
  DefineBootstrapRegisters(mMemory, aCamera);
  for (const Feature& feature : mCameraFeatures.List())
    DefineFeature(feature);
  SetStart(aCamera);
  mSources.assign(aCamera.frameGrabber.sources, ReadSource());
  UpdateDependents();
  UpdateTimed(0);
  mStart = mMemory;
}

void CameraMemory::Restart() {
  const std::uint64_t nameAddress = mCameraFeatures.Find(kNameFeature)->address;
  const std::string name = mMemory.GetText(nameAddress);
  std::array<std::uint32_t, kLastingRegisters.size()> lasting = {};
  std::ranges::transform(kLastingRegisters, lasting.begin(),
                         [this](std::uint64_t aAddress) { return mMemory.GetInteger(aAddress); });
  mMemory = mStart;
  mMemory.SetText(nameAddress, name);
  for (std::size_t i = 0; i < lasting.size(); ++i)
    mMemory.SetInteger(kLastingRegisters[i], lasting[i]);
  mTimer = {};
  mCalibrationEndNs = 0;
  mSource = 0;
  mSources.assign(mSources.size(), ReadSource());
}

void CameraMemory::DefineFeature(const Feature& aFeature) {
  for (const std::uint32_t position : mCameraFeatures.ListPositions(aFeature)) {
    const std::uint64_t address = aFeature.address + std::uint64_t{position} * aFeature.stride;
    mMemory.Define(address, aFeature.length, aFeature.access, aFeature.name);
    if (HoldsFloat(aFeature))
      mMemory.SetFloat(address, aFeature.start);
    else if (aFeature.kind != FeatureKind::Text)
      mMemory.SetInteger(address, static_cast<std::uint32_t>(aFeature.start));
    mFeatures[address] = {&aFeature, position};
  }
}

void CameraMemory::SetStart(const LabCamera& aCamera) {
  for (const TextRow& row : kTexts)
    mMemory.SetText(mCameraFeatures.Find(row.feature)->address, (aCamera.*row.text).ToUtf8());
  mMemory.SetInteger(kWidthMax, aCamera.sensorWidth);
  mMemory.SetInteger(kHeightMax, aCamera.sensorHeight);
  mMemory.SetInteger(kWidth, aCamera.sensorWidth);
  mMemory.SetInteger(kHeight, aCamera.sensorHeight);
  mMemory.SetInteger(kPixelFormat, aCamera.pixelFormats.front());
  mMemory.SetFloat(kAcquisitionFrameRate, std::clamp(aCamera.framesPerSecond, kFrameRateMin, kFrameRateMax));
  for (const LabSerialPort& port : aCamera.serialPorts) {
    if (port.number >= kFirstBulkPort)
      mMemory.SetInteger(GetBulkRateAddress(port.number), mBulkClock > 0 ? mBulkClock / port.rate : port.rate);
  }
}

std::uint64_t CameraMemory::GetBulkRateAddress(std::uint32_t aNumber) const {
  return (mBulkClock > 0 ? kBulkSystemClockDivider : kBulkBaudRate) +
         std::uint64_t{aNumber - kFirstBulkPort} * kBulkStride;
}

SerialSettings CameraMemory::GetSerialSettings(std::uint32_t aNumber) const {
  const bool isPowered = !mHasPocl || mMemory.GetInteger(kPoclEnable) != 0;
  if (aNumber < kFirstBulkPort) {
    const std::uint64_t offset = std::uint64_t{aNumber - kFirstUart} * kUartStride;
    return {.rate = mMemory.GetInteger(kUartBaudRate + offset),
            .isLoopedBack = mMemory.GetInteger(kUartLoopback + offset) != 0,
            .isPowered = isPowered};
  }
  const std::uint32_t value = mMemory.GetInteger(GetBulkRateAddress(aNumber));
  const std::uint64_t offset = std::uint64_t{aNumber - kFirstBulkPort} * kBulkStride;
  return {.rate = mBulkClock > 0 ? mBulkClock / value : value,
          .isLoopedBack = mMemory.GetInteger(kBulkLoopback + offset) != 0,
          .isPowered = isPowered};
}

KrResult CameraMemory::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint64_t aNowNs) {
  UpdateTimed(aNowNs);
  KrResult result = CheckFault(aAddress, aLength, kReadingFails);
  return result.IsOK() ? mMemory.Read(aAddress, aData, aLength) : result;
}

KrResult CameraMemory::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint64_t aNowNs) {
  KrResult result = mMemory.CheckWrite(aAddress, aLength);
  if (result.IsOK())
    result = CheckFault(aAddress, aLength, kWritingFails);
  if (result.IsOK())
    result = CheckValue(aAddress, static_cast<const std::uint8_t*>(aData), aLength);
  if (result.IsOK())
    result = mMemory.Write(aAddress, aData, aLength);
  if (!result.IsOK())
    return result;
  if (aAddress == kIPConfigCurrent)
    mMemory.SetInteger(kIPConfigCurrent, mMemory.GetInteger(kIPConfigCurrent) | kLinkLocal);
  if (const auto feature = mFeatures.find(aAddress); feature != mFeatures.end())
    Apply(feature->second, aNowNs);
  return result;
}

KrResult CameraMemory::CheckValue(std::uint64_t aAddress, const std::uint8_t* aData, std::size_t aLength) const {
  // Every register that can be written is a feature's, but for those of the lasting IP configuration.
  const auto found = mFeatures.find(aAddress);
  if (found == mFeatures.end())
    return CheckLasting(aAddress, aData, aLength);
  const Feature& feature = *found->second.feature;
  KrResult result = CheckAccess(feature, aAddress);
  if (!result.IsOK() || feature.kind == FeatureKind::Text)
    return result;
  return HoldsFloat(feature) ? CheckFloat(feature, aAddress, aData, aLength)
                             : CheckInteger(found->second, aAddress, DecodeInteger(aData));
}

KrResult CameraMemory::CheckLasting(std::uint64_t aAddress, const std::uint8_t* aData, std::size_t aLength) const {
  const std::uint32_t options = mMemory.GetInteger(kIPConfigOptions);
  if (aAddress == kIPConfigCurrent && aLength == sizeof(options) && (DecodeInteger(aData) & ~options) != 0)
    return MakeRefusal(RegisterRefusal::InvalidParameter, aAddress,
                       "the camera does not have all of these ways to get its address");
  return {};
}

KrResult CameraMemory::CheckFault(std::uint64_t aAddress, std::size_t aLength, std::uint32_t aFault) const {
  const bool isTouched = aAddress <= kFaultyValue && kFaultyValue - aAddress < aLength;
  if (!isTouched || (mMemory.GetInteger(kFault) & aFault) == 0)
    return {};
  return MakeRefusal(RegisterRefusal::LocalProblem, kFaultyValue, "SimulatedFault is set");
}

KrResult CameraMemory::CheckAccess(const Feature& aFeature, std::uint64_t aAddress) const {
  const std::string name(aFeature.name);
  if (aFeature.isLocked && mMemory.GetInteger(kTLParamsLocked) != 0)
    return MakeRefusal(RegisterRefusal::WriteProtect, aAddress, name + " is locked while a stream runs");
  if (aFeature.prerequisite.empty() ||
      mMemory.GetInteger(mCameraFeatures.Find(aFeature.prerequisite)->address) == aFeature.requiredValue)
    return {};
  return MakeRefusal(RegisterRefusal::AccessDenied, aAddress,
                     name + " is not available as " + std::string(aFeature.prerequisite) + " is set");
}

std::uint32_t CameraMemory::GetMaximum(const Feature& aFeature) const {
  if (aFeature.limit.empty())
    return static_cast<std::uint32_t>(aFeature.maximum);
  return mMemory.GetInteger(mCameraFeatures.Find(aFeature.limit)->address) -
         mMemory.GetInteger(mCameraFeatures.Find(aFeature.limitLess)->address);
}

KrResult CameraMemory::CheckInteger(const FeatureRegister& aRegister, std::uint64_t aAddress,
                                    std::uint32_t aValue) const {
  const Feature& feature = *aRegister.feature;
  const std::string name(feature.name);
  const auto refuse = [aAddress](const std::string& aReason) {
    return MakeRefusal(RegisterRefusal::InvalidParameter, aAddress, aReason);
  };
  if (feature.kind == FeatureKind::Enumeration) {
    const std::vector<FeatureEntry> entries = mCameraFeatures.ListEntries(feature);
    const bool isThere = std::ranges::any_of(entries, [&](const FeatureEntry& aEntry) {
      return aEntry.value == aValue && (aEntry.positions >> aRegister.position & 1U) != 0;
    });
    return isThere ? KrResult() : refuse("the camera does not have this value of " + name);
  }
  if (feature.kind == FeatureKind::Boolean)
    return aValue <= 1 ? KrResult() : refuse(name + " has to be 0 or 1");
  if (feature.kind == FeatureKind::Command)
    return aValue == 1 ? KrResult() : refuse(name + " is executed by writing 1");
  const auto minimum = static_cast<std::uint32_t>(feature.minimum);
  const std::uint32_t maximum = GetMaximum(feature);
  if (aValue < minimum || aValue > maximum || (aValue - minimum) % feature.increment != 0)
    return refuse(name + " has to be from " + std::to_string(minimum) + " to " + std::to_string(maximum) +
                  " in steps of " + std::to_string(feature.increment));
  if (aAddress == kTLParamsLocked && aValue == 0 && mStreaming)
    return MakeRefusal(RegisterRefusal::WriteProtect, aAddress, name + " stays 1 while a stream runs");
  return {};
}

KrResult CameraMemory::CheckFloat(const Feature& aFeature, std::uint64_t aAddress, const std::uint8_t* aData,
                                  std::size_t aLength) const {
  const std::string name(aFeature.name);
  if (aLength != sizeof(double))
    return MakeRefusal(RegisterRefusal::InvalidParameter, aAddress, name + " takes 8 bytes");
  // Written so that a value that is no number is refused too.
  const double value = DecodeFloat(aData);
  if (value >= aFeature.minimum && value <= aFeature.maximum)
    return {};
  return MakeRefusal(RegisterRefusal::InvalidParameter, aAddress,
                     name + " has to be from " + std::to_string(aFeature.minimum) + " to " +
                         std::to_string(aFeature.maximum));
}

void CameraMemory::Apply(const FeatureRegister& aWritten, std::uint64_t aNowNs) {
  const TimingSettings timing = GetTimingSettings();
  mTimer.ApplySettings(timing);
  switch (aWritten.feature->address) {
  case kAcquisitionStart:
    mTimer.Start(aNowNs);
    break;
  case kAcquisitionStop:
    mTimer.Stop();
    break;
  case kTriggerSoftware:
    mTimer.TriggerBySoftware(static_cast<TriggerKind>(aWritten.position), aNowNs, timing);
    break;
  case kTimestampLatch:
    mMemory.SetLong(kTimestampLatchValue, aNowNs);
    break;
  case kSourceSelector:
    SelectSource(mMemory.GetInteger(kSourceSelector));
    break;
  case kCalibration:
    mCalibrationEndNs = aNowNs + kCalibrationNs;
    break;
  case kHeartbeatTimeout:
    mMemory.SetInteger(kHeartbeatTimeout, std::max(mMemory.GetInteger(kHeartbeatTimeout), kLeastHeartbeatMs));
    break;
  default:
    break;
  }
  UpdateDependents();
}

CameraMemory::SourceValues CameraMemory::ReadSource() const {
  SourceValues values;
  std::ranges::transform(kSourceRegisters, values.begin(),
                         [this](std::uint64_t aAddress) { return mMemory.GetInteger(aAddress); });
  return values;
}

void CameraMemory::SelectSource(std::uint32_t aSource) {
  mSources[mSource] = ReadSource();
  mSource = aSource;
  for (std::size_t i = 0; i < kSourceValues; ++i)
    mMemory.SetInteger(kSourceRegisters[i], mSources[aSource][i]);
}

void CameraMemory::UpdateDependents() {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
  mMemory.SetInteger(kPayloadSize, static_cast<std::uint32_t>(std::min(GetPayloadBytes(GetFrameSettings()), kMost)));
  mMemory.SetFloat(kResultingFrameRate, kNanosecondsPerSecond / static_cast<double>(GetTimingSettings().periodNs));
  mMemory.SetInteger(kMissedTriggers, mTimer.GetMissedTriggers());
}

void CameraMemory::UpdateTimed(std::uint64_t aNowNs) {
  mMemory.SetFloat(kTemperature, GetTemperature(aNowNs));
  if (aNowNs >= mCalibrationEndNs)
    mMemory.SetInteger(kCalibration, 0);
}

FrameSettings CameraMemory::GetFrameSettings() const {
  FrameSettings settings;
  settings.picture = {.pattern = static_cast<TestPattern>(mMemory.GetInteger(kTestPattern)),
                      .type = mMemory.GetInteger(kPixelFormat),
                      .width = mMemory.GetInteger(kWidth),
                      .height = mMemory.GetInteger(kHeight),
                      .offsetX = mMemory.GetInteger(kOffsetX),
                      .offsetY = mMemory.GetInteger(kOffsetY),
                      .reverseX = mMemory.GetInteger(kReverseX) != 0,
                      .brightness = GetBrightness(mMemory.GetFloat(kExposureTime), mMemory.GetFloat(kGain))};
  settings.packetBytes = mMemory.GetInteger(kPacketSize);
  settings.exposureTimeUs = mMemory.GetFloat(kExposureTime);
  settings.hasChunks = mMemory.GetInteger(kChunkModeActive) != 0;
  for (std::uint32_t i = 0; i < kChunkCount; ++i)
    settings.isChunkEnabled[i] = mMemory.GetInteger(kChunkEnable + i * kChunkStride) != 0;
  return settings;
}

TimingSettings CameraMemory::GetTimingSettings() const {
  const bool isLimited = mMemory.GetInteger(kAcquisitionFrameRateEnable) != 0;
  const double framesPerSecond = isLimited ? mMemory.GetFloat(kAcquisitionFrameRate) : kFrameRateMax;
  const std::uint32_t mode = mMemory.GetInteger(kAcquisitionMode);
  TimingSettings settings;
  settings.exposureNs = ToNanoseconds(mMemory.GetFloat(kExposureTime));
  settings.periodNs =
      std::max(static_cast<std::uint64_t>(kNanosecondsPerSecond / framesPerSecond), settings.exposureNs);
  settings.linePeriodNs = ToNanoseconds(mMemory.GetInteger(kLinePeriod));
  if (mode != kContinuous)
    settings.framesPerStart = mode == kSingleFrame ? 1 : mMemory.GetInteger(kAcquisitionFrameCount);
  for (std::uint32_t i = 0; i < kTriggerCount; ++i) {
    const std::uint64_t offset = std::uint64_t{i} * kTriggerStride;
    settings.triggers[i] = {.isOn = mMemory.GetInteger(kTriggerMode + offset) != 0,
                            .isFromLine = mMemory.GetInteger(kTriggerSource + offset) == kLine1,
                            .edge = static_cast<TriggerEdge>(mMemory.GetInteger(kTriggerActivation + offset)),
                            .delayNs = ToNanoseconds(mMemory.GetFloat(kTriggerDelay + offset))};
  }
  return settings;
}

std::uint64_t CameraMemory::GetPayloadSize() const {
  return mMemory.GetInteger(kPayloadSize);
}

KrString CameraMemory::GetUserDefinedName() const {
  return mMemory.GetText(mCameraFeatures.Find(kNameFeature)->address);
}

IPConfiguration CameraMemory::GetIPConfiguration() const {
  return {mMemory.GetInteger(kIPAddress), mMemory.GetInteger(kSubnetMask), mMemory.GetInteger(kDefaultGateway)};
}

std::uint32_t CameraMemory::GetIPConfigCurrent() const {
  return mMemory.GetInteger(kIPConfigCurrent);
}

void CameraMemory::BeginStream(std::uint64_t aNowNs) {
  mStreaming = true;
  mTimer.Stop();
  mTimer.Start(aNowNs);
  mMemory.SetInteger(kTLParamsLocked, 1);
  UpdateDependents();
}

void CameraMemory::EndStream() {
  if (!mStreaming)
    return;
  mStreaming = false;
  mTimer.Stop();
  mMemory.SetInteger(kTLParamsLocked, 0);
}

std::optional<Exposure> CameraMemory::GetNextExposure(std::uint64_t aNowNs) const {
  return mTimer.GetNextExposure(aNowNs, GetTimingSettings());
}

std::optional<FrameSettings> CameraMemory::EndExposure(const Exposure& aExposure) {
  if (!mTimer.EndExposure(aExposure, GetTimingSettings()))
    return std::nullopt;
  FrameSettings settings = GetFrameSettings();
  settings.exposure = aExposure;
  mMemory.SetInteger(kMissedTriggers, mTimer.GetMissedTriggers());
  return settings;
}

void CameraMemory::SetIPConfiguration(const IPConfiguration& aConfiguration) {
  mMemory.SetInteger(kIPAddress, aConfiguration.address);
  mMemory.SetInteger(kSubnetMask, aConfiguration.mask);
  mMemory.SetInteger(kDefaultGateway, aConfiguration.gateway);
}

void CameraMemory::SetControlPrivilege(std::uint32_t aPrivilege) {
  mMemory.SetInteger(kControlPrivilege, aPrivilege);
}

} // namespace krtransport
