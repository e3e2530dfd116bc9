#include "logic/finder/finderkeys.h"

#include "foundsystem.h"

#include <gtest/gtest.h>

using krgui::GetDeviceKey;
using krgui::GetInterfaceKey;

namespace {

KrNetworkAdapter MakeAdapterWithMAC(const KrString& aName, const KrString& aMAC) {
  krsystem::NetworkAdapterFields fields = MakeAdapter(aName);
  fields.uniqueID = "id of " + aName;
  fields.macAddress = aMAC;
  return KrNetworkAdapter(fields);
}

krsystem::TolvanProtocolFields MakeTolvanDevice(const KrString& aMAC) {
  krsystem::TolvanProtocolFields fields;
  fields.uniqueID = "tolvan id";
  fields.macAddress = aMAC;
  return fields;
}

} // namespace

TEST(FinderKeys, Controller_IsKnownByItsUniqueID) {
  const KrUSBHostController controller(MakeController("usb0"));

  EXPECT_EQ(GetInterfaceKey({}, controller), "usb0");
}

TEST(FinderKeys, Adapter_IsKnownByItsMACAddress) {
  const KrNetworkAdapter adapter = MakeAdapterWithMAC("eth0", "02:00:00:00:00:01");
  const KrNetworkAdapter other = MakeAdapterWithMAC("eth1", "02:00:00:00:00:02");
  const KrInterface* const all[] = {&adapter, &other};

  EXPECT_EQ(GetInterfaceKey(all, adapter), "02:00:00:00:00:01");
}

TEST(FinderKeys, AdaptersThatShareAMACAddress_AreToldApartByTheirNames) {
  const KrNetworkAdapter plain = MakeAdapterWithMAC("eth0", "02:00:00:00:00:01");
  const KrNetworkAdapter tagged = MakeAdapterWithMAC("eth0.7", "02:00:00:00:00:01");
  const KrInterface* const all[] = {&plain, &tagged};

  EXPECT_EQ(GetInterfaceKey(all, plain), "02:00:00:00:00:01/eth0");
  EXPECT_EQ(GetInterfaceKey(all, tagged), "02:00:00:00:00:01/eth0.7");
}

TEST(FinderKeys, AdapterWithoutMACAddress_IsKnownByItsName) {
  const KrNetworkAdapter tunnel = MakeAdapterWithMAC("tun0", "");
  const KrInterface* const all[] = {&tunnel};

  EXPECT_EQ(GetInterfaceKey(all, tunnel), "/tun0");
}

TEST(FinderKeys, AdapterThatChanged_StandsInTheListAsItWas_KeepsItsKey) {
  const KrNetworkAdapter before = MakeAdapterWithMAC("eth0", "02:00:00:00:00:01");
  const KrNetworkAdapter now = MakeAdapterWithMAC("eth0", "02:00:00:00:00:01");
  const KrInterface* const all[] = {&before};

  EXPECT_EQ(GetInterfaceKey(all, now), "02:00:00:00:00:01");
}

TEST(FinderKeys, Devices_EachKind_AreKnownByWhatIdentifiesThem) {
  const KrNetworkAdapter adapter = MakeAdapterWithMAC("eth0", "02:00:00:00:00:01");
  const KrUSBHostController controller(MakeController("usb0"));
  krsystem::GEVFields gev = MakeCamera("gev id");
  gev.macAddress = "00:11:22:33:44:55";
  krsystem::USBFields usb;
  usb.uniqueID = "port 3";

  EXPECT_EQ(GetDeviceKey(&adapter, KrDeviceInfoGEV(gev)), "id of eth000:11:22:33:44:55");
  EXPECT_EQ(GetDeviceKey(&adapter, KrDeviceInfoTolvanProtocol(MakeTolvanDevice("00:aa"))), "id of eth000:aa");
  EXPECT_EQ(GetDeviceKey(&controller, KrDeviceInfoUSB(usb)), "usb0port 3");
  EXPECT_EQ(GetDeviceKey(&controller, KrDeviceInfoU3V(MakeU3VCamera("1234"))), "1234");
}

TEST(FinderKeys, DevicesWithoutMACAddressOrGUID_AreKnownByTheirUniqueIDs) {
  const KrNetworkAdapter adapter = MakeAdapterWithMAC("eth0", "02:00:00:00:00:01");
  krsystem::GEVFields gev = MakeCamera("gev id");
  gev.macAddress = "";
  krsystem::U3VFields u3v = MakeU3VCamera("");
  u3v.uniqueID = "port 5";

  EXPECT_EQ(GetDeviceKey(&adapter, KrDeviceInfoGEV(gev)), "id of eth0gev id");
  EXPECT_EQ(GetDeviceKey(&adapter, KrDeviceInfoTolvanProtocol(MakeTolvanDevice(""))), "id of eth0tolvan id");
  EXPECT_EQ(GetDeviceKey(&adapter, KrDeviceInfoU3V(u3v)), "port 5");
}

TEST(FinderKeys, DeviceWithoutInterface_IsKnownByItsOwnPart) {
  EXPECT_EQ(GetDeviceKey(nullptr, KrDeviceInfoGEV(MakeCamera("00:11"))), "00:11");
}
