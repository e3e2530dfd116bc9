// Devices that answer badly, too much or in each other's name: honest ones beside them are found all the same.

#include "await.h"
#include "networkfixture.h"

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

namespace {

using testing::IsSupersetOf;
using Bytes = TestDevice::Bytes;

constexpr std::size_t kMacOffset = 8 + 0x0A;

/// What a device sends in place of a correct discovery acknowledge.
struct BadAnswerCase {
  const char* name;
  TestDevice::ChangeAcknowledge change;
};

std::vector<Bytes> Resize(Bytes aBytes, std::size_t aSize) {
  aBytes.resize(aSize);
  return {aBytes};
}

std::vector<Bytes> PutByte(Bytes aBytes, std::size_t aOffset, std::uint8_t aValue) {
  aBytes[aOffset] = aValue;
  return {aBytes};
}

const BadAnswerCase kBadAnswerCases[] = {
    {"Nothing", [](const Bytes&) { return std::vector<Bytes>{}; }},
    {"Empty", [](const Bytes& aGood) { return Resize(aGood, 0); }},
    {"HeaderAlone", [](const Bytes& aGood) { return Resize(aGood, 8); }},
    {"OneByteShort", [](const Bytes& aGood) { return Resize(aGood, aGood.size() - 1); }},
    {"OneByteLong", [](const Bytes& aGood) { return Resize(aGood, aGood.size() + 1); }},
    {"AsLongAsAFrameCanBe", [](const Bytes& aGood) { return Resize(aGood, 1400); }},
    {"FalseLength", [](const Bytes& aGood) { return PutByte(aGood, 5, 0xF0); }},
    {"AnotherRequest", [](const Bytes& aGood) { return PutByte(aGood, 7, aGood[7] ^ 1); }},
    {"AnotherMessage", [](const Bytes& aGood) { return PutByte(aGood, 3, 0x81); }},
    {"Refusal", [](const Bytes& aGood) { return PutByte(aGood, 0, 0x80); }},
    {"ACommand",
     [](const Bytes& aGood) {
       return std::vector<Bytes>{{0x42, 0x11, 0, 2, 0, 0, aGood[6], aGood[7]}};
     }},
    {"OnesThroughout", [](const Bytes& aGood) { return std::vector<Bytes>{Bytes(aGood.size(), 0xFF)}; }},
};

class OnANetworkBadAnswers : public OnANetwork, public testing::WithParamInterface<BadAnswerCase> {};

TEST_P(OnANetworkBadAnswers, Find_BadDeviceBesideAnHonestOne_FindsTheHonestOneAlone) {
  TestDevice bad(mHost, "port0", {.mac = "02:00:00:00:00:01", .address = "192.168.1.20", .serialNumber = "bad"});
  bad.ChangeDiscoveryAcknowledges(GetParam().change);
  const TestDevice honest(mHost, "port0",
                          {.mac = "02:00:00:00:00:02", .address = "192.168.1.21", .serialNumber = "honest"});
  KrSystem system;

  FindThese(system, {"honest"});

  EXPECT_GE(bad.GetHeard(0x0002), 1u);
}

INSTANTIATE_TEST_SUITE_P(Answers, OnANetworkBadAnswers, testing::ValuesIn(kBadAnswerCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

/// A device's name as it sends it, and as it is told.
struct TextCase {
  const char* name;
  std::string sent;
  std::string told;
};

const TextCase kTextCases[] = {
    {"ControlCharacters", "a\nb\tc\x1b[1m\x7f", "a\uFFFDb\uFFFDc\uFFFD[1m\uFFFD"},
    {"Directions", "a\u202Egnp.\u2069", "a\uFFFDgnp.\uFFFD"},
    {"LinesAndNoWidth", "a\u2028b\u200Bc", "a\uFFFDb\uFFFDc"},
    {"Markup", "<b>&amp;</b>", "<b>&amp;</b>"},
    {"FourByteCharacters", "\U0001F4F7 \U0001F600", "\U0001F4F7 \U0001F600"},
    {"WithoutTerminator", "0123456789abcdef", "0123456789abcdef"},
    {"CharacterCutByTheField", "0123456789abcd\xE2\x82\xAC", "0123456789abcd\uFFFD\uFFFD"},
    {"NoUtf8", "\xFF\xFE\xC0\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
};

class OnANetworkTexts : public OnANetwork, public testing::WithParamInterface<TextCase> {};

TEST_P(OnANetworkTexts, Find_NameOfADevice_IsPlainText) {
  const TestDevice device(mHost, "port0", {.serialNumber = "named", .userDefinedName = GetParam().sent});
  KrSystem system;

  ASSERT_NO_FATAL_FAILURE(FindThese(system, {"named"}));

  EXPECT_EQ(GetBySerialNumber(system, "named")->GetUserDefinedName().ToUtf8(), GetParam().told);
}

INSTANTIATE_TEST_SUITE_P(Names, OnANetworkTexts, testing::ValuesIn(kTextCases),
                         [](const auto& aInfo) { return aInfo.param.name; });

/// A device that sends 10,000 answers a second, another on the same cable and a third on one of its own.
class OnANetworkFlood : public OnANetwork {
protected:
  static constexpr std::uint32_t kAnswersPerSecond = 10000;

  OnANetworkFlood() {
    mLab.Connect("eth1", mHost, "port1");
    mLab.SetAddress("eth1", "10.0.0.10/8");
    mLab.SetReversePathFilter("eth1", 0);
    mFar = std::make_unique<TestDevice>(
        mHost, "port1",
        TestDeviceIdentity{
            .mac = "02:00:00:00:00:03", .address = "10.0.0.20", .mask = "255.0.0.0", .serialNumber = "far"});
    mFlooding.Flood(kAnswersPerSecond);
  }

  void AwaitFlood() const {
    EXPECT_TRUE(krtest::Await([this] { return mFlooding.GetSent() >= 1000; }));
  }
  /// A round that begins the flood; those after it are in its midst.
  void FindTheFlood(KrSystem& aSystem) {
    Find(aSystem);
    AwaitFlood();
  }

  TestDevice mFlooding{mHost, "port0", {.mac = "02:00:00:00:00:01", .serialNumber = "flood"}};
  const TestDevice mNeighbour{
      mHost, "port0", {.mac = "02:00:00:00:00:02", .address = "192.168.1.21", .serialNumber = "neighbour"}};
  std::unique_ptr<TestDevice> mFar;
};

TEST_F(OnANetworkFlood, Find_TenThousandAnswersASecond_FindsEverybodyOnceAndEnds) {
  KrSystem system;

  FindTheFlood(system);

  FindThese(system, {"far", "flood", "neighbour"});
}

TEST_F(OnANetworkFlood, Find_TenThousandDevicesASecond_StillFindsTheOthers) {
  // Asked until the device ends, which is after this test.
  mFlooding.ChangeDiscoveryAcknowledges([count = std::uint32_t{0}](const Bytes& aGood) mutable {
    Bytes other = aGood;
    ++count;
    for (std::size_t i = 0; i < 4; ++i)
      other[kMacOffset + 2 + i] = static_cast<std::uint8_t>(count >> (24 - 8 * i));
    return std::vector<Bytes>{other};
  });
  KrSystem system;

  FindTheFlood(system);

  FindUntil(
      system,
      [&] {
        const auto found = GetSerialNumbers(system);
        EXPECT_LE(found.size(), 1025u);
        return found.size() > 100 && testing::Value(found, IsSupersetOf({"neighbour", "far"}));
      },
      "the others, and many of the flood");
}

TEST_F(OnANetworkFlood, Find_FloodOfNonsense_FindsTheOthers) {
  mFlooding.ChangeDiscoveryAcknowledges(
      [](const Bytes& aGood) { return std::vector<Bytes>{Bytes(aGood.size(), 0xFF)}; });
  KrSystem system;

  FindTheFlood(system);

  FindThese(system, {"far", "neighbour"});
}

TEST_F(OnANetworkFlood, Cancel_InTheMiddleOfAFlood_EndsTheRound) {
  KrSystem system;
  system.SetDetectionTimeout(3600000);
  system.SetSubnetBroadcastEnabled(false);
  KrResult result;
  std::jthread finder([&] { result = system.Find(); });
  AwaitFlood();

  system.Cancel();
  finder.join();

  EXPECT_EQ(result, KrResult::Code::Aborted);
}

// They cannot be told apart for long; the diagnosis says that they are two.
TEST_F(OnANetwork, Find_TwoDevicesWithOneMac_ListsOneOfThemAndTheOthers) {
  const TestDevice first(mHost, "port0",
                         {.mac = "02:00:00:00:00:07", .address = "192.168.1.20", .serialNumber = "twin"});
  const TestDevice second(mHost, "port0",
                          {.mac = "02:00:00:00:00:07", .address = "192.168.1.21", .serialNumber = "twin"});
  const TestDevice third(mHost, "port0",
                         {.mac = "02:00:00:00:00:08", .address = "192.168.1.22", .serialNumber = "other"});
  KrSystem system;

  FindThese(system, {"other", "twin"});
}

TEST_F(OnANetwork, Cancel_ManyTimesAtManyMoments_EndsEveryRoundAndTheNextOneFinds) {
  const TestDevice device(mHost, "port0", {.serialNumber = "found"});
  KrSystem system;
  system.SetDetectionTimeout(3600000);
  system.SetSubnetBroadcastEnabled(false);
  std::vector<KrResult> results(50);
  for (KrResult& result : results) {
    std::atomic<bool> isOver = false;
    std::jthread finder([&] {
      result = system.Find();
      isOver = true;
    });
    // A cancellation that comes before the round begins is none.
    while (!isOver) {
      system.Cancel();
      std::this_thread::yield();
    }
  }

  EXPECT_THAT(results, testing::Each(testing::Eq(KrResult::Code::Aborted)));
  FindThese(system, {"found"});
}

} // namespace
