#include "describedcamera.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

const std::string kRegister =
    "<StringReg Name=\"Raw\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort></StringReg>";

std::string GetText(KrGenString& aString) {
  return Read<KrString>(aString, &KrGenString::GetValue).CStr();
}

} // namespace

TEST(StringNode, StoredValue_IsReadAndSet) {
  DescribedCamera camera("<String Name=\"X\"><Value>Hello, camera</Value></String>");

  EXPECT_EQ(GetText(camera.String("X")), "Hello, camera");
  ASSERT_TRUE(camera.String("X").SetValue("other").IsOK());
  EXPECT_EQ(GetText(camera.String("X")), "other");
  EXPECT_EQ(Read(camera.String("X"), &KrGenString::GetMaxLength), 4096);
}

TEST(StringNode, StoredValue_RefusesWhatIsTooLong) {
  DescribedCamera camera("<String Name=\"X\"><Value>kept</Value></String>");
  const std::string longest(4096, 'a');

  EXPECT_EQ(camera.String("X").SetValue(KrString(longest + "a")), KrResult::Code::InvalidInput);
  EXPECT_EQ(GetText(camera.String("X")), "kept");
  EXPECT_TRUE(camera.String("X").SetValue(KrString(longest)).IsOK());
}

TEST(StringNode, Target_GivesValueLengthAndAccess) {
  DescribedCamera camera(kRegister + "<String Name=\"X\"><pValue>Y</pValue></String>"
                                     "<String Name=\"Y\"><pValue>Raw</pValue></String>");

  ASSERT_TRUE(camera.String("X").SetValue("abc").IsOK());
  EXPECT_EQ(GetText(camera.String("Raw")), "abc");
  EXPECT_EQ(GetText(camera.String("X")), "abc");
  EXPECT_EQ(Read(camera.String("X"), &KrGenString::GetMaxLength), 8);
  EXPECT_EQ(camera.String("X").SetValue("123456789"), KrResult::Code::InvalidInput);
  EXPECT_EQ(camera.String("X").GetAccessMode(), KrGenAccessMode::ReadWrite);
}

TEST(StringNode, EnumerationAsTarget_IsReadAndSetByName) {
  DescribedCamera camera("<Enumeration Name=\"Mode\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
                         "<EnumEntry Name=\"Once\"><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>"
                         "<String Name=\"X\"><pValue>Mode</pValue></String>");

  EXPECT_EQ(GetText(camera.String("X")), "Off");
  ASSERT_TRUE(camera.String("X").SetValue("Once").IsOK());
  EXPECT_EQ(Read(camera.Enum("Mode"), &KrGenEnum::GetValue), 1);
  EXPECT_EQ(camera.String("X").SetValue("Twice"), KrResult::Code::InvalidInput);
  EXPECT_EQ(Read(camera.String("X"), &KrGenString::GetMaxLength), 4);
}

TEST(StringNode, TargetWithoutText_IsRefused) {
  DescribedCamera camera("<Integer Name=\"Number\"><Value>1</Value></Integer>"
                         "<String Name=\"X\"><pValue>Number</pValue></String>"
                         "<String Name=\"Dangling\"><pValue>Missing</pValue></String>");
  KrString text("kept");

  EXPECT_EQ(camera.String("X").GetValue(text), KrResult::Code::InvalidInput);
  EXPECT_EQ(camera.String("X").SetValue("1"), KrResult::Code::InvalidInput);
  const KrResult dangling = camera.String("Dangling").GetValue(text);
  EXPECT_EQ(dangling, KrResult::Code::BadData);
  EXPECT_THAT(dangling.GetDescription().CStr(), HasSubstr("\"Missing\""));
  EXPECT_STREQ(text.CStr(), "kept");
}
