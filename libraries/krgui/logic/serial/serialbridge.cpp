#include "logic/serial/serialbridge.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>
#include <string>

namespace krgui {

namespace {

constexpr const char* kPortKey = "Port";
constexpr const char* kBaudRateKey = "COMPortBaudRate";
constexpr const char* kParityKey = "COMPortParity";
constexpr const char* kByteSizeKey = "COMPortBitCount";
constexpr const char* kStopBitsKey = "COMPortStopBits";
constexpr const char* kHardCodedBaudRateKey = "CLDLLBaudRate";

/// By the numbers of parities.
constexpr const char* kParityWords[] = {"no", "even", "odd"};
constexpr const char* kParityValues[] = {"None", "Even", "Odd"};

KrString Number(std::uint32_t aNumber) {
  return std::to_string(aNumber);
}

/// What error lines end with.
KrString FormatResult(const KrResult& aResult) {
  return aResult.GetCodeString() + ", " + aResult.GetDescription() + ".";
}

std::optional<std::uint32_t> ReadNumber(const KrProperty& aProperty) {
  std::int64_t number = 0;
  if (!aProperty.GetValue(number).IsOK() || number < 0 || number > std::numeric_limits<std::uint32_t>::max())
    return std::nullopt;
  return static_cast<std::uint32_t>(number);
}

std::optional<std::uint32_t> ReadParity(const KrProperty& aProperty) {
  const auto* const found = std::find(std::begin(kParityValues), std::end(kParityValues), aProperty.GetValue());
  if (found == std::end(kParityValues))
    return std::nullopt;
  return static_cast<std::uint32_t>(found - std::begin(kParityValues));
}

const char* FindWord(const char* const (&aWords)[3], std::uint32_t aParity, const char* aOther) {
  return aParity < std::size(aWords) ? aWords[aParity] : aOther;
}

/// The fields of a configuration as they are saved, in the order in which they are read and written.
struct Field {
  const char* suffix;
  std::uint32_t KrSerialPortConfiguration::*value;
  std::optional<std::uint32_t> (*read)(const KrProperty& aProperty);
  const char* problem;
};

constexpr Field kFields[] = {
    {kBaudRateKey, &KrSerialPortConfiguration::baudRate, ReadNumber, "Unable to parse COM port speed."},
    {kParityKey, &KrSerialPortConfiguration::parity, ReadParity, "Unable to parse COM port parity."},
    {kByteSizeKey, &KrSerialPortConfiguration::byteSize, ReadNumber, "Unable to parse COM port bit count (byte size)."},
    {kStopBitsKey, &KrSerialPortConfiguration::stopBits, ReadNumber, "Unable to parse COM port stop bits."},
};

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
  return Number(configuration.baudRate) + " baud, " + FindWord(kParityWords, configuration.parity, "invalid") +
         " parity, " + Number(configuration.byteSize) + " bits, " + Number(configuration.stopBits) + " stop bit" +
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
  const KrProperty* const port = aProperties.GetProperty(MakeKey(kPortKey));
  if (port == nullptr)
    return Fail(aErrors, "Port parameter missing.");
  KrResult result = StartCOMPort(port->GetValue());
  if (!result.IsOK())
    return Fail(aErrors, "Unable to open serial port " + port->GetValue() + ": " + FormatResult(result));
  KrSerialPortConfiguration configuration;
  if (!LoadConfiguration(aProperties, aErrors, configuration))
    return false;
  if (!configuration.IsValid())
    return Fail(aErrors, "Invalid COM port configuration.");
  result = SetConfiguration(configuration);
  if (!result.IsOK())
    return Fail(aErrors, "Unable to apply serial port configuration: " + FormatResult(result));
  return true;
}

/// What is not there stays as it is.
bool SerialBridge::LoadConfiguration(const KrPropertyList& aProperties, KrStringList& aErrors,
                                     KrSerialPortConfiguration& aConfiguration) const {
  for (const Field& field : kFields) {
    const KrProperty* const property = aProperties.GetProperty(MakeKey(field.suffix));
    if (property == nullptr)
      continue;
    const std::optional<std::uint32_t> value = field.read(*property);
    if (!value)
      return Fail(aErrors, field.problem);
    aConfiguration.*field.value = *value;
  }
  return true;
}

bool SerialBridge::LoadCLDLL(const KrPropertyList& aProperties, KrStringList& aErrors) {
  const KrProperty* const property = aProperties.GetProperty(MakeKey(kHardCodedBaudRateKey));
  if (property == nullptr)
    return true;
  const std::optional<std::uint32_t> baudRate = ReadNumber(*property);
  if (!baudRate)
    return Fail(aErrors, "Unable to parse Camera Link DLL hard-coded baud rate.");
  const KrResult result = SetHardCodedBaudRate(*baudRate);
  if (!result.IsOK())
    return Fail(aErrors, "Unable to apply Camera Link DLL hard-coded baud rate: " + FormatResult(result));
  return true;
}

void SerialBridge::Save(KrPropertyList& aProperties) const {
  if (mKind == BridgeKind::CameraLinkDLL)
    aProperties.Add({MakeKey(kHardCodedBaudRateKey), mBridge->GetHardCodedBaudRate()});
  const KrString port = GetCOMPort();
  if (port.IsEmpty())
    return;
  const KrSerialPortConfiguration configuration = GetConfiguration();
  aProperties.Add({MakeKey(kPortKey), port});
  aProperties.Add({MakeKey(kBaudRateKey), configuration.baudRate});
  aProperties.Add({MakeKey(kParityKey), FindWord(kParityValues, configuration.parity, kParityValues[0])});
  aProperties.Add({MakeKey(kByteSizeKey), configuration.byteSize});
  aProperties.Add({MakeKey(kStopBitsKey), configuration.stopBits});
}

bool SerialBridge::Fail(KrStringList& aErrors, const KrString& aReason) const {
  aErrors.Add("Serial bridge on " + GetPortName() + ": " + aReason);
  return false;
}

KrString SerialBridge::MakeKey(const char* aSuffix) const {
  return GetPortName() + aSuffix;
}

} // namespace krgui
