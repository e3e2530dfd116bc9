// Reading a feature whose array is closed, before or meanwhile.

#include "logic/browser/featurereading.h"

#include "nodebench.h"

#include <gmock/gmock.h>

#include <cstring>
#include <set>

using namespace krgui;

namespace {

const std::string kRegisters = MakeUncachedRegister("Raw", 0) + MakeUncachedRegister("Index", 8);

// Answers although the array is closed during one of the accesses.
class ClosingPort final : public IKrRegisterPort {
public:
  explicit ClosingPort(const std::unique_ptr<KrGenParameterArray>& aArray, int aLastRead = 1)
      : mArray(aArray), mReadsLeft(aLastRead) {}

  KrResult Read(std::uint64_t /*aAddress*/, void* aData, std::size_t aLength, std::uint32_t /*aTimeoutMs*/,
                const std::stop_token& /*aCancel*/) override {
    std::memset(aData, 0, aLength);
    if (--mReadsLeft == 0)
      mArray->Close();
    return {};
  }
  bool HasClosed() const { return mReadsLeft <= 0; }
  KrResult Write(std::uint64_t /*aAddress*/, const void* /*aData*/, std::size_t /*aLength*/,
                 std::uint32_t /*aTimeoutMs*/, const std::stop_token& /*aCancel*/) override {
    return {};
  }

private:
  const std::unique_ptr<KrGenParameterArray>& mArray;
  int mReadsLeft;
};

} // namespace

TEST(FeatureReadingAtTheEnd, ClosedArray_FailsTheFirstStep) {
  NodeBench camera(kRegisters + "<Integer Name=\"X\"><pValue>Raw</pValue></Integer>");
  camera.array->Close();

  const FeatureReading reading = ReadFeature(camera.Integer("X"), {});

  EXPECT_TRUE(reading.error.ToUtf8().starts_with("Error retrieving implemented attribute, ")) << reading.error.CStr();
  EXPECT_EQ(reading.access, AccessFlags());
}

TEST(FeatureReadingAtTheEnd, ArrayThatIsClosedBetweenTwoSteps_FailsTheSecond) {
  struct {
    const char* type;
    const char* context;
  } constexpr kRows[] = {{"Integer", "Error reading representation"}, {"Float", "Error reading unit"}};

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.type);
    const std::string feature = std::string("<") + row.type + " Name=\"X\"><pValue>Raw</pValue></" + row.type + ">";
    KrGenDescription description;
    std::unique_ptr<KrGenParameterArray> array;
    ClosingPort port(array);
    ASSERT_TRUE(KrGenDescription::ReadFromMemory(MakeDescription(kRegisters + feature), "test", description).IsOK());
    ASSERT_TRUE(KrGenParameterArray::Open(description, port, {}, array).IsOK());

    const FeatureReading reading = ReadFeature(*array->Get("X"), {});

    EXPECT_TRUE(reading.error.ToUtf8().starts_with(std::string(row.context) + ", ")) << reading.error.CStr();
    EXPECT_TRUE(reading.value.IsEmpty());
    EXPECT_EQ(reading.access, (AccessFlags{true, true, true, true}));
  }
}

TEST(FeatureReadingAtTheEnd, IntegerWhoseArrayIsClosedAtAnyOfItsReads_SaysWhichStepFailed) {
  // Its index is asked for in each step, as it says where representation and unit are.
  KrGenDescription description;
  ASSERT_TRUE(
      KrGenDescription::ReadFromMemory(MakeDescription(kRegisters + "<Integer Name=\"X\"><pIndex>Index</pIndex>"
                                                                    "<pValueIndexed Index=\"0\">Raw</pValueIndexed>"
                                                                    "<ValueDefault>0</ValueDefault></Integer>"),
                                       "test", description)
          .IsOK());
  std::set<std::string> steps;

  for (int lastRead = 1;; ++lastRead) {
    std::unique_ptr<KrGenParameterArray> array;
    ClosingPort port(array, lastRead);
    ASSERT_TRUE(KrGenParameterArray::Open(description, port, {}, array).IsOK());
    const std::string error = ReadFeature(*array->Get("X"), {}).error.ToUtf8();
    if (!port.HasClosed())
      break;
    steps.insert(error.substr(0, error.find(',')));
  }

  EXPECT_THAT(steps, testing::IsSupersetOf({"Error reading representation", "Error reading unit"}));
}
