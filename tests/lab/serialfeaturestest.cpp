// The features of simulated cameras' serial ports, as a terminal uses them.

#include "seriallinefixture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

constexpr const char* kSerialFeatures[] = {"Uart0BaudRate", "Uart0Loopback", "Uart1BaudRate", "Uart1Loopback",
                                           "BulkSelector",  "BulkLoopback",  "BulkBaudRate",  "BulkSystemClockDivider"};

class SerialFeaturesTest : public SerialLineTest {
protected:
  explicit SerialFeaturesTest(const krtransport::Lab& aLab = krtransport::GetBuiltInLab()) : SerialLineTest(aLab) {}

  KrGenParameterArray& OpenCamera(const char* aID = kMonoMAC) {
    mDevice.reset();
    EXPECT_TRUE(Open(aID, mDevice).IsOK());
    KrStringList faults;
    EXPECT_TRUE(GetArray().GetFaults(faults).IsOK());
    EXPECT_TRUE(faults.IsEmpty()) << faults.begin()->CStr();
    return GetArray();
  }
  std::vector<std::string> ListEntries(const char* aName) {
    KrStringList entries;
    EXPECT_TRUE(GetArray().GetEnum(aName)->GetAvailableEntries(entries).IsOK()) << aName;
    std::vector<std::string> names;
    for (const KrString& entry : entries)
      names.push_back(entry.ToUtf8());
    return names;
  }
  std::string GetEntry(const char* aName) {
    KrString entry;
    EXPECT_TRUE(GetArray().GetEnum(aName)->GetEntry(entry).IsOK()) << aName;
    return entry.ToUtf8();
  }
};

class DifferentRatesTest : public SerialFeaturesTest {
protected:
  DifferentRatesTest()
      : SerialFeaturesTest(MakeSerialLab("{port: Bulk7, rates: [9600, 115200], rate: 115200},"
                                         " {port: Bulk1, rates: [9600, 3000000], rate: 9600}")) {}
};

} // namespace

TEST_F(SerialFeaturesTest, EachCamera_HasTheFeaturesOfItsPortsAlone) {
  struct Row {
    const char* id;
    std::vector<std::string> features;
  };
  const Row kRows[] = {
      {kMonoMAC,
       {"Uart0BaudRate", "Uart0Loopback", "Uart1BaudRate", "Uart1Loopback", "BulkSelector", "BulkLoopback",
        "BulkBaudRate"}},
      {"4B5200000101", {"Uart0BaudRate", "Uart0Loopback", "BulkSelector", "BulkLoopback", "BulkSystemClockDivider"}},
      {kColourMAC, {}},
  };

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.id);
    KrGenParameterArray& array = OpenCamera(row.id);
    std::vector<std::string> features;
    for (const char* name : kSerialFeatures) {
      const KrGenParameter* const feature = array.Get(name);
      if (!feature)
        continue;
      features.push_back(name);
      EXPECT_EQ(feature->GetCategory(), "Root\\SerialPortControl") << name;
    }

    EXPECT_EQ(features, row.features);
  }
}

TEST_F(SerialFeaturesTest, UartBaudRate_OffersAndHasWhatTheLabSays) {
  OpenCamera();

  EXPECT_THAT(ListEntries("Uart0BaudRate"),
              ElementsAre("Baud9600", "Baud19200", "Baud38400", "Baud57600", "Baud115200", "Baud921600"));
  EXPECT_EQ(GetEntry("Uart0BaudRate"), "Baud115200");
  EXPECT_EQ(GetEntry("Uart1BaudRate"), "Baud9600");
  std::int64_t rate = 0;
  EXPECT_TRUE(GetArray().GetEnum("Uart0BaudRate")->GetValue(rate).IsOK());
  EXPECT_EQ(rate, 115200) << "an entry's value is the rate";
}

TEST_F(SerialFeaturesTest, UartFeatures_AreTheirPortsOwn) {
  KrGenParameterArray& array = OpenCamera();

  EXPECT_TRUE(array.GetEnum("Uart1BaudRate")->SetEntry("Baud57600").IsOK());
  EXPECT_TRUE(array.GetBoolean("Uart1Loopback")->SetValue(true).IsOK());

  EXPECT_EQ(GetEntry("Uart0BaudRate"), "Baud115200");
  EXPECT_EQ(GetEntry("Uart1BaudRate"), "Baud57600");
  bool isOn = true;
  EXPECT_TRUE(array.GetBoolean("Uart0Loopback")->GetValue(isOn).IsOK());
  EXPECT_FALSE(isOn);
}

TEST_F(SerialFeaturesTest, BulkSystemClockDivider_OffersWhatMakesTheLabsRates) {
  KrGenParameterArray& array = OpenCamera("4B5200000101");

  EXPECT_THAT(ListEntries("BulkSelector"), ElementsAre("Bulk0", "Bulk1"));
  EXPECT_THAT(ListEntries("BulkSystemClockDivider"), ElementsAre("By7500", "By625", "By24"));
  EXPECT_EQ(GetEntry("BulkSystemClockDivider"), "By625");
  EXPECT_TRUE(array.GetEnum("BulkSelector")->SetEntry("Bulk1").IsOK());

  EXPECT_THAT(ListEntries("BulkSystemClockDivider"), ElementsAre("By24"));
}

TEST_F(DifferentRatesTest, BulkBaudRate_OffersAndTakesTheSelectedPortsRates) {
  KrGenParameterArray& array = OpenCamera();
  KrGenEnum& rate = *array.GetEnum("BulkBaudRate");
  EXPECT_THAT(ListEntries("BulkSelector"), ElementsAre("Bulk1", "Bulk7"));
  EXPECT_EQ(GetEntry("BulkSelector"), "Bulk1");
  EXPECT_THAT(ListEntries("BulkBaudRate"), ElementsAre("Baud9600", "Baud3000000"));
  EXPECT_TRUE(rate.SetEntry("Baud3000000").IsOK());

  EXPECT_TRUE(array.GetEnum("BulkSelector")->SetEntry("Bulk7").IsOK());

  EXPECT_THAT(ListEntries("BulkBaudRate"), ElementsAre("Baud9600", "Baud115200"));
  EXPECT_EQ(GetEntry("BulkBaudRate"), "Baud115200");
  EXPECT_FALSE(rate.SetEntry("Baud3000000").IsOK());
  EXPECT_TRUE(array.GetEnum("BulkSelector")->SetEntry("Bulk1").IsOK());
  EXPECT_EQ(GetEntry("BulkBaudRate"), "Baud3000000");
}

TEST_F(DifferentRatesTest, BulkLoopback_IsTheSelectedPortsOwn) {
  KrGenParameterArray& array = OpenCamera();
  KrGenBoolean& loopback = *array.GetBoolean("BulkLoopback");
  const Channel first = OpenPort(3);
  const Channel last = OpenPort(9);

  EXPECT_TRUE(array.GetEnum("BulkSelector")->SetEntry("Bulk7").IsOK());
  EXPECT_TRUE(loopback.SetValue(true).IsOK());
  ASSERT_TRUE(Write(*first, "a").IsOK());
  ASSERT_TRUE(Write(*last, "b").IsOK());

  EXPECT_EQ(ReadBytes(*last, 1), "b");
  EXPECT_TRUE(WaitUntil([&] { return GetCounts(3).sent == 1; }));
  EXPECT_EQ(ReadWaiting(*first), "");
}

TEST_F(SerialFeaturesTest, Settings_OfTheSerialPorts_AreStoredAndRestoredUnderEverySelector) {
  KrGenParameterArray& array = OpenCamera();
  KrGenSettings settings;
  KrStringList problems;
  ASSERT_TRUE(array.GetEnum("BulkBaudRate")->SetEntry("Baud1000000").IsOK());
  ASSERT_TRUE(array.StoreSettings(settings, problems).IsOK());
  ASSERT_TRUE(array.GetEnum("BulkBaudRate")->SetEntry("Baud115200").IsOK());

  EXPECT_TRUE(array.RestoreSettings(settings, problems).IsOK());

  EXPECT_EQ(GetEntry("BulkBaudRate"), "Baud1000000");
  EXPECT_TRUE(problems.IsEmpty());
}
