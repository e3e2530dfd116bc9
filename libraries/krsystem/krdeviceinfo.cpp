#include "krsystem/krdeviceinfo.h"

#include "krsystem/itransport.h"

#include <array>
#include <utility>

namespace {

// The ways of addressing by their bit, in the order in which a device tries them.
constexpr std::array<std::pair<std::uint32_t, const char*>, 3> kIPConfigurations = {{
    {0x1, "Persistent"},
    {0x2, "DHCP"},
    {0x4, "LLA"},
}};

KrString DescribeIPConfiguration(std::uint32_t aBits) {
  std::string text;
  for (const auto& [bit, name] : kIPConfigurations) {
    if ((aBits & bit) == 0)
      continue;
    if (!text.empty())
      text += ", ";
    text += name;
  }
  return text.empty() ? KrString("None") : KrString(std::move(text));
}

} // namespace

KrDeviceInfo::~KrDeviceInfo() = default;

KrDeviceInfoGEV::KrDeviceInfoGEV(krsystem::GEVFields aFields) : mFields(std::move(aFields)) {}
KrDeviceInfoGEV::~KrDeviceInfoGEV() = default;

KrString KrDeviceInfoGEV::GetIPConfigOptionsString() const {
  return DescribeIPConfiguration(mFields.ipConfigOptions);
}

KrString KrDeviceInfoGEV::GetIPConfigCurrentString() const {
  return DescribeIPConfiguration(mFields.ipConfigCurrent);
}

KrDeviceInfoTolvanProtocol::KrDeviceInfoTolvanProtocol(krsystem::TolvanProtocolFields aFields)
    : mFields(std::move(aFields)) {}
KrDeviceInfoTolvanProtocol::~KrDeviceInfoTolvanProtocol() = default;

KrDeviceInfoUSB::KrDeviceInfoUSB(krsystem::USBFields aFields) : mFields(std::move(aFields)) {}
KrDeviceInfoUSB::~KrDeviceInfoUSB() = default;

KrDeviceInfoU3V::KrDeviceInfoU3V(krsystem::U3VFields aFields) : mFields(std::move(aFields)) {}
KrDeviceInfoU3V::~KrDeviceInfoU3V() = default;
