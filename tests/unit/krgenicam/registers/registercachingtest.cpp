#include "describedcamera.h"
#include "registernodes.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

std::string MakeInteger(const std::string& aName, const std::string& aAddress, const std::string& aLength,
                        const std::string& aCachable = "WriteThrough", const std::string& aMode = "RW") {
  return MakeNode("IntReg", aName, Address(aAddress) + Length(aLength),
                  AccessMode(aMode) + "<Cachable>" + aCachable + "</Cachable>");
}

std::int64_t GetValue(DescribedCamera& aCamera, const char* aName) {
  return Read(aCamera.Integer(aName), &KrGenInteger::GetValue);
}

} // namespace

TEST(RegisterCaching, Value_IsReadFromTheDeviceOnce) {
  DescribedCamera camera(MakeInteger("A", "0x100", "4"));
  camera.Poke(0x100, {5});

  for (int i = 0; i < 10; ++i)
    EXPECT_EQ(GetValue(camera, "A"), 5);

  EXPECT_THAT(camera.port.TakeRecords(), ElementsAre(RegisterAccessRecord{false, 0x100, 4}));
}

TEST(RegisterCaching, WriteThrough_KnowsWhatWasWrittenWithoutReading) {
  DescribedCamera camera(MakeInteger("A", "0x100", "4"));

  ASSERT_TRUE(camera.Integer("A").SetValue(77).IsOK());

  EXPECT_EQ(GetValue(camera, "A"), 77);
  EXPECT_THAT(camera.port.TakeRecords(), ElementsAre(RegisterAccessRecord{true, 0x100, 4}));
}

TEST(RegisterCaching, WriteAround_ReadsWhatTheDeviceMadeOfTheValue) {
  DescribedCamera camera(MakeInteger("A", "0x100", "4", "WriteAround"));
  ASSERT_TRUE(camera.Integer("A").SetValue(77).IsOK());
  camera.Poke(0x100, {76});

  EXPECT_EQ(GetValue(camera, "A"), 76);
  EXPECT_EQ(GetValue(camera, "A"), 76);

  EXPECT_EQ(camera.port.CountReads(), 1U);
}

TEST(RegisterCaching, NoCache_ReadsEachTime) {
  DescribedCamera camera(MakeInteger("A", "0x100", "4", "NoCache"));

  for (std::uint8_t i = 0; i < 3; ++i) {
    camera.Poke(0x100, {i});
    EXPECT_EQ(GetValue(camera, "A"), i);
  }

  EXPECT_EQ(camera.port.CountReads(), 3U);
}

TEST(RegisterCaching, Invalidation_OfTheCacheANodeOrThePort_ReadsAgain) {
  DescribedCamera camera(MakeInteger("A", "0x100", "4"));
  const auto expectAnew = [&camera](std::uint8_t aByte) {
    camera.Poke(0x100, {aByte});
    EXPECT_EQ(GetValue(camera, "A"), aByte);
  };
  GetValue(camera, "A");

  camera.array->InvalidateCache();
  expectAnew(1);
  ASSERT_TRUE(camera.array->Invalidate("A").IsOK());
  expectAnew(2);
  ASSERT_TRUE(camera.array->Invalidate("Device").IsOK());
  expectAnew(3);
}

TEST(RegisterCaching, Write_ToBytesOfOtherRegisters_MakesThemReadAgain) {
  struct Row {
    const char* name;
    std::string other;
    bool isTouched;
  };
  const Row rows[] = {
      {"same bytes", MakeInteger("B", "0x100", "4"), true},
      {"its first byte", MakeInteger("B", "0x100", "1"), true},
      {"its last byte and more", MakeInteger("B", "0x103", "8"), true},
      {"all around it", MakeInteger("B", "0xFE", "8"), true},
      {"just before", MakeInteger("B", "0xFC", "4"), false},
      {"just behind", MakeInteger("B", "0x104", "4"), false},
  };
  for (const Row& row : rows) {
    DescribedCamera camera(MakeInteger("A", "0x100", "4") + row.other);
    GetValue(camera, "B");
    ASSERT_TRUE(camera.Integer("A").SetValue(0x04030201).IsOK());
    camera.port.TakeRecords();

    const std::int64_t value = GetValue(camera, "B");

    EXPECT_EQ(value != 0, row.isTouched) << row.name;
  }
}

TEST(RegisterCaching, Write_OfALongRegister_ReachesShortOnesInItsMiddle) {
  DescribedCamera camera(MakeNode("Register", "Table", Address("0x1000") + Length("100000")) +
                         MakeInteger("Middle", "0x2345", "2"));
  EXPECT_EQ(GetValue(camera, "Middle"), 0);

  ASSERT_TRUE(camera.Register("Table").SetValue(std::vector<std::uint8_t>(100000, 0x11)).IsOK());

  EXPECT_EQ(GetValue(camera, "Middle"), 0x1111);
}

TEST(RegisterCaching, Write_OfAShortRegister_ReachesALongOneAroundIt) {
  DescribedCamera camera(MakeNode("Register", "Table", Address("0x1000") + Length("100000")) +
                         MakeInteger("Middle", "0x1002", "1"));
  Read(camera.Register("Table"), &KrGenRegister::GetValue);

  ASSERT_TRUE(camera.Integer("Middle").SetValue(9).IsOK());

  EXPECT_EQ(Read(camera.Register("Table"), &KrGenRegister::GetValue)[2], 9);
}

TEST(RegisterCaching, Failure_IsNotRemembered) {
  DescribedCamera camera(MakeInteger("A", "0x100", "4"));
  std::int64_t value = 0;
  camera.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::ProtocolError); });
  EXPECT_EQ(camera.Integer("A").GetValue(value), KrResult::Code::ProtocolError);

  camera.port.SetFault({});

  EXPECT_EQ(GetValue(camera, "A"), 0);
}

TEST(RegisterCaching, WriteThatFailed_MakesWhatItMayHaveTouchedBeReadAgain) {
  DescribedCamera camera(MakeInteger("A", "0x100", "4") + MakeInteger("B", "0x102", "1"));
  GetValue(camera, "A");
  GetValue(camera, "B");
  camera.port.SetFault([&camera](const RegisterAccessRecord& aAccess) {
    if (!aAccess.isWrite)
      return KrResult();
    camera.Poke(0x100, {1, 2, 3, 4});
    return KrResult(KrResult::Code::TimeLimitExceeded);
  });

  EXPECT_EQ(camera.Integer("A").SetValue(0x04030201), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(GetValue(camera, "A"), 0x04030201);
  EXPECT_EQ(GetValue(camera, "B"), 3);
}

TEST(RegisterCaching, RegisterUnderASelector_WithoutInvalidators_HasTheValueOfEachPosition) {
  DescribedCamera camera(
      "<Integer Name=\"Selector\"><Value>0</Value></Integer>" +
      MakeNode("IntReg", "Gain", Address("0x100") + "<pIndex Offset=\"0x10\">Selector</pIndex>" + Length("4")));
  camera.Poke(0x100, {10});
  camera.Poke(0x110, {11});
  camera.Poke(0x120, {12});

  for (int round = 0; round < 2; ++round) {
    for (std::int64_t position = 0; position < 3; ++position) {
      ASSERT_TRUE(camera.Integer("Selector").SetValue(position).IsOK());
      EXPECT_EQ(GetValue(camera, "Gain"), 10 + position);
    }
  }
  ASSERT_TRUE(camera.Integer("Gain").SetValue(99).IsOK());
  ASSERT_TRUE(camera.Integer("Selector").SetValue(0).IsOK());
  EXPECT_EQ(GetValue(camera, "Gain"), 10);
  EXPECT_THAT(camera.Peek(0x120, 1), ElementsAre(99));
}

TEST(RegisterCaching, RegisterUnderASelectorInTheDevice_FollowsIt) {
  DescribedCamera camera(MakeInteger("Selector", "0", "1") +
                         MakeNode("IntReg", "Gain", Address("0x100") + "<pIndex>Selector</pIndex>" + Length("4")));
  camera.Poke(0x100, {10, 0, 0, 0, 11});
  EXPECT_EQ(GetValue(camera, "Gain"), 10);

  ASSERT_TRUE(camera.Integer("Selector").SetValue(1).IsOK());

  EXPECT_EQ(GetValue(camera, "Gain"), 11);
}

TEST(RegisterCaching, RegisterWithAnAddressThatIsNotCached_FollowsIt) {
  DescribedCamera camera(MakeInteger("Where", "0", "1", "NoCache") +
                         MakeNode("IntReg", "There", "<pAddress>Where</pAddress>" + Length("1")));
  camera.Poke(0, {0x10});
  camera.Poke(0x10, {1});
  camera.Poke(0x20, {2});
  EXPECT_EQ(GetValue(camera, "There"), 1);

  camera.Poke(0, {0x20});

  EXPECT_EQ(GetValue(camera, "There"), 2);
}

TEST(RegisterCaching, TextAndBytes_AreCachedLikeNumbers) {
  DescribedCamera camera(MakeNode("StringReg", "Text", Address("0x100") + Length("16")) +
                         MakeNode("Register", "Bytes", Address("0x100") + Length("16")));
  for (int i = 0; i < 3; ++i) {
    Read(camera.String("Text"), &KrGenString::GetValue);
    Read(camera.Register("Bytes"), &KrGenRegister::GetValue);
  }
  EXPECT_EQ(camera.port.CountReads(), 1U);

  ASSERT_TRUE(camera.String("Text").SetValue("new").IsOK());

  EXPECT_EQ(Read(camera.Register("Bytes"), &KrGenRegister::GetValue)[0], 'n');
  EXPECT_EQ(camera.port.CountReads(), 1U);
}
