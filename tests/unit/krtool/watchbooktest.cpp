#include "watchbook.h"

#include "faketransport.h"

#include <gmock/gmock.h>

namespace krtool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

KrDeviceInfoGEV MakeDevice(const KrString& aID, const KrString& aAddress, bool aIsReachable = true,
                           const KrString& aName = "") {
  krsystem::GEVFields fields;
  fields.uniqueID = aID;
  fields.macAddress = aID;
  fields.ipAddress = aAddress;
  fields.userDefinedName = aName;
  fields.configurationValid = aIsReachable;
  return KrDeviceInfoGEV(fields);
}

KrNetworkAdapter MakeInterface(const KrString& aName, const KrString& aAddress) {
  return KrNetworkAdapter(MakeAdapter(aName, aAddress));
}

// What a piece of news says, in one text.
std::string Describe(const News& aNews) {
  constexpr const char* kWords[] = {"appeared", "changed", "vanished"};
  const KrString& id = aNews.device ? aNews.device->GetUniqueID() : aNews.interface->GetUniqueID();
  std::string text = id.ToUtf8() + " " + kWords[static_cast<int>(aNews.kind)];
  for (const Change& change : aNews.changes)
    text += " " + std::string(change.what) + ":" + change.before.ToUtf8() + ">" + change.now.ToUtf8();
  return text;
}

std::vector<std::string> TakeTexts(WatchBook& aBook) {
  std::vector<std::string> texts;
  for (const News& news : aBook.TakeNews())
    texts.push_back(Describe(news));
  return texts;
}

TEST(WatchBook, DeviceThatAnswersAgainAndAgain_AppearsOnce) {
  WatchBook book;
  const KrDeviceInfoGEV device = MakeDevice("a", "10.0.0.2");

  book.TakeDevice(device, 0);
  book.TakeDevice(device, 1000);

  EXPECT_THAT(TakeTexts(book), ElementsAre("a appeared"));
  EXPECT_THAT(book.TakeNews(), IsEmpty());
}

TEST(WatchBook, DeviceThatIsSilent_VanishesAfterMoreThanTwoSeconds) {
  WatchBook book;
  const KrDeviceInfoGEV device = MakeDevice("a", "10.0.0.2");
  book.TakeDevice(device, 500);
  book.TakeNews();

  book.Age(2500);
  const std::vector<std::string> atTheLimit = TakeTexts(book);
  book.Age(2501);

  EXPECT_THAT(atTheLimit, IsEmpty());
  EXPECT_THAT(TakeTexts(book), ElementsAre("a vanished"));
}

TEST(WatchBook, DeviceThatAnsweredBetween_StaysAndReturnsAsNewAfterItVanished) {
  WatchBook book;
  const KrDeviceInfoGEV device = MakeDevice("a", "10.0.0.2");
  book.TakeDevice(device, 0);
  book.TakeDevice(device, 1900);
  book.Age(3900);
  book.Age(3901);

  book.TakeDevice(device, 5000);

  EXPECT_THAT(TakeTexts(book), ElementsAre("a appeared", "a vanished", "a appeared"));
}

TEST(WatchBook, ReportThatIsNewerThanTheClockOfAge_DoesNotVanish) {
  WatchBook book;
  const KrDeviceInfoGEV device = MakeDevice("a", "10.0.0.2");
  book.TakeDevice(device, 1000);

  book.Age(999);

  EXPECT_THAT(TakeTexts(book), ElementsAre("a appeared"));
}

TEST(WatchBook, DeviceWithAnotherAddressAndReach_ChangesWithWhatItWas) {
  WatchBook book;
  const KrDeviceInfoGEV before = MakeDevice("a", "10.0.0.2", false);
  const KrDeviceInfoGEV now = MakeDevice("a", "192.168.1.2", true, "left");
  book.TakeDevice(before, 0);
  book.TakeNews();

  book.TakeDevice(now, 1000);

  EXPECT_THAT(TakeTexts(book),
              ElementsAre("a changed ipAddress:10.0.0.2>192.168.1.2 userDefinedName:>left reachable:no>yes"));
}

TEST(WatchBook, AnotherObjectWithTheSameValues_IsNoNews) {
  WatchBook book;
  const KrDeviceInfoGEV before = MakeDevice("a", "10.0.0.2");
  const KrDeviceInfoGEV now = MakeDevice("a", "10.0.0.2");
  book.TakeDevice(before, 0);
  book.TakeNews();

  book.TakeDevice(now, 1000);

  EXPECT_THAT(book.TakeNews(), IsEmpty());
}

TEST(WatchBook, InterfacesOfARound_AppearChangeAndVanish) {
  WatchBook book;
  const KrNetworkAdapter first = MakeInterface("eth0", "10.0.0.1");
  const KrNetworkAdapter second = MakeInterface("eth1", "10.0.1.1");
  const KrNetworkAdapter secondLater = MakeInterface("eth1", "10.0.2.1");
  book.TakeInterfaces({&first, &second});
  const std::vector<std::string> atFirst = TakeTexts(book);

  book.TakeInterfaces({&secondLater});

  EXPECT_THAT(atFirst, ElementsAre("eth0 appeared", "eth1 appeared"));
  EXPECT_THAT(TakeTexts(book), ElementsAre("eth0 vanished", "eth1 changed ipAddress:10.0.1.1>10.0.2.1"));
}

TEST(WatchBook, DeviceOnAnInterfaceThatWasNotListed_BringsIt) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeCamera("a")}};
  KrSystem system;
  ASSERT_TRUE(system.Find().IsOK());
  WatchBook book;

  book.TakeDevice(*system.GetDeviceInfo(0), 0);
  book.TakeInterfaces({system.GetInterface(0)});

  EXPECT_THAT(TakeTexts(book), ElementsAre("eth0 appeared", "a appeared"));
}

TEST(WatchBook, SameInterfacesAgain_AreNoNews) {
  WatchBook book;
  const KrNetworkAdapter adapter = MakeInterface("eth0", "10.0.0.1");
  book.TakeInterfaces({&adapter});
  EXPECT_THAT(book.TakeNews(), SizeIs(1));

  book.TakeInterfaces({&adapter});

  EXPECT_THAT(book.TakeNews(), IsEmpty());
}

} // namespace
} // namespace krtool
