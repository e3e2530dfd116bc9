#include "describedcamera.h"
#include "registernodes.h"

#include <gmock/gmock.h>

#include <string>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string MakeText(const std::string& aMode = "RW") {
  return MakeNode("StringReg", "Text", Address("0x100") + Length("6"), AccessMode(aMode));
}

} // namespace

TEST(StringRegister, Text_EndsAtItsFirstZeroByteOrWithTheRegister) {
  DescribedCamera camera(MakeText());
  camera.Poke(0x100, {'a', 'b', 0, 'c', 'd', 'e', 'f'});
  EXPECT_STREQ(Read(camera.String("Text"), &KrGenString::GetValue).CStr(), "ab");

  camera.Poke(0x100, {'a', 'b', 'c', 'd', 'e', 'f', 'g'});
  camera.array->InvalidateCache();

  EXPECT_STREQ(Read(camera.String("Text"), &KrGenString::GetValue).CStr(), "abcdef");
}

TEST(StringRegister, Text_IsWrittenWithZerosBehindIt) {
  DescribedCamera camera(MakeText());
  camera.Poke(0x100, {1, 2, 3, 4, 5, 6, 7});

  ASSERT_TRUE(camera.String("Text").SetValue("abc").IsOK());

  EXPECT_THAT(camera.Peek(0x100, 7), ElementsAre('a', 'b', 'c', 0, 0, 0, 7));
}

TEST(StringRegister, Text_ThatFillsTheRegister_NeedsNoZero) {
  DescribedCamera camera(MakeText());

  ASSERT_TRUE(camera.String("Text").SetValue("abcdef").IsOK());

  EXPECT_THAT(camera.Peek(0x100, 7), ElementsAre('a', 'b', 'c', 'd', 'e', 'f', 0));
  EXPECT_STREQ(Read(camera.String("Text"), &KrGenString::GetValue).CStr(), "abcdef");
}

TEST(StringRegister, Text_ThatIsTooLong_IsRefusedWithTheLimit) {
  DescribedCamera camera(MakeText());

  const KrResult result = camera.String("Text").SetValue("abcdefg");

  EXPECT_EQ(result, KrResult::Code::InvalidInput);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("at most 6"));
  EXPECT_EQ(Read(camera.String("Text"), &KrGenString::GetMaxLength), 6);
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST(StringRegister, Bytes_ThatAreNoUtf8_AreKeptAsTheyAre) {
  DescribedCamera camera(MakeText());
  camera.Poke(0x100, {0xB5, 'm', 0xFF, 0});

  const KrString text = Read(camera.String("Text"), &KrGenString::GetValue);
  ASSERT_TRUE(camera.String("Text").SetValue(text).IsOK());

  EXPECT_STREQ(text.CStr(), "\xB5m\xFF");
  EXPECT_THAT(camera.Peek(0x100, 4), ElementsAre(0xB5, 'm', 0xFF, 0));
}

TEST(StringRegister, Text_ThatCanOnlyBeRead_IsNotSet) {
  DescribedCamera camera(MakeText("RO"));

  EXPECT_EQ(camera.String("Text").SetValue("a"), KrResult::Code::AccessDenied);
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}
