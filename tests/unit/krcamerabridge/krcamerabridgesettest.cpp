#include "krcamerabridge/krcamerabridgeset.h"

#include "bridgedevicefixture.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krgenicam/krgenparameterarray.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"

#include <gmock/gmock.h>

namespace krcamerabridge {
namespace {

constexpr const char* kXMLID = "SchemaVersion.1.1@XMLVersion.1.2.3";
constexpr std::uint64_t kGain = krtest::GenCPCamera::kFeatures;

/// A bridge to a camera, and one of a port that the device lacks.
class BridgeSet : public testing::Test {
protected:
  BridgeSet() {
    grabber.camera.Poke(kGain, std::vector<std::uint8_t>(64));
    grabber.camera.AddFile(
        0x01020003, 0x01010000,
        MakeDescription("<Category Name=\"Root\"><pFeature>Gain</pFeature></Category>\n"
                        "<Integer Name=\"Gain\"><Streamable>Yes</Streamable><pValue>GainReg</pValue></Integer>\n" +
                        MakeIntReg("GainReg", "0x80000000")));
    EXPECT_TRUE(first.ConnectGenCP(kXMLID).IsOK());
  }
  KrResult SetGain(std::int64_t aGain) { return first.GetParameters()->GetInteger("Gain")->SetValue(aGain); }
  std::uint64_t GetGain() { return grabber.camera.PeekNumber(kGain, 4); }
  std::vector<std::string> ListIndex() {
    KrPropertyList index;
    EXPECT_TRUE(KrConfigurationReader(writer).Restore("CameraBridgeIndex", index).IsOK());
    std::vector<std::string> names;
    for (const KrProperty& property : index)
      names.push_back(property.GetValue().ToUtf8());
    return names;
  }

  GrabberDevice grabber;
  KrCameraBridge first{grabber.device.get(), KrDeviceSerial::Serial0, nullptr};
  KrCameraBridge second{grabber.device.get(), KrDeviceSerial::Serial1, nullptr};
  const std::vector<KrCameraBridgeAtPort> bridges = {{KrDeviceSerial::Serial0, &first},
                                                     {KrDeviceSerial::Serial1, &second}};
  KrConfigurationWriter writer;
  KrStringList errors;
};

TEST_F(BridgeSet, SavedWhole_ComesBackWithTheCamerasValues) {
  ASSERT_TRUE(SetGain(7).IsOK());
  ASSERT_TRUE(KrSaveCameraBridges(bridges, KrCameraBridgeContent::Everything, writer).IsOK());
  EXPECT_THAT(ListIndex(), testing::ElementsAre("Serial0"));
  ASSERT_TRUE(SetGain(3).IsOK());
  first.Disconnect();

  EXPECT_TRUE(KrLoadCameraBridges(bridges, KrConfigurationReader(writer), errors).IsOK());

  EXPECT_TRUE(first.IsConnected());
  EXPECT_EQ(GetGain(), 7u);
  EXPECT_TRUE(errors.IsEmpty());
}

TEST_F(BridgeSet, ConnectionSavedAlone_LeavesTheCameraAsItIs) {
  ASSERT_TRUE(SetGain(7).IsOK());
  ASSERT_TRUE(first.SetSource("Source1").IsOK());
  ASSERT_TRUE(KrSaveCameraBridges(bridges, KrCameraBridgeContent::ConnectionAlone, writer).IsOK());
  ASSERT_TRUE(SetGain(3).IsOK());
  ASSERT_TRUE(first.SetSource("").IsOK());

  EXPECT_TRUE(KrLoadCameraBridges(bridges, KrConfigurationReader(writer), errors).IsOK());

  EXPECT_TRUE(first.IsConnected());
  EXPECT_STREQ(first.GetSource().CStr(), "Source1");
  EXPECT_EQ(GetGain(), 3u);
}

TEST_F(BridgeSet, ConnectionOfADeviceThatHasEnded_IsStillSaved) {
  grabber.device.reset();

  EXPECT_TRUE(KrSaveCameraBridges(bridges, KrCameraBridgeContent::ConnectionAlone, writer).IsOK());

  EXPECT_THAT(ListIndex(), testing::ElementsAre("Serial0"));
  first.Disconnect();
  EXPECT_EQ(first.SaveConnection("Serial0", writer), KrResult::Code::WrongState);
}

TEST_F(BridgeSet, NameWithoutAPort_IsToldAndTheOthersAreLoaded) {
  ASSERT_TRUE(KrSaveCameraBridges(bridges, KrCameraBridgeContent::ConnectionAlone, writer).IsOK());
  KrPropertyList index;
  index.Add({"A", "Bulk7"});
  index.Add({"B", "Serial0"});
  ASSERT_TRUE(writer.Store("CameraBridgeIndex", index).IsOK());
  first.Disconnect();

  EXPECT_EQ(KrLoadCameraBridges(bridges, KrConfigurationReader(writer), errors), KrResult::Code::NotFound);

  ASSERT_EQ(errors.GetCount(), 1u);
  EXPECT_THAT(errors[0].ToUtf8(), testing::HasSubstr("Bulk7"));
  EXPECT_TRUE(first.IsConnected());
}

TEST_F(BridgeSet, WithoutAnIndex_IsNotFoundAndChangesNothing) {
  EXPECT_EQ(KrLoadCameraBridges(bridges, KrConfigurationReader(), errors), KrResult::Code::NotFound);

  EXPECT_TRUE(first.IsConnected());
}

TEST_F(BridgeSet, EndedBeforeItsTime_IsAborted) {
  const auto end = [](std::size_t, std::size_t) { return false; };
  EXPECT_EQ(KrSaveCameraBridges(bridges, KrCameraBridgeContent::ConnectionAlone, writer, end), KrResult::Code::Aborted);
  ASSERT_TRUE(KrSaveCameraBridges(bridges, KrCameraBridgeContent::ConnectionAlone, writer).IsOK());
  first.Disconnect();

  EXPECT_EQ(KrLoadCameraBridges(bridges, KrConfigurationReader(writer), errors, end), KrResult::Code::Aborted);

  EXPECT_FALSE(first.IsConnected());
}

} // namespace
} // namespace krcamerabridge
