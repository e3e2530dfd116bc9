#include "simulation/featureaccess.h"

#include "labfixture.h"

#include "krsystem/ipv4address.h"

#include <gmock/gmock.h>

using namespace krtransport::cameraregister;
using testing::ElementsAre;

namespace {

class FeatureAccessTest : public LabTest {
protected:
  // The link itself, as no class above it is needed here.
  void OpenLink(const char* aAddress, krsystem::DeviceAccess aAccess = krsystem::DeviceAccess::Control) {
    krsystem::InterfaceFields interface;
    krsystem::AnyDeviceFields fields;
    ASSERT_TRUE(mLab->FindAddress(*krsystem::ParseIPv4(aAddress), kGenerousLimitMs, interface, fields).IsOK());
    ASSERT_TRUE(mLab->Open(interface, fields, aAccess, mLink).IsOK());
    mFeatures = mLink->GetFeatures();
    ASSERT_NE(mFeatures, nullptr);
  }
  std::vector<std::string> ListEntries(const char* aName) {
    KrStringList entries;
    EXPECT_TRUE(mFeatures->GetEnumerationEntries(aName, entries).IsOK());
    std::vector<std::string> names;
    for (const KrString& entry : entries)
      names.push_back(entry.ToUtf8());
    return names;
  }
  std::string Get(const char* aName) {
    KrString entry;
    EXPECT_TRUE(mFeatures->GetEnumeration(aName, entry).IsOK()) << aName;
    return entry.ToUtf8();
  }

  std::unique_ptr<krsystem::IDeviceLink> mLink;
  krsystem::IFeatureAccess* mFeatures = nullptr;
};

} // namespace

TEST_F(FeatureAccessTest, HasFeature_NamesOfTheTableAlone_AreThere) {
  OpenLink(kMonoAddress);

  EXPECT_TRUE(mFeatures->HasFeature("PixelFormat"));
  EXPECT_TRUE(mFeatures->HasFeature("Width"));
  EXPECT_TRUE(mFeatures->HasFeature("SimulatedLinePeriod"));
  EXPECT_FALSE(mFeatures->HasFeature("Balance"));
  EXPECT_FALSE(mFeatures->HasFeature("WidthReg"));
  EXPECT_FALSE(mFeatures->HasFeature(""));
}

TEST_F(FeatureAccessTest, Enumeration_SetByName_ReadsBackAndShowsInTheRegister) {
  OpenLink(kMonoAddress);

  EXPECT_EQ(Get("PixelFormat"), "Mono8");
  EXPECT_TRUE(mFeatures->SetEnumeration("PixelFormat", "Mono12Packed").IsOK());

  EXPECT_EQ(Get("PixelFormat"), "Mono12Packed");
  std::array<std::uint8_t, 4> bytes = {};
  EXPECT_TRUE(mLink->GetRegisterPort().Read(kPixelFormat, bytes.data(), 4, kGenerousLimitMs).IsOK());
  EXPECT_EQ(krtransport::DecodeInteger(bytes.data()), KrPixel::Mono12Packed);
}

TEST_F(FeatureAccessTest, Entries_OfEnumerations_AreTheCamerasInTheirOrder) {
  OpenLink("192.168.77.12");

  EXPECT_THAT(ListEntries("AcquisitionMode"), ElementsAre("Continuous", "SingleFrame", "MultiFrame"));
  EXPECT_THAT(ListEntries("PixelFormat"),
              ElementsAre("Coord3D_C16", "Coord3D_C8", "Coord3D_C10p", "Coord3D_C12p", "Coord3D_C32f", "Coord3D_A8",
                          "Coord3D_A10p", "Coord3D_A12p", "Coord3D_A16", "Coord3D_A32f", "Coord3D_B8", "Coord3D_B10p",
                          "Coord3D_B12p", "Coord3D_B16", "Coord3D_B32f", "Confidence1", "Confidence1p", "Confidence8",
                          "Confidence16", "Confidence32f", "Data8", "Data8s", "Data16", "Data16s", "Data32f"));
}

TEST_F(FeatureAccessTest, SelectedFeature_EachSelection_HasAValueOfItsOwn) {
  OpenLink(kMonoAddress);

  EXPECT_TRUE(mFeatures->SetEnumeration("TriggerSelector", "AcquisitionStart").IsOK());
  EXPECT_TRUE(mFeatures->SetEnumeration("TriggerMode", "On").IsOK());

  EXPECT_EQ(Get("TriggerMode"), "On");
  EXPECT_TRUE(mFeatures->SetEnumeration("TriggerSelector", "FrameStart").IsOK());
  EXPECT_EQ(Get("TriggerMode"), "Off");
}

TEST_F(FeatureAccessTest, Boolean_Set_ReadsBack) {
  OpenLink(kMonoAddress);
  bool value = false;

  EXPECT_TRUE(mFeatures->SetBoolean("ReverseX", true).IsOK());

  EXPECT_TRUE(mFeatures->GetBoolean("ReverseX", value).IsOK());
  EXPECT_TRUE(value);
}

TEST_F(FeatureAccessTest, WrongNamesTypesAndEntries_AreRefusedEachWithItsCode) {
  OpenLink(kMonoAddress);
  KrString entry;
  KrStringList entries;
  bool value = false;

  EXPECT_TRUE(mFeatures->GetEnumeration("Nothing", entry) == KrResult::Code::NotFound);
  EXPECT_TRUE(mFeatures->SetBoolean("Nothing", true) == KrResult::Code::NotFound);
  EXPECT_TRUE(mFeatures->GetEnumeration("ReverseX", entry) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(mFeatures->GetEnumerationEntries("Width", entries) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(mFeatures->GetBoolean("PixelFormat", value) == KrResult::Code::InvalidInput);
  EXPECT_TRUE(mFeatures->SetEnumeration("PixelFormat", "RGB8") == KrResult::Code::InvalidInput);
}

TEST_F(FeatureAccessTest, LockedFeature_WhileAStreamRuns_IsReadableButAccessDenied) {
  OpenLink(kMonoAddress);
  krsystem::IBufferSource& source = *mLink->GetBufferSource(0);
  ASSERT_TRUE(source.Start().IsOK());

  EXPECT_TRUE(mFeatures->SetEnumeration("PixelFormat", "Mono16") == KrResult::Code::AccessDenied);
  EXPECT_TRUE(mFeatures->SetBoolean("ChunkModeActive", true) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(mFeatures->SetEnumeration("TestPattern", "GreyDiagonalRamp").IsOK()) << "is not locked";

  EXPECT_EQ(Get("PixelFormat"), "Mono8");
  source.Stop();
  EXPECT_TRUE(mFeatures->SetEnumeration("PixelFormat", "Mono16").IsOK());
}

TEST_F(FeatureAccessTest, UnavailableFeature_UntilItsConditionHolds_IsAccessDenied) {
  OpenLink(kMonoAddress);
  bool value = true;

  EXPECT_FALSE(mFeatures->IsFeatureAvailable("ChunkEnable"));
  EXPECT_FALSE(mFeatures->IsFeatureAvailable("AcquisitionFrameCount"));
  EXPECT_FALSE(mFeatures->IsFeatureAvailable("Nothing"));
  EXPECT_TRUE(mFeatures->GetBoolean("ChunkEnable", value) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(mFeatures->SetBoolean("ChunkEnable", true) == KrResult::Code::AccessDenied);
  KrStringList entries;
  EXPECT_TRUE(mFeatures->GetEnumerationEntries("ChunkSelector", entries) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(mFeatures->SetBoolean("ChunkModeActive", true).IsOK());

  EXPECT_TRUE(mFeatures->IsFeatureAvailable("ChunkEnable"));
  EXPECT_TRUE(mFeatures->SetBoolean("ChunkEnable", true).IsOK());
  EXPECT_TRUE(mFeatures->GetBoolean("ChunkEnable", value).IsOK());
}

TEST_F(FeatureAccessTest, MonitorLink_ReadsButSetsNothing) {
  OpenLink(kMonoAddress, krsystem::DeviceAccess::Monitor);

  EXPECT_EQ(Get("AcquisitionMode"), "Continuous");
  EXPECT_TRUE(mFeatures->SetEnumeration("AcquisitionMode", "SingleFrame") == KrResult::Code::AccessDenied);
}

TEST_F(FeatureAccessTest, LostCamera_GivesWhatThePortGives) {
  OpenLink(kMonoAddress);
  KrString entry;
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_TRUE(mFeatures->GetEnumeration("PixelFormat", entry) == KrResult::Code::ConnectionLost);
  EXPECT_FALSE(mFeatures->IsFeatureAvailable("ChunkEnable"));
  EXPECT_TRUE(mFeatures->HasFeature("PixelFormat")) << "the description is known all the same";
}

TEST_F(FeatureAccessTest, EveryFeatureOfTheTable_NamesOtherFeaturesThatExist) {
  for (const krtransport::Feature& feature : krtransport::ListFeatures()) {
    SCOPED_TRACE(feature.name);
    EXPECT_EQ(krtransport::FindFeature(feature.name), &feature) << "a name that two features have";
    EXPECT_TRUE(feature.selector.empty() || krtransport::FindFeature(feature.selector));
    EXPECT_TRUE(feature.prerequisite.empty() || krtransport::FindFeature(feature.prerequisite));
    EXPECT_TRUE(feature.limit.empty() || krtransport::FindFeature(feature.limitLess));
  }
}
