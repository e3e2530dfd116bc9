// A few parameters of simulated cameras through KrDeviceAdapter, as the serial windows ask for them.

#include "labfixture.h"

#include "krdevice/krdeviceadapter.h"
#include "krdevice/krstream.h"

#include <gmock/gmock.h>

using namespace krtransport::cameraregister;
using testing::ElementsAre;

namespace {

class SimulatedAdapterTest : public LabTest {
protected:
  void OpenAdapter(const char* aMAC, KrDeviceAccess aAccess = KrDeviceAccess::Control) {
    ASSERT_TRUE(Open(aMAC, mDevice, aAccess).IsOK());
    mAdapter = std::make_unique<KrDeviceAdapter>(*mDevice);
  }
  std::vector<std::string> ListEntries(const char* aName) {
    KrStringList entries;
    EXPECT_TRUE(mAdapter->GetEnumEntries(aName, entries).IsOK());
    std::vector<std::string> names;
    for (const KrString& entry : entries)
      names.push_back(entry.ToUtf8());
    return names;
  }
  std::string Get(const char* aName) {
    KrString entry;
    EXPECT_TRUE(mAdapter->GetEnumValue(aName, entry).IsOK()) << aName;
    return entry.ToUtf8();
  }

  std::unique_ptr<KrDevice> mDevice;
  std::unique_ptr<KrDeviceAdapter> mAdapter;
};

} // namespace

TEST_F(SimulatedAdapterTest, HasParameter_NamesOfTheDescriptionAlone_AreThere) {
  OpenAdapter(kMonoMAC);

  EXPECT_TRUE(mAdapter->HasParameter("PixelFormat"));
  EXPECT_TRUE(mAdapter->HasParameter("Width"));
  EXPECT_TRUE(mAdapter->HasParameter("SimulatedLinePeriod"));
  EXPECT_FALSE(mAdapter->HasParameter("Balance"));
  EXPECT_FALSE(mAdapter->HasParameter("DeviceControl")) << "is a category";
  EXPECT_FALSE(mAdapter->HasParameter(""));
}

TEST_F(SimulatedAdapterTest, Enumeration_SetByName_ReadsBackAndShowsInTheRegister) {
  OpenAdapter(kMonoMAC);

  EXPECT_EQ(Get("PixelFormat"), "Mono8");
  EXPECT_TRUE(mAdapter->SetEnumValue("PixelFormat", "Mono12Packed").IsOK());

  EXPECT_EQ(Get("PixelFormat"), "Mono12Packed");
  std::uint32_t value = 0;
  EXPECT_TRUE(ReadInteger(*mDevice, kPixelFormat, value).IsOK());
  EXPECT_EQ(value, KrPixel::Mono12Packed);
}

TEST_F(SimulatedAdapterTest, Entries_OfEnumerations_AreTheCamerasInTheirOrder) {
  OpenAdapter(kRangeMAC);

  EXPECT_THAT(ListEntries("AcquisitionMode"), ElementsAre("Continuous", "SingleFrame", "MultiFrame"));
  EXPECT_THAT(ListEntries("PixelFormat"),
              ElementsAre("Coord3D_C16", "Coord3D_C8", "Coord3D_C10p", "Coord3D_C12p", "Coord3D_C32f", "Coord3D_A8",
                          "Coord3D_A10p", "Coord3D_A12p", "Coord3D_A16", "Coord3D_A32f", "Coord3D_B8", "Coord3D_B10p",
                          "Coord3D_B12p", "Coord3D_B16", "Coord3D_B32f", "Confidence1", "Confidence1p", "Confidence8",
                          "Confidence16", "Confidence32f", "Data8", "Data8s", "Data16", "Data16s", "Data32f"));
}

TEST_F(SimulatedAdapterTest, SelectedParameter_EachSelection_HasAValueOfItsOwn) {
  OpenAdapter(kMonoMAC);

  EXPECT_TRUE(mAdapter->SetEnumValue("TriggerSelector", "AcquisitionStart").IsOK());
  EXPECT_TRUE(mAdapter->SetEnumValue("TriggerMode", "On").IsOK());

  EXPECT_EQ(Get("TriggerMode"), "On");
  EXPECT_TRUE(mAdapter->SetEnumValue("TriggerSelector", "FrameStart").IsOK());
  EXPECT_EQ(Get("TriggerMode"), "Off");
}

TEST_F(SimulatedAdapterTest, Boolean_Set_ReadsBack) {
  OpenAdapter(kMonoMAC);
  bool value = false;

  EXPECT_TRUE(mAdapter->SetBooleanValue("ReverseX", true).IsOK());

  EXPECT_TRUE(mAdapter->GetBooleanValue("ReverseX", value).IsOK());
  EXPECT_TRUE(value);
}

TEST_F(SimulatedAdapterTest, WrongNamesTypesAndEntries_AreRefusedEachWithItsCode) {
  OpenAdapter(kMonoMAC);
  KrString entry;
  KrStringList entries;
  bool value = false;

  EXPECT_EQ(mAdapter->GetEnumValue("Nothing", entry), KrResult::Code::NotFound);
  EXPECT_EQ(mAdapter->SetBooleanValue("Nothing", true), KrResult::Code::NotFound);
  EXPECT_EQ(mAdapter->GetEnumValue("ReverseX", entry), KrResult::Code::InvalidInput);
  EXPECT_EQ(mAdapter->GetEnumEntries("Width", entries), KrResult::Code::InvalidInput);
  EXPECT_EQ(mAdapter->GetBooleanValue("PixelFormat", value), KrResult::Code::InvalidInput);
  EXPECT_EQ(mAdapter->SetEnumValue("PixelFormat", "RGB8"), KrResult::Code::InvalidInput);
}

TEST_F(SimulatedAdapterTest, LockedParameter_WhileAStreamRuns_IsReadableButAccessDenied) {
  OpenAdapter(kMonoMAC);
  KrStream stream(*mDevice);
  ASSERT_TRUE(mAdapter->SetEnumValue("PixelFormat", "Mono8").IsOK());
  ASSERT_TRUE(stream.Start().IsOK());

  EXPECT_EQ(mAdapter->SetEnumValue("PixelFormat", "Mono16"), KrResult::Code::AccessDenied);
  EXPECT_EQ(mAdapter->SetBooleanValue("ChunkModeActive", true), KrResult::Code::AccessDenied);
  EXPECT_TRUE(mAdapter->SetEnumValue("TestPattern", "GreyDiagonalRamp").IsOK()) << "is not locked";

  EXPECT_EQ(Get("PixelFormat"), "Mono8");
  stream.Stop();
  EXPECT_TRUE(mAdapter->SetEnumValue("PixelFormat", "Mono16").IsOK());
}

TEST_F(SimulatedAdapterTest, UnavailableParameter_UntilItsConditionHolds_IsAccessDenied) {
  OpenAdapter(kMonoMAC);
  bool value = true;
  KrStringList entries;

  EXPECT_FALSE(mAdapter->IsParameterAvailable("ChunkEnable"));
  EXPECT_FALSE(mAdapter->IsParameterAvailable("AcquisitionFrameCount"));
  EXPECT_FALSE(mAdapter->IsParameterAvailable("Nothing"));
  EXPECT_EQ(mAdapter->GetBooleanValue("ChunkEnable", value), KrResult::Code::AccessDenied);
  EXPECT_EQ(mAdapter->SetBooleanValue("ChunkEnable", true), KrResult::Code::AccessDenied);
  EXPECT_EQ(mAdapter->GetEnumEntries("ChunkSelector", entries), KrResult::Code::AccessDenied);
  EXPECT_TRUE(mAdapter->SetBooleanValue("ChunkModeActive", true).IsOK());

  EXPECT_TRUE(mAdapter->IsParameterAvailable("ChunkEnable"));
  EXPECT_TRUE(mAdapter->SetBooleanValue("ChunkEnable", true).IsOK());
  EXPECT_TRUE(mAdapter->GetBooleanValue("ChunkEnable", value).IsOK());
}

TEST_F(SimulatedAdapterTest, Monitor_ReadsButSetsNothing) {
  OpenAdapter(kMonoMAC, KrDeviceAccess::Monitor);

  EXPECT_EQ(Get("AcquisitionMode"), "Continuous");
  EXPECT_EQ(mAdapter->SetEnumValue("AcquisitionMode", "SingleFrame"), KrResult::Code::AccessDenied);
}

TEST_F(SimulatedAdapterTest, LostCamera_GivesWhatThePortGivesAndKeepsItsNames) {
  OpenAdapter(kMonoMAC);
  KrString entry;
  ASSERT_TRUE(mAdapter->HasParameter("PixelFormat"));
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_EQ(mAdapter->SetEnumValue("PixelFormat", "Mono8"), KrResult::Code::ConnectionLost);
  EXPECT_EQ(mAdapter->GetEnumValue("PixelFormat", entry), KrResult::Code::ConnectionLost);
  EXPECT_FALSE(mAdapter->IsParameterAvailable("ChunkEnable"));
  EXPECT_TRUE(mAdapter->HasParameter("PixelFormat")) << "the description is known all the same";
}

TEST_F(SimulatedAdapterTest, CameraLostBeforeTheFirstQuestion_SaysSo) {
  OpenAdapter(kMonoMAC);
  KrString entry;
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_EQ(mAdapter->GetEnumValue("PixelFormat", entry), KrResult::Code::ConnectionLost);
  EXPECT_FALSE(mAdapter->HasParameter("PixelFormat"));
}
