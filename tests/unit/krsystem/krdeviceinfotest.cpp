#include "krsystem/krdeviceinfo.h"

#include <gmock/gmock.h>

namespace {

struct IPConfigurationRow {
  const char* name;
  std::uint32_t bits;
  const char* text;
};

constexpr IPConfigurationRow kIPConfigurations[] = {
    {"no way", 0x0, "None"},
    {"persistent alone", 0x1, "Persistent"},
    {"DHCP alone", 0x2, "DHCP"},
    {"link-local alone", 0x4, "LLA"},
    {"all ways", 0x7, "Persistent, DHCP, LLA"},
    {"persistent and link-local", 0x5, "Persistent, LLA"},
    {"unknown bits", 0xF8, "None"},
};

} // namespace

TEST(KrDeviceInfoGEV, GetIPConfigOptionsString_Bits_AreNamedInOrder) {
  for (const IPConfigurationRow& row : kIPConfigurations) {
    SCOPED_TRACE(row.name);
    krsystem::GEVFields fields;
    fields.ipConfigOptions = row.bits;

    const KrDeviceInfoGEV info(fields);

    EXPECT_EQ(info.GetIPConfigOptionsString(), row.text);
  }
}

TEST(KrDeviceInfoGEV, GetIPConfigCurrentString_Bits_AreNamedInOrder) {
  for (const IPConfigurationRow& row : kIPConfigurations) {
    SCOPED_TRACE(row.name);
    krsystem::GEVFields fields;
    fields.ipConfigCurrent = row.bits;

    const KrDeviceInfoGEV info(fields);

    EXPECT_EQ(info.GetIPConfigCurrentString(), row.text);
  }
}

TEST(KrDeviceInfoGEV, GetClass_Transmitter_IsOneMoreThanDeviceModeSays) {
  krsystem::GEVFields fields;
  fields.deviceClass = 0;

  const KrDeviceInfoGEV info(fields);

  EXPECT_EQ(info.GetClass(), 1u);
}

TEST(KrDeviceInfo, Getters_OfEachKind_GiveCommonFields) {
  krsystem::GEVFields gev;
  krsystem::TolvanProtocolFields tolvan;
  krsystem::USBFields usb;
  krsystem::U3VFields u3v;
  for (krsystem::DeviceFields* fields :
       {static_cast<krsystem::DeviceFields*>(&gev), static_cast<krsystem::DeviceFields*>(&tolvan),
        static_cast<krsystem::DeviceFields*>(&usb), static_cast<krsystem::DeviceFields*>(&u3v)}) {
    fields->uniqueID = "id";
    fields->modelName = "model";
    fields->configurationValid = false;
  }

  const KrDeviceInfoGEV gevInfo(gev);
  const KrDeviceInfoTolvanProtocol tolvanInfo(tolvan);
  const KrDeviceInfoUSB usbInfo(usb);
  const KrDeviceInfoU3V u3vInfo(u3v);

  for (const KrDeviceInfo* info :
       std::initializer_list<const KrDeviceInfo*>{&gevInfo, &tolvanInfo, &usbInfo, &u3vInfo}) {
    EXPECT_EQ(info->GetUniqueID(), "id");
    EXPECT_EQ(info->GetModelName(), "model");
    EXPECT_FALSE(info->IsConfigurationValid());
    EXPECT_EQ(info->GetInterface(), nullptr);
    EXPECT_EQ(info->GetTransport(), nullptr);
  }
  EXPECT_EQ(gevInfo.GetType(), KrDeviceInfoType::GEV);
  EXPECT_EQ(tolvanInfo.GetType(), KrDeviceInfoType::TolvanProtocol);
  EXPECT_EQ(usbInfo.GetType(), KrDeviceInfoType::USB);
  EXPECT_EQ(u3vInfo.GetType(), KrDeviceInfoType::U3V);
}
