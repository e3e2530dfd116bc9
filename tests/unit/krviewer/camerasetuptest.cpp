#include "bridges/camerasetup.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "propertypairs.h"

#include <gmock/gmock.h>

namespace {

Properties Restore(const KrConfigurationWriter& aWriter, const char* aName) {
  KrPropertyList list;
  EXPECT_TRUE(KrConfigurationReader(aWriter).Restore(aName, list).IsOK()) << aName;
  return ToProperties(list);
}

const Properties kFirst = {{"Way", "GenCP"}, {"Feature.Gain", "1"}, {"Feature.Gain", "2"}};
const Properties kSecond = {{"Way", "TolvanCameraFile"}, {"Path", "/a/b.yml"}};

KrConfigurationWriter MakeSetup(const Properties& aIndex) {
  KrConfigurationWriter writer;
  EXPECT_TRUE(writer.Store("Serial0", MakeList(kFirst)).IsOK());
  EXPECT_TRUE(writer.Store("Bulk0", MakeList(kSecond)).IsOK());
  EXPECT_TRUE(writer.Store("CameraBridgeIndex", MakeList(aIndex)).IsOK());
  return writer;
}

} // namespace

TEST(CameraSetup, ReadAndWritten_IsAsItWas) {
  KrPropertyList bridges;
  ASSERT_TRUE(
      krviewer::ReadCameraSetup(KrConfigurationReader(MakeSetup({{"A", "Serial0"}, {"B", "Bulk0"}})), bridges).IsOK());

  KrConfigurationWriter written;
  ASSERT_TRUE(krviewer::WriteCameraSetup(bridges, written).IsOK());

  EXPECT_EQ(Restore(written, "Serial0"), kFirst);
  EXPECT_EQ(Restore(written, "Bulk0"), kSecond);
  const Properties index = Restore(written, "CameraBridgeIndex");
  ASSERT_EQ(index.size(), 2u);
  EXPECT_EQ(index[0].second, "Serial0");
  EXPECT_EQ(index[1].second, "Bulk0");
}

TEST(CameraSetup, NameThatIsNoPort_StaysInTheIndexAlone) {
  KrPropertyList bridges;
  ASSERT_TRUE(
      krviewer::ReadCameraSetup(KrConfigurationReader(MakeSetup({{"A", "Serial0x"}, {"B", "Bulk0"}})), bridges).IsOK());

  KrConfigurationWriter written;
  ASSERT_TRUE(krviewer::WriteCameraSetup(bridges, written).IsOK());

  const Properties index = Restore(written, "CameraBridgeIndex");
  ASSERT_EQ(index.size(), 2u);
  EXPECT_EQ(index[0].second, "Serial0x");
  EXPECT_FALSE(KrConfigurationReader(written).Contains("Serial0x"));
  EXPECT_EQ(Restore(written, "Bulk0"), kSecond);
}

TEST(CameraSetup, NamesThatLookLikePropertiesOfWhatIsNoPort_StayInTheIndex) {
  const Properties index = {{"A", ""}, {"B", "/Way"}, {"C", "Serial0x"}, {"D", "Serial0x/Way"}};
  KrPropertyList bridges;
  ASSERT_TRUE(krviewer::ReadCameraSetup(KrConfigurationReader(MakeSetup(index)), bridges).IsOK());

  KrConfigurationWriter written;
  ASSERT_TRUE(krviewer::WriteCameraSetup(bridges, written).IsOK());

  std::vector<std::string> names;
  for (const auto& [key, name] : Restore(written, "CameraBridgeIndex"))
    names.push_back(name);
  EXPECT_THAT(names, testing::ElementsAre("", "/Way", "Serial0x", "Serial0x/Way"));
}

TEST(CameraSetup, WithoutAnIndex_IsNotFound) {
  KrPropertyList bridges;

  EXPECT_EQ(krviewer::ReadCameraSetup(KrConfigurationReader(), bridges), KrResult::Code::NotFound);
}

TEST(CameraSetup, Completed_HasItsOwnBridgesAndThoseOfPortsThatItLacks) {
  const Properties own = {{"Serial0", "Camera"}, {"Serial0/Way", "GenCP"}, {"Serial0/Feature.Gain", "1"}};
  const Properties others = {
      {"Serial0", "Camera"}, {"Serial0/Way", "GenCP"}, {"Bulk0", "Camera"}, {"Bulk0/Way", "TolvanCameraFile"}};

  const Properties all = ToProperties(krviewer::CompleteCameraSetup(MakeList(own), MakeList(others)));

  EXPECT_EQ(all, (Properties{own[0], own[1], own[2], others[2], others[3]}));
}
