#include "describedcamera.h"
#include "registertext.h"

TEST(BooleanNode, StoredValue_IsReadAndSet) {
  for (const char* const text : {"true", "True", "1", "yes"}) {
    DescribedCamera camera(std::string("<Boolean Name=\"X\"><Value>") + text + "</Value></Boolean>");

    EXPECT_TRUE(Read(camera.Boolean("X"), &KrGenBoolean::GetValue)) << text;
    ASSERT_TRUE(camera.Boolean("X").SetValue(false).IsOK());
    EXPECT_FALSE(Read(camera.Boolean("X"), &KrGenBoolean::GetValue));
  }
}

TEST(BooleanNode, OnAndOffValue_AreWhatTheTargetGets) {
  DescribedCamera camera(
      MakeRegister("Raw", 0) +
      "<Boolean Name=\"X\"><pValue>Raw</pValue><OnValue>0x55</OnValue><OffValue>7</OffValue></Boolean>");

  ASSERT_TRUE(camera.Boolean("X").SetValue(true).IsOK());
  EXPECT_EQ(camera.Peek(0, 1)[0], 0x55);
  ASSERT_TRUE(camera.Boolean("X").SetValue(false).IsOK());
  EXPECT_EQ(camera.Peek(0, 1)[0], 7);
}

TEST(BooleanNode, ValueOfTheTarget_IsTrueUnlessItIsTheOffValue) {
  struct Row {
    std::uint8_t raw;
    bool value;
  };
  constexpr Row kRows[] = {{7, false}, {0x55, true}, {0, true}, {1, true}};
  for (const Row& row : kRows) {
    DescribedCamera camera(
        MakeRegister("Raw", 0) +
        "<Boolean Name=\"X\"><pValue>Raw</pValue><OnValue>0x55</OnValue><OffValue>7</OffValue></Boolean>");
    camera.Poke(0, {row.raw});

    EXPECT_EQ(Read(camera.Boolean("X"), &KrGenBoolean::GetValue), row.value) << int{row.raw};
  }
}

TEST(BooleanNode, TargetThatCannotTakeTheOnValue_IsLeftAlone) {
  DescribedCamera camera("<Integer Name=\"Raw\"><Value>0</Value><Max>10</Max></Integer>"
                         "<Boolean Name=\"X\"><pValue>Raw</pValue><OnValue>11</OnValue></Boolean>");

  EXPECT_EQ(camera.Boolean("X").SetValue(true), KrResult::Code::OutOfRange);
  EXPECT_FALSE(Read(camera.Boolean("X"), &KrGenBoolean::GetValue));
}

TEST(BooleanNode, AsNumberOfAnotherNode_IsOneOrZero) {
  DescribedCamera camera("<Boolean Name=\"X\"><Value>true</Value><OnValue>40</OnValue></Boolean>"
                         "<Integer Name=\"Number\"><pValue>X</pValue></Integer>");

  EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetValue), 1);
  EXPECT_EQ(camera.Integer("Number").SetValue(2), KrResult::Code::OutOfRange);
  ASSERT_TRUE(camera.Integer("Number").SetValue(0).IsOK());
  EXPECT_FALSE(Read(camera.Boolean("X"), &KrGenBoolean::GetValue));
}
