#include "describedcamera.h"
#include "registernodes.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using testing::ElementsAre;

namespace {

std::string MakeFloat(const std::string& aLength, const std::string& aFurther = {}) {
  return MakeNode("FloatReg", "Number", Address("0x100") + Length(aLength), AccessMode("RW") + aFurther);
}

const std::string kBig = "<Endianess>BigEndian</Endianess>";

} // namespace

TEST(FloatRegister, Value_IsReadInEitherLengthAndByteOrder) {
  DescribedCamera four(MakeFloat("4"));
  DescribedCamera fourBig(MakeFloat("4", kBig));
  DescribedCamera eightBig(MakeFloat("8", kBig));
  four.Poke(0x100, {0, 0, 0xC0, 0x3F});
  fourBig.Poke(0x100, {0x3F, 0xC0, 0, 0});
  eightBig.Poke(0x100, {0x3F, 0xF8, 0, 0, 0, 0, 0, 0});

  EXPECT_EQ(Read(four.Float("Number"), &KrGenFloat::GetValue), 1.5);
  EXPECT_EQ(Read(fourBig.Float("Number"), &KrGenFloat::GetValue), 1.5);
  EXPECT_EQ(Read(eightBig.Float("Number"), &KrGenFloat::GetValue), 1.5);
}

TEST(FloatRegister, Value_IsWrittenInEitherLengthAndByteOrder) {
  DescribedCamera four(MakeFloat("4"));
  DescribedCamera eightBig(MakeFloat("8", kBig));

  ASSERT_TRUE(four.Float("Number").SetValue(1.5).IsOK());
  ASSERT_TRUE(eightBig.Float("Number").SetValue(1.5).IsOK());

  EXPECT_THAT(four.Peek(0x100, 4), ElementsAre(0, 0, 0xC0, 0x3F));
  EXPECT_THAT(eightBig.Peek(0x100, 8), ElementsAre(0x3F, 0xF8, 0, 0, 0, 0, 0, 0));
}

TEST(FloatRegister, Limits_AreTheLargestOfTheType) {
  DescribedCamera four(MakeFloat("4"));
  DescribedCamera eight(MakeFloat("8"));

  EXPECT_EQ(Read(four.Float("Number"), &KrGenFloat::GetMax), double{std::numeric_limits<float>::max()});
  EXPECT_EQ(Read(four.Float("Number"), &KrGenFloat::GetMin), -double{std::numeric_limits<float>::max()});
  EXPECT_EQ(Read(eight.Float("Number"), &KrGenFloat::GetMax), std::numeric_limits<double>::max());
  EXPECT_EQ(Read(eight.Float("Number"), &KrGenFloat::GetMin), std::numeric_limits<double>::lowest());
  EXPECT_FALSE(four.Float("Number").HasIncrement());
}

TEST(FloatRegister, ValueThatIsNoNumberOrTooLarge_IsRefusedUnwritten) {
  DescribedCamera camera(MakeFloat("4"));

  EXPECT_EQ(camera.Float("Number").SetValue(std::numeric_limits<double>::quiet_NaN()), KrResult::Code::InvalidInput);
  EXPECT_EQ(camera.Float("Number").SetValue(std::numeric_limits<double>::infinity()), KrResult::Code::OutOfRange);
  EXPECT_EQ(camera.Float("Number").SetValue(1e300), KrResult::Code::OutOfRange);

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST(FloatRegister, NoNumberInTheDevice_IsReadAsThat) {
  DescribedCamera camera(MakeFloat("4", kBig));
  camera.Poke(0x100, {0x7F, 0xC0, 0, 0});

  EXPECT_TRUE(std::isnan(Read(camera.Float("Number"), &KrGenFloat::GetValue)));
}

TEST(FloatRegister, LengthOtherThanFourOrEight_IsAFault) {
  for (const char* length : {"0", "2", "5", "16", "-8"}) {
    DescribedCamera camera(MakeFloat(length));
    double value = 0;

    EXPECT_EQ(camera.Float("Number").GetValue(value), KrResult::Code::BadData) << length;
    EXPECT_EQ(camera.Float("Number").SetValue(1), KrResult::Code::BadData) << length;
  }
}

TEST(FloatRegister, WordsForPeople_AreThoseOfTheDescription) {
  DescribedCamera camera(MakeFloat("4", "<Unit>dB</Unit><Representation>Logarithmic</Representation>"
                                        "<DisplayNotation>Scientific</DisplayNotation>"
                                        "<DisplayPrecision>3</DisplayPrecision>") +
                         MakeNode("FloatReg", "Plain", Address("0") + Length("4")));

  EXPECT_STREQ(Read(camera.Float("Number"), &KrGenFloat::GetUnit).CStr(), "dB");
  EXPECT_EQ(Read(camera.Float("Number"), &KrGenFloat::GetRepresentation), KrGenRepresentation::Logarithmic);
  EXPECT_EQ(Read(camera.Float("Number"), &KrGenFloat::GetDisplayNotation), KrGenDisplayNotation::Scientific);
  EXPECT_EQ(Read(camera.Float("Number"), &KrGenFloat::GetDisplayPrecision), 3);
  EXPECT_EQ(Read(camera.Float("Plain"), &KrGenFloat::GetDisplayPrecision), 6);
}
