#include "gigevisionfixture.h"

namespace {

class GigEVisionFeatures : public GigEVisionCameraTest {
protected:
  void SetUp() override {
    GigEVisionCameraTest::SetUp();
    if (HasFatalFailure())
      return;
    mLink = OpenControlled();
    ASSERT_NE(mLink, nullptr);
    mFeatures = mLink->GetFeatures();
    ASSERT_NE(mFeatures, nullptr);
  }

  std::unique_ptr<krsystem::IDeviceLink> mLink;
  krsystem::IFeatureAccess* mFeatures = nullptr;
};

TEST_F(GigEVisionFeatures, HasFeature_NamedInTheDescriptionOrNot_SaysSo) {
  EXPECT_TRUE(mFeatures->HasFeature("PixelFormat"));
  EXPECT_TRUE(mFeatures->IsFeatureAvailable("PixelFormat"));
  EXPECT_FALSE(mFeatures->HasFeature("NoSuchFeature"));
  EXPECT_FALSE(mFeatures->IsFeatureAvailable("NoSuchFeature"));
}

TEST_F(GigEVisionFeatures, GetEnumerationEntries_PixelFormat_ListsThemInTheDescriptionsOrder) {
  KrStringList entries;

  const KrResult result = mFeatures->GetEnumerationEntries("PixelFormat", entries);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(std::vector<KrString>(entries.begin(), entries.end()),
              testing::ElementsAre("BayerBG8", "BayerGB8", "BayerGR8", "BayerRG8", "Mono8", "RGB8", "Mono16"));
}

TEST_F(GigEVisionFeatures, SetEnumeration_AnotherEntry_ChangesTheDevice) {
  constexpr std::uint64_t kPixelFormatRegister = 0x128;
  KrString entry;

  const KrResult result = mFeatures->SetEnumeration("PixelFormat", "Mono16");

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_TRUE(mFeatures->GetEnumeration("PixelFormat", entry).IsOK());
  EXPECT_EQ(entry, KrString("Mono16"));
  EXPECT_EQ(ReadRegister(*mLink, kPixelFormatRegister), 0x01100007u);
}

TEST_F(GigEVisionFeatures, SetEnumeration_RegisterChangedByItsAddress_IsReadAnew) {
  constexpr std::uint64_t kTriggerModeRegister = 0x300;
  KrString entry;
  ASSERT_TRUE(mFeatures->SetEnumeration("TriggerMode", "Off").IsOK());

  ASSERT_TRUE(WriteRegister(*mLink, kTriggerModeRegister, 1).IsOK());

  EXPECT_TRUE(mFeatures->GetEnumeration("TriggerMode", entry).IsOK());
  EXPECT_EQ(entry, KrString("On"));
}

TEST_F(GigEVisionFeatures, SetBoolean_Toggled_ReadsBack) {
  bool value = false;

  const KrResult result = mFeatures->SetBoolean("TestBoolean", true);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_TRUE(mFeatures->GetBoolean("TestBoolean", value).IsOK());
  EXPECT_TRUE(value);
  EXPECT_TRUE(mFeatures->SetBoolean("TestBoolean", false).IsOK());
  EXPECT_TRUE(mFeatures->GetBoolean("TestBoolean", value).IsOK());
  EXPECT_FALSE(value);
}

TEST_F(GigEVisionFeatures, WrongAccesses_AreRefusedWithTheirCodesAndTheName) {
  KrString entry;
  KrStringList entries;
  bool value = false;
  const struct {
    const char* what;
    KrResult result;
    KrResult::Code code;
    const char* name;
  } rows[] = {
      {"an enumeration that is not there", mFeatures->GetEnumeration("NoSuchFeature", entry), KrResult::Code::NotFound,
       "NoSuchFeature"},
      {"entries of what is not there", mFeatures->GetEnumerationEntries("NoSuchFeature", entries),
       KrResult::Code::NotFound, "NoSuchFeature"},
      {"a boolean that is not there", mFeatures->SetBoolean("NoSuchFeature", true), KrResult::Code::NotFound,
       "NoSuchFeature"},
      {"an integer as enumeration", mFeatures->GetEnumeration("Width", entry), KrResult::Code::InvalidInput, "Width"},
      {"an enumeration as boolean", mFeatures->GetBoolean("PixelFormat", value), KrResult::Code::InvalidInput,
       "PixelFormat"},
      {"an entry that is not there", mFeatures->SetEnumeration("PixelFormat", "Mono99"), KrResult::Code::InvalidInput,
       "Mono99"},
  };

  for (const auto& row : rows) {
    EXPECT_EQ(row.result, row.code) << row.what;
    EXPECT_THAT(row.result.GetDescription().ToUtf8(), testing::HasSubstr(row.name)) << row.what;
  }
}

TEST_F(GigEVisionFeatures, Accesses_CameraSilent_FailAtOnceAfterTheFirst) {
  KrString entry;
  std::array<std::uint8_t, 4> bytes{};
  mCamera->Pause();
  ASSERT_EQ(mLink->GetRegisterPort().Read(kWidthRegister, bytes.data(), bytes.size(), 50),
            KrResult::Code::TimeLimitExceeded);

  const KrResult result = mFeatures->GetEnumeration("PixelFormat", entry);

  EXPECT_THAT(result.GetCode(), testing::AnyOf(KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost));
  mCamera->Resume();
}

} // namespace
