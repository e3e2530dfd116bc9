#include "simulation/cameramemory.h"

#include "krsystem/ipv4address.h"
#include "simulation/cameradescription.h"
#include "simulation/cameraregisters.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace krtransport {

using namespace cameraregister;

namespace {

constexpr std::uint32_t kGEVVersion = 0x00020000;
constexpr std::uint32_t kBigEndianUtf8Transmitter = 0x80000001;
constexpr std::uint32_t kLinkSpeedMbit = 1000;
// Writing of memory, serial number and user-defined name are offered (GigE Vision 2.x, GVCP capability register).
constexpr std::uint32_t kCapabilities = 1u << 1 | 1u << 30 | 1u << 31;
constexpr std::uint32_t kDefaultHeartbeatMs = 3000;
constexpr std::uint32_t kLeastHeartbeatMs = 500;
constexpr std::size_t kURLLength = 512;
constexpr double kDefaultExposureTimeUs = 1000.0;
constexpr std::uint32_t kUnlimited = 0xFFFFFFFF;

struct TextRegister {
  std::uint64_t address;
  std::size_t length;
  RegisterAccess access;
  const char* name;
  KrString LabCamera::*text;
};

constexpr std::array<TextRegister, 6> kTexts = {{
    {kManufacturerName, 32, RegisterAccess::ReadOnly, "the manufacturer's name", &LabCamera::vendorName},
    {kModelName, 32, RegisterAccess::ReadOnly, "the model's name", &LabCamera::modelName},
    {kDeviceVersion, 32, RegisterAccess::ReadOnly, "the device version", &LabCamera::version},
    {kManufacturerInfo, 48, RegisterAccess::ReadOnly, "the manufacturer's information", &LabCamera::manufacturerInfo},
    {kSerialNumber, 16, RegisterAccess::ReadOnly, "the serial number", &LabCamera::serialNumber},
    {kUserDefinedName, 16, RegisterAccess::ReadWrite, "the user-defined name", &LabCamera::userDefinedName},
}};

// Parts of the bootstrap area that the standard reserves; they read as zeros.
struct ReservedRange {
  std::uint64_t address;
  std::size_t length;
};
constexpr std::array<ReservedRange, 4> kReserved = {{{0x0018, 12}, {0x0028, 12}, {0x0038, 12}, {0x00F8, 264}}};

std::uint64_t ParseMAC(const KrString& aText) {
  std::array<unsigned, 6> bytes = {};
  std::sscanf(aText.CStr(), "%2x:%2x:%2x:%2x:%2x:%2x", &bytes[0], &bytes[1], &bytes[2], &bytes[3], &bytes[4],
              &bytes[5]);
  std::uint64_t address = 0;
  for (const unsigned byte : bytes)
    address = address << 8 | byte;
  return address;
}

std::string MakeURL(const LabCamera& aCamera, std::size_t aLength) {
  std::string name = aCamera.modelName.ToUtf8();
  std::erase(name, ' ');
  std::array<char, 64> place;
  std::snprintf(place.data(), place.size(), ".xml;%llx;%zx", static_cast<unsigned long long>(kDescription), aLength);
  return "Local:" + name + place.data();
}

} // namespace

CameraMemory::CameraMemory(const LabCamera& aCamera) : mPixelFormats(aCamera.pixelFormats) {
  DefineBootstrap(aCamera);
  DefineTexts(aCamera);
  DefineFeatures(aCamera);
  DefineDescription(aCamera);
  UpdatePayloadSize();
}

void CameraMemory::DefineInteger(std::uint64_t aAddress, RegisterAccess aAccess, const char* aName,
                                 std::uint32_t aValue) {
  mMemory.Define(aAddress, sizeof(aValue), aAccess, aName);
  mMemory.SetInteger(aAddress, aValue);
}

void CameraMemory::DefineFloat(const FloatRule& aRule, double aValue) {
  mMemory.Define(aRule.address, sizeof(aValue), RegisterAccess::ReadWrite, aRule.name);
  mMemory.SetFloat(aRule.address, std::clamp(aValue, aRule.minimum, aRule.maximum));
  mFloatRules.push_back(aRule);
}

void CameraMemory::DefineBootstrap(const LabCamera& aCamera) {
  const std::uint64_t mac = ParseMAC(aCamera.macAddress);
  const auto define = [this](std::uint64_t aAddress, const char* aName, std::uint32_t aValue) {
    DefineInteger(aAddress, RegisterAccess::ReadOnly, aName, aValue);
  };
  for (const ReservedRange& range : kReserved)
    mMemory.Define(range.address, range.length, RegisterAccess::ReadOnly, "a reserved range");
  define(kVersion, "the version", kGEVVersion);
  define(kDeviceMode, "the device mode", kBigEndianUtf8Transmitter);
  define(kMACHigh, "the MAC address", static_cast<std::uint32_t>(mac >> 32));
  define(kMACLow, "the MAC address", static_cast<std::uint32_t>(mac));
  define(kIPConfigOptions, "the IP configuration options", aCamera.ipConfigOptions);
  define(kIPConfigCurrent, "the current IP configuration", aCamera.ipConfigCurrent);
  define(kIPAddress, "the IP address", krsystem::ParseIPv4(aCamera.ipAddress).value_or(0));
  define(kSubnetMask, "the subnet mask", krsystem::ParseIPv4(aCamera.subnetMask).value_or(0));
  define(kDefaultGateway, "the default gateway", krsystem::ParseIPv4(aCamera.defaultGateway).value_or(0));
  define(kInterfaceCount, "the number of interfaces", 1);
  define(kLinkSpeed, "the link speed", kLinkSpeedMbit);
  define(kMessageChannelCount, "the number of message channels", 0);
  define(kStreamChannelCount, "the number of stream channels", 1);
  define(kGVCPCapability, "the capabilities", kCapabilities);
  define(kControlPrivilege, "the control privilege", 0);
  DefineInteger(kHeartbeatTimeout, RegisterAccess::ReadWrite, "the heartbeat time-out", kDefaultHeartbeatMs);
  mIntegerRules.push_back({kHeartbeatTimeout, "the heartbeat time-out", 0, kUnlimited, 1, false});
}

void CameraMemory::DefineTexts(const LabCamera& aCamera) {
  for (const TextRegister& text : kTexts) {
    mMemory.Define(text.address, text.length, text.access, text.name);
    mMemory.SetText(text.address, (aCamera.*text.text).ToUtf8());
  }
}

void CameraMemory::DefineFeatures(const LabCamera& aCamera) {
  const auto constant = [this](std::uint64_t aAddress, const char* aName, std::uint32_t aValue) {
    DefineInteger(aAddress, RegisterAccess::ReadOnly, aName, aValue);
  };
  const auto setting = [this](const IntegerRule& aRule, std::uint32_t aValue) {
    DefineInteger(aRule.address, RegisterAccess::ReadWrite, aRule.name, aValue);
    mIntegerRules.push_back(aRule);
  };
  const auto command = [this](std::uint64_t aAddress, const char* aName) {
    DefineInteger(aAddress, RegisterAccess::WriteOnly, aName, 0);
    mIntegerRules.push_back({aAddress, aName, 1, 1, 1, false});
  };
  constant(kWidthMax, "WidthMax", aCamera.sensorWidth);
  constant(kHeightMax, "HeightMax", aCamera.sensorHeight);
  constant(kPayloadSize, "PayloadSize", 0);
  setting({kWidth, "Width", kWidthMin, aCamera.sensorWidth, kWidthIncrement, true}, aCamera.sensorWidth);
  setting({kHeight, "Height", kHeightMin, aCamera.sensorHeight, kHeightIncrement, true}, aCamera.sensorHeight);
  setting({kPixelFormat, "PixelFormat", 0, kUnlimited, 1, true}, mPixelFormats.front());
  setting({kTestPattern, "TestPattern", 0, kTestPatternCount - 1, 1, false}, 0);
  setting({kAcquisitionMode, "AcquisitionMode", 0, 1, 1, true}, 0);
  setting({kTLParamsLocked, "TLParamsLocked", 0, 1, 1, false}, 0);
  command(kAcquisitionStart, "AcquisitionStart");
  command(kAcquisitionStop, "AcquisitionStop");
  DefineFloat({kAcquisitionFrameRate, "AcquisitionFrameRate", kFrameRateMin, kFrameRateMax}, aCamera.framesPerSecond);
  DefineFloat({kExposureTime, "ExposureTime", kExposureTimeMinUs, kExposureTimeMaxUs}, kDefaultExposureTimeUs);
  DefineFloat({kGain, "Gain", 0.0, kGainMaxDb}, 0.0);
}

void CameraMemory::DefineDescription(const LabCamera& aCamera) {
  const std::string description = MakeCameraDescription(aCamera);
  mMemory.Define(kDescription, description.size(), RegisterAccess::ReadOnly, "the description");
  mMemory.SetText(kDescription, description);
  mMemory.Define(kFirstURL, kURLLength, RegisterAccess::ReadOnly, "the first URL");
  mMemory.SetText(kFirstURL, MakeURL(aCamera, description.size()));
  mMemory.Define(kSecondURL, kURLLength, RegisterAccess::ReadOnly, "the second URL");
}

KrResult CameraMemory::Read(std::uint64_t aAddress, void* aData, std::size_t aLength) const {
  return mMemory.Read(aAddress, aData, aLength);
}

KrResult CameraMemory::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength) {
  KrResult result = mMemory.CheckWrite(aAddress, aLength);
  if (result.IsOK())
    result = CheckValue(aAddress, static_cast<const std::uint8_t*>(aData), aLength);
  if (result.IsOK())
    result = mMemory.Write(aAddress, aData, aLength);
  if (result.IsOK())
    Apply(aAddress);
  return result;
}

KrResult CameraMemory::CheckValue(std::uint64_t aAddress, const std::uint8_t* aData, std::size_t aLength) const {
  const auto integer = std::ranges::find(mIntegerRules, aAddress, &IntegerRule::address);
  if (integer != mIntegerRules.end())
    return CheckInteger(*integer, DecodeInteger(aData));
  const auto number = std::ranges::find(mFloatRules, aAddress, &FloatRule::address);
  if (number == mFloatRules.end())
    return {};
  if (aLength != sizeof(double))
    return MakeRefusal(RegisterRefusal::InvalidParameter, aAddress, std::string(number->name) + " takes 8 bytes");
  // Written so that a value that is no number is refused too.
  const double value = DecodeFloat(aData);
  if (!(value >= number->minimum && value <= number->maximum))
    return MakeRefusal(RegisterRefusal::InvalidParameter, aAddress,
                       std::string(number->name) + " has to be from " + std::to_string(number->minimum) + " to " +
                           std::to_string(number->maximum));
  return {};
}

KrResult CameraMemory::CheckInteger(const IntegerRule& aRule, std::uint32_t aValue) const {
  const std::string name = aRule.name;
  if (aRule.locked && mMemory.GetInteger(kTLParamsLocked) != 0)
    return MakeRefusal(RegisterRefusal::WriteProtect, aRule.address, name + " is locked while a stream runs");
  if (aValue < aRule.minimum || aValue > aRule.maximum || (aValue - aRule.minimum) % aRule.increment != 0)
    return MakeRefusal(RegisterRefusal::InvalidParameter, aRule.address,
                       name + " has to be from " + std::to_string(aRule.minimum) + " to " +
                           std::to_string(aRule.maximum) + " in steps of " + std::to_string(aRule.increment));
  if (aRule.address == kPixelFormat && std::ranges::find(mPixelFormats, aValue) == mPixelFormats.end())
    return MakeRefusal(RegisterRefusal::InvalidParameter, aRule.address, "the camera does not have this pixel format");
  if (aRule.address == kTLParamsLocked && aValue == 0 && mStreaming)
    return MakeRefusal(RegisterRefusal::WriteProtect, aRule.address, name + " stays 1 while a stream runs");
  return {};
}

void CameraMemory::Apply(std::uint64_t aAddress) {
  if (aAddress == kAcquisitionStart || aAddress == kAcquisitionStop)
    mAcquiring = aAddress == kAcquisitionStart;
  if (aAddress == kHeartbeatTimeout)
    mMemory.SetInteger(kHeartbeatTimeout, std::max(mMemory.GetInteger(kHeartbeatTimeout), kLeastHeartbeatMs));
  UpdatePayloadSize();
}

void CameraMemory::UpdatePayloadSize() {
  const std::uint64_t bytes = GetFrameBytes(GetFrameSettings().picture);
  mMemory.SetInteger(kPayloadSize, static_cast<std::uint32_t>(std::min<std::uint64_t>(bytes, kUnlimited)));
}

FrameSettings CameraMemory::GetFrameSettings() const {
  FrameSettings settings;
  settings.picture.width = mMemory.GetInteger(kWidth);
  settings.picture.height = mMemory.GetInteger(kHeight);
  settings.picture.type = mMemory.GetInteger(kPixelFormat);
  settings.picture.pattern = static_cast<TestPattern>(mMemory.GetInteger(kTestPattern));
  settings.framesPerSecond = mMemory.GetFloat(kAcquisitionFrameRate);
  settings.exposureTimeUs = mMemory.GetFloat(kExposureTime);
  settings.acquiring = mAcquiring;
  settings.singleFrame = mMemory.GetInteger(kAcquisitionMode) == 1;
  return settings;
}

std::uint64_t CameraMemory::GetPayloadSize() const {
  return mMemory.GetInteger(kPayloadSize);
}

KrString CameraMemory::GetUserDefinedName() const {
  return mMemory.GetText(kUserDefinedName);
}

IPConfiguration CameraMemory::GetIPConfiguration() const {
  return {mMemory.GetInteger(kIPAddress), mMemory.GetInteger(kSubnetMask), mMemory.GetInteger(kDefaultGateway)};
}

void CameraMemory::BeginStream() {
  mStreaming = true;
  mAcquiring = true;
  mMemory.SetInteger(kTLParamsLocked, 1);
}

void CameraMemory::EndStream() {
  if (!mStreaming)
    return;
  mStreaming = false;
  mAcquiring = false;
  mMemory.SetInteger(kTLParamsLocked, 0);
}

void CameraMemory::EndAcquisition() {
  mAcquiring = false;
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
