#include "watchtext.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>

namespace krtool {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// 2026-01-02 03:04:05.006 UTC.
constexpr NewsTime kTime{std::chrono::milliseconds(1'767'323'045'006)};

class WatchText : public testing::Test {
protected:
  WatchText() {
    setenv("TZ", "UTC-2", 1);
    tzset();
  }

  static KrDeviceInfoGEV MakeDevice(const KrString& aName) {
    krsystem::GEVFields fields;
    fields.uniqueID = "02:00:00:00:00:01";
    fields.ipAddress = "10.0.0.2";
    fields.userDefinedName = aName;
    return KrDeviceInfoGEV(fields);
  }

  static QJsonObject ReadLine(const std::string& aText) {
    EXPECT_EQ(aText.find('\n'), aText.size() - 1) << aText;
    return QJsonDocument::fromJson(QByteArray::fromStdString(aText)).object();
  }
};

TEST_F(WatchText, Line_BeginsWithLocalTimeAndWhatHappened) {
  const KrDeviceInfoGEV device = MakeDevice("left");

  const std::string line = FormatNews({.kind = NewsKind::Vanished, .device = &device}, kTime);

  EXPECT_THAT(line, StartsWith("2026-01-02 05:04:05.006  vanished  device  GEV  02:00:00:00:00:01  10.0.0.2  "));
  EXPECT_THAT(line, HasSubstr("  left  "));
  EXPECT_EQ(line.find('\n'), line.size() - 1);
}

TEST_F(WatchText, NameThatWouldBreakTheLine_StaysInItsCell) {
  const KrDeviceInfoGEV device = MakeDevice("a\n\x1b[2Jb");

  const std::string line = FormatNews({.kind = NewsKind::Appeared, .device = &device}, kTime);

  EXPECT_THAT(line, HasSubstr("  a??[2Jb  "));
}

TEST_F(WatchText, Change_SaysWhatItWas) {
  const KrDeviceInfoGEV device = MakeDevice("");
  const News news = {.kind = NewsKind::Changed, .device = &device, .changes = {{"ipAddress", "10.0.0.1", "10.0.0.2"}}};

  const QJsonObject object = ReadLine(FormatNewsJson(news, kTime));

  EXPECT_THAT(FormatNews(news, kTime), HasSubstr("  ipAddress 10.0.0.1 -> 10.0.0.2\n"));
  EXPECT_EQ(object["changes"].toObject()["ipAddress"].toObject()["before"].toString(), "10.0.0.1");
  EXPECT_EQ(object["changes"].toObject()["ipAddress"].toObject()["now"].toString(), "10.0.0.2");
}

TEST_F(WatchText, JsonOfADevice_HasTheTimeInUtcAndTheDevice) {
  const KrDeviceInfoGEV device = MakeDevice("left");

  const QJsonObject object = ReadLine(FormatNewsJson({.kind = NewsKind::Appeared, .device = &device}, kTime));

  EXPECT_EQ(object["time"].toString(), "2026-01-02T03:04:05.006Z");
  EXPECT_EQ(object["event"].toString(), "appeared");
  EXPECT_EQ(object["device"].toObject()["userDefinedName"].toString(), "left");
  EXPECT_FALSE(object.contains("changes"));
}

TEST_F(WatchText, JsonOfAnInterface_HasTheInterface) {
  krsystem::NetworkAdapterFields fields;
  fields.uniqueID = "eth0";
  const KrNetworkAdapter adapter(fields);

  const QJsonObject object = ReadLine(FormatNewsJson({.kind = NewsKind::Vanished, .interface = &adapter}, kTime));

  EXPECT_EQ(object["event"].toString(), "vanished");
  EXPECT_EQ(object["interface"].toObject()["uniqueID"].toString(), "eth0");
}

} // namespace
} // namespace krtool
