#include "logic/serial/savedserialbridge.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace krgui {

namespace {

constexpr const char* kPortKey = "Port";
constexpr const char* kBaudRateKey = "COMPortBaudRate";
constexpr const char* kParityKey = "COMPortParity";
constexpr const char* kByteSizeKey = "COMPortBitCount";
constexpr const char* kStopBitsKey = "COMPortStopBits";
constexpr const char* kHardCodedBaudRateKey = "CLDLLBaudRate";

/// By the numbers of parities.
constexpr const char* kParityValues[] = {"None", "Even", "Odd"};

constexpr struct {
  BridgeKind kind;
  const char* word;
} kKinds[] = {
    {BridgeKind::COMPort, "COMPort"},
    {BridgeKind::CameraLinkDLL, "CLDLL"},
};

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

KrString MakeKey(KrDeviceSerial aPort, const char* aSuffix) {
  return GetPortName(aPort) + aSuffix;
}

} // namespace

BridgeKind FindSavedKind(const KrString& aWord) {
  const auto* const row =
      std::find_if(std::begin(kKinds), std::end(kKinds), [&aWord](const auto& aRow) { return aWord == aRow.word; });
  return row != std::end(kKinds) ? row->kind : BridgeKind::None;
}

KrString GetSavedWord(BridgeKind aKind) {
  const auto* const row =
      std::find_if(std::begin(kKinds), std::end(kKinds), [aKind](const auto& aRow) { return aRow.kind == aKind; });
  return row != std::end(kKinds) ? row->word : "";
}

const KrProperty* FindSavedCOMPort(const KrPropertyList& aProperties, KrDeviceSerial aPort) {
  return aProperties.GetProperty(MakeKey(aPort, kPortKey));
}

KrResult RestoreConfiguration(const KrPropertyList& aProperties, KrDeviceSerial aPort,
                              KrSerialPortConfiguration& aConfiguration) {
  KrSerialPortConfiguration read = aConfiguration;
  for (const Field& field : kFields) {
    const KrProperty* const property = aProperties.GetProperty(MakeKey(aPort, field.suffix));
    if (property == nullptr)
      continue;
    const std::optional<std::uint32_t> value = field.read(*property);
    if (!value)
      return {KrResult::Code::BadData, field.problem};
    read.*field.value = *value;
  }
  if (!read.IsValid())
    return {KrResult::Code::BadData, "Invalid COM port configuration."};
  aConfiguration = read;
  return {};
}

void StoreCOMPort(const KrString& aCOMPort, const KrSerialPortConfiguration& aConfiguration, KrDeviceSerial aPort,
                  KrPropertyList& aProperties) {
  const bool isParity = aConfiguration.parity < std::size(kParityValues);
  aProperties.Add({MakeKey(aPort, kPortKey), aCOMPort});
  aProperties.Add({MakeKey(aPort, kBaudRateKey), aConfiguration.baudRate});
  aProperties.Add({MakeKey(aPort, kParityKey), KrString(kParityValues[isParity ? aConfiguration.parity : 0])});
  aProperties.Add({MakeKey(aPort, kByteSizeKey), aConfiguration.byteSize});
  aProperties.Add({MakeKey(aPort, kStopBitsKey), aConfiguration.stopBits});
}

KrResult RestoreHardCodedBaudRate(const KrPropertyList& aProperties, KrDeviceSerial aPort,
                                  std::optional<std::uint32_t>& aBaudRate) {
  const KrProperty* const property = aProperties.GetProperty(MakeKey(aPort, kHardCodedBaudRateKey));
  if (property == nullptr) {
    aBaudRate.reset();
    return {};
  }
  const std::optional<std::uint32_t> read = ReadNumber(*property);
  if (!read)
    return {KrResult::Code::BadData, "Unable to parse Camera Link DLL hard-coded baud rate."};
  aBaudRate = read;
  return {};
}

void StoreHardCodedBaudRate(std::uint32_t aBaudRate, KrDeviceSerial aPort, KrPropertyList& aProperties) {
  aProperties.Add({MakeKey(aPort, kHardCodedBaudRateKey), aBaudRate});
}

} // namespace krgui
