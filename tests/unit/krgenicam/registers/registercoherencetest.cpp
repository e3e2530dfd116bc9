#include "describedcamera.h"
#include "registernodes.h"

#include <gmock/gmock.h>

#include <random>
#include <vector>

namespace {

constexpr int kNumbersCount = 60;
constexpr int kTablesCount = 6;

// Registers that overlap in all ways, and nodes that stand on them. All bytes of the memory belong to the camera, so
// that what a node says can be computed from them.
class OverlappingRegisters {
public:
  explicit OverlappingRegisters(unsigned aSeed) : mRandom(aSeed), mCamera(MakeNodes()) {}

  void Step() {
    const std::size_t number = Pick(kNumbersCount);
    switch (Pick(12)) {
    case 0:
    case 1:
    case 2:
      Set(number);
      break;
    case 3:
      SetTable(Pick(kTablesCount));
      break;
    case 4:
      SetWithFailure(number);
      break;
    case 5:
      ASSERT_TRUE(mCamera.Integer("Index").SetValue(static_cast<std::int64_t>(Pick(32))).IsOK());
      break;
    case 6:
      ASSERT_TRUE(mCamera.array->Invalidate(("N" + std::to_string(number)).c_str()).IsOK());
      break;
    default:
      ExpectNumber(number);
      ExpectDifference(number);
      ExpectTable(Pick(kTablesCount));
      ExpectIndexed();
    }
  }

private:
  struct Range {
    std::uint64_t address;
    std::size_t length;
  };

  std::string MakeNodes() {
    constexpr const char* kCachings[] = {"WriteThrough", "WriteThrough", "WriteAround", "NoCache"};
    std::string nodes = "<Integer Name=\"Index\"><Value>0</Value></Integer>" +
                        MakeNode("IntReg", "Indexed", Address("3") + "<pIndex>Index</pIndex>" + Length("4"));
    for (int i = 0; i < kNumbersCount; ++i) {
      const Range range{Pick(200), 1 + Pick(7)};
      mNumbers.push_back(range);
      mPartners.push_back(Pick(mNumbers.size()));
      const std::string name = std::to_string(i);
      nodes +=
          MakeNode("IntReg", "N" + name, Address(std::to_string(range.address)) + Length(std::to_string(range.length)),
                   AccessMode("RW") + "<Cachable>" + kCachings[Pick(4)] + "</Cachable>");
      nodes += "<IntSwissKnife Name=\"Difference" + name + "\"><pVariable Name=\"A\">N" + name +
               "</pVariable><pVariable Name=\"B\">N" + std::to_string(mPartners.back()) +
               "</pVariable><Formula>A - B</Formula></IntSwissKnife>";
    }
    for (int i = 0; i < kTablesCount; ++i) {
      const Range range{Pick(20), 9 + Pick(1000)};
      mTables.push_back(range);
      nodes += MakeNode("Register", "T" + std::to_string(i),
                        Address(std::to_string(range.address)) + Length(std::to_string(range.length)));
    }
    return nodes;
  }

  std::size_t Pick(std::size_t aCount) { return mRandom() % aCount; }

  std::int64_t Load(const Range& aRange) {
    const std::vector<std::uint8_t> bytes = mCamera.Peek(aRange.address, aRange.length);
    std::int64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
      value = value * 256 + bytes[i];
    return value;
  }
  std::int64_t PickValue(const Range& aRange) {
    return static_cast<std::int64_t>(mRandom() & ((std::uint64_t{1} << aRange.length * 8) - 1));
  }
  KrGenInteger& GetNumber(std::size_t aIndex) { return mCamera.Integer(("N" + std::to_string(aIndex)).c_str()); }
  KrGenRegister& GetTable(std::size_t aIndex) { return mCamera.Register(("T" + std::to_string(aIndex)).c_str()); }

  void Set(std::size_t aIndex) {
    const std::int64_t value = PickValue(mNumbers[aIndex]);
    ASSERT_TRUE(GetNumber(aIndex).SetValue(value).IsOK());
    ASSERT_EQ(Load(mNumbers[aIndex]), value);
  }
  void SetTable(std::size_t aIndex) {
    std::vector<std::uint8_t> bytes(mTables[aIndex].length);
    for (std::uint8_t& byte : bytes)
      byte = static_cast<std::uint8_t>(mRandom());
    ASSERT_TRUE(GetTable(aIndex).SetValue(bytes).IsOK());
  }
  // The device may have taken the value before it failed to answer.
  void SetWithFailure(std::size_t aIndex) {
    const bool isTaken = Pick(2) == 0;
    mCamera.port.SetFault([this, isTaken](const RegisterAccessRecord& aAccess) {
      if (isTaken)
        mCamera.Poke(aAccess.address, {static_cast<std::uint8_t>(mRandom())});
      return KrResult(KrResult::Code::TimeLimitExceeded);
    });
    ASSERT_EQ(GetNumber(aIndex).SetValue(0), KrResult::Code::TimeLimitExceeded);
    mCamera.port.SetFault({});
  }

  void ExpectNumber(std::size_t aIndex) {
    ASSERT_EQ(Read(GetNumber(aIndex), &KrGenInteger::GetValue), Load(mNumbers[aIndex])) << "N" << aIndex;
  }
  void ExpectDifference(std::size_t aIndex) {
    const std::string name = "Difference" + std::to_string(aIndex);
    ASSERT_EQ(Read(mCamera.Integer(name.c_str()), &KrGenInteger::GetValue),
              Load(mNumbers[aIndex]) - Load(mNumbers[mPartners[aIndex]]))
        << name;
  }
  void ExpectTable(std::size_t aIndex) {
    ASSERT_EQ(Read(GetTable(aIndex), &KrGenRegister::GetValue),
              mCamera.Peek(mTables[aIndex].address, mTables[aIndex].length))
        << "T" << aIndex;
  }
  void ExpectIndexed() {
    const auto index = static_cast<std::uint64_t>(Read(mCamera.Integer("Index"), &KrGenInteger::GetValue));
    ASSERT_EQ(Read(mCamera.Integer("Indexed"), &KrGenInteger::GetValue), Load({3 + index * 4, 4}));
  }

  std::mt19937_64 mRandom;
  std::vector<Range> mNumbers;
  std::vector<std::size_t> mPartners;
  std::vector<Range> mTables;
  DescribedCamera mCamera;
};

} // namespace

TEST(RegisterCoherence, NodesOverTheSameBytes_AlwaysSayWhatTheDeviceHas) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    OverlappingRegisters registers(seed);

    for (int step = 0; step < 500 && !testing::Test::HasFailure(); ++step)
      registers.Step();

    ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed;
  }
}
