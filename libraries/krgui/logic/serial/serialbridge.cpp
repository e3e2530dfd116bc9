#include "logic/serial/serialbridge.h"

#include "logic/serial/savedserialbridge.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>

namespace krgui {

namespace {

/// By the numbers of parities.
constexpr const char* kParityWords[] = {"no", "even", "odd"};

KrString Number(std::uint32_t aNumber) {
  return std::to_string(aNumber);
}

/// What error lines end with.
KrString FormatResult(const KrResult& aResult) {
  return aResult.GetCodeString() + ", " + aResult.GetDescription() + ".";
}

const char* FindParityWord(std::uint32_t aParity) {
  return aParity < std::size(kParityWords) ? kParityWords[aParity] : "invalid";
}

} // namespace

SerialBridge::SerialBridge(IKrDeviceAdapter* aAdapter) : mAdapter(aAdapter) {}

SerialBridge::~SerialBridge() = default;

void SerialBridge::SetKind(BridgeKind aKind) {
  if (aKind == mKind)
    return;
  mBridge.reset();
  mAreBaudRatesKnown = false;
  mIsAskingForBaudRate = false;
  mSupportedBaudRates.fill(false);
  mKind = aKind;
  if (mKind != BridgeKind::None)
    mBridge = std::make_unique<KrSerialBridge>();
}

std::uint32_t SerialBridge::GetBaudRate() const {
  return mBridge ? mBridge->GetBaudRate() : 0;
}

KrString SerialBridge::GetName() const {
  return mKind == BridgeKind::CameraLinkDLL ? mBridge->GetName() : KrString();
}

KrString SerialBridge::GetPortName() const {
  return ::GetPortName(mPort);
}

KrString SerialBridge::GetCOMPort() const {
  return mKind == BridgeKind::COMPort ? mBridge->GetSerialPort() : KrString();
}

KrSerialPortConfiguration SerialBridge::GetConfiguration() const {
  return GetCOMPort().IsEmpty() ? KrSerialPortConfiguration() : mBridge->GetSerialPortConfiguration();
}

KrString SerialBridge::GetDescription() const {
  if (GetCOMPort().IsEmpty())
    return "Not selected";
  const KrSerialPortConfiguration configuration = GetConfiguration();
  return Number(configuration.baudRate) + " baud, " + FindParityWord(configuration.parity) + " parity, " +
         Number(configuration.byteSize) + " bits, " + Number(configuration.stopBits) + " stop bit" +
         (configuration.stopBits > 1 ? "s" : "");
}

KrResult SerialBridge::StartCOMPort(const KrString& aCOMPort) {
  if (mKind != BridgeKind::COMPort)
    return {};
  const KrSerialPortConfiguration configuration = GetConfiguration();
  if (!GetCOMPort().IsEmpty()) {
    // The old link ends before the new one begins: it may be on the same port.
    mBridge.reset();
    mBridge = std::make_unique<KrSerialBridge>();
  }
  mBridge->SetCreatingPort(mIsCreatingPorts);
  KrResult result = mBridge->Start(aCOMPort, configuration, mAdapter, mPort);
  if (result.IsOK())
    RefreshSupportedBaudRates();
  return result;
}

KrResult SerialBridge::StartCLDLL(const KrString& aName, bool aIsWithoutDevicePort) {
  if (mKind != BridgeKind::CameraLinkDLL)
    return {};
  KrResult result = mBridge->Start(aName, mAdapter, aIsWithoutDevicePort ? kNoDeviceSerial : mPort);
  if (result.IsOK())
    RefreshSupportedBaudRates();
  return result;
}

KrResult SerialBridge::SetConfiguration(const KrSerialPortConfiguration& aConfiguration) {
  return mKind == BridgeKind::COMPort ? mBridge->SetSerialPortConfiguration(aConfiguration) : KrResult();
}

KrResult SerialBridge::SetHardCodedBaudRate(std::uint32_t aBaudRate) {
  if (!mBridge)
    return {KrResult::Code::WrongState, GetPortName() + " has no bridge that could take a baud rate."};
  return mBridge->SetHardCodedBaudRate(aBaudRate);
}

void SerialBridge::ResetStatistics() {
  if (mBridge)
    mBridge->ResetStatistics();
}

/// Flags are cleared by another kind alone.
void SerialBridge::RefreshSupportedBaudRates() {
  const std::size_t count = mBridge->GetSupportedBaudRateCount();
  mAreBaudRatesKnown = mAreBaudRatesKnown || count > 0;
  for (std::size_t index = 0; index < count; ++index) {
    const auto* const found = std::find(kBaudRates.begin(), kBaudRates.end(), mBridge->GetSupportedBaudRate(index));
    if (found != kBaudRates.end())
      mSupportedBaudRates[static_cast<std::size_t>(found - kBaudRates.begin())] = true;
  }
}

bool SerialBridge::Load(const KrPropertyList& aProperties, KrStringList& aErrors) {
  switch (mKind) {
  case BridgeKind::COMPort:
    return LoadCOMPort(aProperties, aErrors);
  case BridgeKind::CameraLinkDLL:
    return LoadCLDLL(aProperties, aErrors);
  default:
    return true;
  }
}

bool SerialBridge::LoadCOMPort(const KrPropertyList& aProperties, KrStringList& aErrors) {
  const KrProperty* const port = FindSavedCOMPort(aProperties, mPort);
  if (port == nullptr)
    return Fail(aErrors, "Port parameter missing.");
  KrResult result = StartCOMPort(port->GetValue());
  if (!result.IsOK())
    return Fail(aErrors, "Unable to open serial port " + port->GetValue() + ": " + FormatResult(result));
  KrSerialPortConfiguration configuration;
  result = RestoreConfiguration(aProperties, mPort, configuration);
  if (!result.IsOK())
    return Fail(aErrors, result.GetDescription());
  result = SetConfiguration(configuration);
  if (!result.IsOK())
    return Fail(aErrors, "Unable to apply serial port configuration: " + FormatResult(result));
  return true;
}

bool SerialBridge::LoadCLDLL(const KrPropertyList& aProperties, KrStringList& aErrors) {
  std::optional<std::uint32_t> baudRate;
  KrResult result = RestoreHardCodedBaudRate(aProperties, mPort, baudRate);
  if (!result.IsOK())
    return Fail(aErrors, result.GetDescription());
  if (!baudRate)
    return true;
  result = SetHardCodedBaudRate(*baudRate);
  if (!result.IsOK())
    return Fail(aErrors, "Unable to apply Camera Link DLL hard-coded baud rate: " + FormatResult(result));
  return true;
}

void SerialBridge::Save(KrPropertyList& aProperties) const {
  if (mKind == BridgeKind::CameraLinkDLL)
    StoreHardCodedBaudRate(mBridge->GetHardCodedBaudRate(), mPort, aProperties);
  if (const KrString port = GetCOMPort(); !port.IsEmpty())
    StoreCOMPort(port, GetConfiguration(), mPort, aProperties);
}

bool SerialBridge::Fail(KrStringList& aErrors, const KrString& aReason) const {
  aErrors.Add("Serial bridge on " + GetPortName() + ": " + aReason);
  return false;
}

} // namespace krgui
