// A serial bridge as it stands in a property list: what is read is all or nothing, and comes back as it was stored.

#include "logic/serial/savedserialbridge.h"
#include "serialbridgefixture.h"

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::Pair;

} // namespace

TEST(SavedSerialBridge, Words_StandForTheirKinds) {
  EXPECT_EQ(FindSavedKind("COMPort"), BridgeKind::COMPort);
  EXPECT_EQ(FindSavedKind("CLDLL"), BridgeKind::CameraLinkDLL);
  EXPECT_STREQ(GetSavedWord(BridgeKind::COMPort).CStr(), "COMPort");
  EXPECT_STREQ(GetSavedWord(BridgeKind::CameraLinkDLL).CStr(), "CLDLL");
  EXPECT_STREQ(GetSavedWord(BridgeKind::None).CStr(), "");
}

TEST(SavedSerialBridge, OtherWords_StandForNoKind) {
  for (const char* const word : {"", "comport", "COMPort ", "None"})
    EXPECT_EQ(FindSavedKind(word), BridgeKind::None) << word;
}

TEST(SavedSerialBridge, COMPort_IsStoredUnderTheNameOfItsPort) {
  KrPropertyList list;

  StoreCOMPort("COM3", {115200, 1, 7, 2}, KrDeviceSerial::Bulk3, list);

  EXPECT_THAT(GetSettings(list), ElementsAre(Pair("Bulk3Port", "COM3"), Pair("Bulk3COMPortBaudRate", "115200"),
                                             Pair("Bulk3COMPortParity", "Even"), Pair("Bulk3COMPortBitCount", "7"),
                                             Pair("Bulk3COMPortStopBits", "2")));
}

TEST(SavedSerialBridge, ConfigurationThatIsStored_ComesBackForItsPortAlone) {
  const KrSerialPortConfiguration stored = {115200, 2, 7, 2};
  KrPropertyList list;
  StoreCOMPort("COM3", stored, KrDeviceSerial::Serial1, list);

  KrSerialPortConfiguration own;
  KrSerialPortConfiguration other;
  EXPECT_TRUE(RestoreConfiguration(list, KrDeviceSerial::Serial1, own).IsOK());
  EXPECT_TRUE(RestoreConfiguration(list, KrDeviceSerial::Serial0, other).IsOK());

  EXPECT_EQ(own, stored);
  EXPECT_EQ(other, KrSerialPortConfiguration());
  EXPECT_STREQ(FindSavedCOMPort(list, KrDeviceSerial::Serial1)->GetValue().CStr(), "COM3");
  EXPECT_EQ(FindSavedCOMPort(list, KrDeviceSerial::Serial0), nullptr);
}

TEST(SavedSerialBridge, ConfigurationThatCannotBe_ChangesNothing) {
  const KrSerialPortConfiguration before = {115200, 2, 7, 2};
  for (const char* const stopBits : {"two", "3"}) {
    KrSerialPortConfiguration configuration = before;

    EXPECT_EQ(
        RestoreConfiguration(MakeProperties({{"Serial0COMPortBaudRate", "9600"}, {"Serial0COMPortStopBits", stopBits}}),
                             KrDeviceSerial::Serial0, configuration),
        KrResult::Code::BadData);

    EXPECT_EQ(configuration, before) << stopBits;
  }
}

TEST(SavedSerialBridge, RateOfAPublishedPort_ComesBackAsItWasStored) {
  KrPropertyList list;
  StoreHardCodedBaudRate(4294967295U, KrDeviceSerial::Bulk7, list);

  std::optional<std::uint32_t> own;
  std::optional<std::uint32_t> other = 1;
  EXPECT_TRUE(RestoreHardCodedBaudRate(list, KrDeviceSerial::Bulk7, own).IsOK());
  EXPECT_TRUE(RestoreHardCodedBaudRate(list, KrDeviceSerial::Bulk6, other).IsOK());

  EXPECT_EQ(own, 4294967295U);
  EXPECT_EQ(other, std::nullopt);
}

} // namespace krgui
