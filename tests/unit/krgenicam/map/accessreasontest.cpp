// Why a parameter is not to be had, as people are told, and what is not known because the device did not answer.

#include "changingcamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string kNodes =
    R"(
<Integer Name="No"><Value>0</Value></Integer>
<Integer Name="TLParamsLocked"><Value>1</Value></Integer>
<Enumeration Name="Mode"><EnumEntry Name="Off"><Value>0</Value></EnumEntry><EnumEntry Name="On"><Value>1</Value>
  </EnumEntry><Value>0</Value></Enumeration>
<Integer Name="Free"><pIsLocked>No</pIsLocked><Value>1</Value></Integer>
<Integer Name="Locked"><pIsLocked>TLParamsLocked</pIsLocked><Value>1</Value></Integer>
<Integer Name="LockedBehind"><pValue>Locked</pValue></Integer>
<Integer Name="Unavailable"><pIsAvailable>No</pIsAvailable><Value>1</Value></Integer>
<Integer Name="UnavailableByEntry"><pIsAvailable>Mode</pIsAvailable><Value>1</Value></Integer>
<Integer Name="UnavailableBehind"><pValue>Unavailable</pValue></Integer>
<Integer Name="Unimplemented"><pIsImplemented>No</pIsImplemented><Value>1</Value></Integer>
<Integer Name="UnimplementedBehind"><pValue>Unimplemented</pValue></Integer>
<Integer Name="LockedWriteOnly"><ImposedAccessMode>WO</ImposedAccessMode><pIsLocked>TLParamsLocked</pIsLocked>
  <Value>1</Value></Integer>
<Integer Name="CopiesToUnavailable"><pValue>Free</pValue><pValueCopy>Unavailable</pValueCopy></Integer>
<Integer Name="ImposedReadOnly"><ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value></Integer>
<Integer Name="ImposedWriteOnly"><ImposedAccessMode>WO</ImposedAccessMode><Value>1</Value></Integer>
<IntReg Name="ReadOnlyReg"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
  <Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="ReadOnlyBehind"><pValue>ReadOnlyReg</pValue></Integer>
<IntSwissKnife Name="Computed"><Formula>1 + 1</Formula></IntSwissKnife>
<Enumeration Name="Empty"><EnumEntry Name="A"><pIsImplemented>No</pIsImplemented><Value>1</Value></EnumEntry>
  <Value>1</Value></Enumeration>
<Enumeration Name="NothingToChoose"><EnumEntry Name="A"><pIsAvailable>No</pIsAvailable><Value>1</Value></EnumEntry>
  <Value>1</Value></Enumeration>
<Integer Name="Astray"><pIsAvailable>Nowhere</pIsAvailable><Value>1</Value></Integer>
<Integer Name="Circle"><pIsAvailable>Circle</pIsAvailable><Value>1</Value></Integer>
)" + MakeRegister("Gate", 0x100) +
    MakeRegister("GateReg", 0x200, "<pIsAvailable>Gate</pIsAvailable>") + MakeRegister("Plain", 0x300) +
    MakeRegister("ByPlace", 0x400, "<pIsLocked>Gate</pIsLocked>") +
    "<Integer Name=\"Gated\"><pIsAvailable>Gate</pIsAvailable><Value>1</Value></Integer>"
    "<Integer Name=\"Implemented\"><pIsImplemented>Gate</pIsImplemented><Value>1</Value></Integer>"
    "<Integer Name=\"GatedBehind\"><pValue>Gated</pValue></Integer>"
    "<Integer Name=\"ImplementedBehind\"><pValue>Implemented</pValue></Integer>"
    "<Integer Name=\"ByPlaceWriteOnly\"><ImposedAccessMode>WO</ImposedAccessMode>"
    "<pValue>ByPlace</pValue></Integer>"
    "<Enumeration Name=\"Either\"><EnumEntry Name=\"A\"><pIsImplemented>Gate</pIsImplemented>"
    "<Value>1</Value></EnumEntry><EnumEntry Name=\"B\"><Value>2</Value></EnumEntry>"
    "<Value>2</Value></Enumeration>"
    "<Enumeration Name=\"Neither\"><EnumEntry Name=\"A\"><pIsImplemented>Gate</pIsImplemented>"
    "<Value>1</Value></EnumEntry><EnumEntry Name=\"B\"><pIsImplemented>No</pIsImplemented>"
    "<Value>2</Value></EnumEntry><Value>2</Value></Enumeration>"
    "<Integer Name=\"Picked\"><pIndex>Gate</pIndex><ValueIndexed Index=\"1\">5</ValueIndexed>"
    "<ValueDefault>6</ValueDefault></Integer>"
    "<Integer Name=\"Imposed\"><ImposedAccessMode>RO</ImposedAccessMode>"
    "<pIsAvailable>Gate</pIsAvailable><Value>1</Value></Integer>";

std::string GetReason(DescribedCamera& aCamera, const char* aName) {
  KrString reason = "untouched";
  const KrResult result = aCamera.array->Get(aName)->GetAccessReason(reason);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return reason.ToUtf8();
}

void LetAccessesTimeOut(DescribedCamera& aCamera) {
  aCamera.port.SetFault(
      [](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded, "The device is silent."); });
}

} // namespace

TEST(AccessReason, OfWhatIsLimited_NamesTheNodeThatSaysSoAndItsValue) {
  struct {
    const char* name;
    const char* reason;
  } constexpr kRows[] = {
      {"Locked", "Locked by TLParamsLocked (1)."},
      {"LockedBehind", "Locked by TLParamsLocked (1), as Locked is."},
      {"LockedWriteOnly", "Locked by TLParamsLocked (1)."},
      {"Unavailable", "Not available: No is 0."},
      {"UnavailableByEntry", "Not available: Mode is Off."},
      {"UnavailableBehind", "Not available, as Unavailable is not: No is 0."},
      {"Unimplemented", "Not implemented: No is 0."},
      {"UnimplementedBehind", "Not implemented, as Unimplemented is not: No is 0."},
      {"CopiesToUnavailable", "Not writable, as Unavailable is not available: No is 0."},
      {"Empty", "Not implemented: this camera does not have it."},
      {"NothingToChoose", "Not writable: none of its entries can be chosen at the moment."},
      {"GateReg", "Not available: Gate is 0."},
  };
  DescribedCamera camera(kNodes);

  for (const auto& row : kRows)
    EXPECT_EQ(GetReason(camera, row.name), row.reason) << row.name;
}

TEST(AccessReason, OfWhatNothingLimitsOrIsSoForGood_IsEmpty) {
  DescribedCamera camera(kNodes);

  for (const char* const name : {"Free", "Mode", "Plain", "ByPlace", "ImposedReadOnly", "ImposedWriteOnly",
                                 "ReadOnlyReg", "ReadOnlyBehind", "Computed"})
    EXPECT_EQ(GetReason(camera, name), "") << name;
}

TEST(AccessReason, OfAFaultInTheDescription_IsTheFault) {
  DescribedCamera camera(kNodes);

  EXPECT_THAT(GetReason(camera, "Astray"), AllOf(StartsWith("Not available"), HasSubstr("no usable node \"Nowhere\"")));
  EXPECT_THAT(GetReason(camera, "Circle"), AllOf(StartsWith("Not available"), HasSubstr("stands on itself")));
}

TEST(AccessReason, OfAnArrayForReadingOnly_SaysSo) {
  DescribedCamera camera(kNodes, {.isReadOnly = true});

  EXPECT_EQ(GetReason(camera, "Free"), "Not writable: the device is open for reading only.");
}

TEST(AccessReason, WhereTheDeviceIsSilent_SaysWhatItWasAskedFor) {
  DescribedCamera camera(kNodes);
  LetAccessesTimeOut(camera);

  EXPECT_THAT(GetReason(camera, "Gated"),
              AllOf(StartsWith("Not available: \"Gate\""), HasSubstr("The device is silent.")));
}

TEST(AccessReason, OfAClosedArray_FailsAndLeavesTheText) {
  DescribedCamera camera(kNodes);
  camera.array->Close();
  KrString reason = "untouched";

  EXPECT_TRUE(camera.Integer("Locked").GetAccessReason(reason) == KrResult::Code::ConnectionLost);
  EXPECT_EQ(reason, "untouched");
}

TEST(AccessAnswers, WhereTheDeviceIsSilent_FailUnlessTheyAreKnownAllTheSame) {
  enum class Answer { No, Yes, Unknown };
  constexpr Answer kNo = Answer::No;
  constexpr Answer kYes = Answer::Yes;
  constexpr Answer kUnknown = Answer::Unknown;
  struct {
    const char* what;
    const char* name;
    Answer implemented;
    Answer available;
    Answer readable;
    Answer writable;
  } constexpr kRows[] = {
      {"whether it is available cannot be read", "Gated", kYes, kUnknown, kUnknown, kUnknown},
      {"whether it is implemented cannot be read", "Implemented", kUnknown, kUnknown, kUnknown, kUnknown},
      {"what asks the device for nothing", "Locked", kYes, kYes, kYes, kNo},
      {"a lock that cannot be read", "ByPlace", kYes, kYes, kYes, kUnknown},
      {"the lock of what can only be written cannot be read", "ByPlaceWriteOnly", kYes, kYes, kNo, kUnknown},
      {"what stands on an available one cannot be read", "GatedBehind", kYes, kUnknown, kUnknown, kUnknown},
      {"what stands on an implemented one cannot be read", "ImplementedBehind", kUnknown, kUnknown, kUnknown, kUnknown},
      {"an entry that is implemented beside one that is unknown", "Either", kYes, kYes, kYes, kYes},
      {"an entry that is unknown beside one that is not implemented", "Neither", kUnknown, kUnknown, kUnknown,
       kUnknown},
      {"one of two values is picked by what cannot be read", "Picked", kYes, kUnknown, kUnknown, kUnknown},
      {"not implemented without the device", "Unimplemented", kNo, kNo, kNo, kNo},
      {"not available without the device", "Unavailable", kYes, kNo, kNo, kNo},
  };
  DescribedCamera camera(kNodes);
  LetAccessesTimeOut(camera);
  const auto ask = [](KrGenParameter& aParameter, KrResult (KrGenParameter::*aQuestion)(bool&)) {
    bool answer = false;
    const KrResult result = (aParameter.*aQuestion)(answer);
    EXPECT_TRUE(result.IsOK() || (result == KrResult::Code::TimeLimitExceeded && !answer));
    return !result.IsOK() ? Answer::Unknown : (answer ? Answer::Yes : Answer::No);
  };

  for (const auto& row : kRows) {
    KrGenParameter& parameter = *camera.array->Get(row.name);
    EXPECT_EQ(ask(parameter, &KrGenParameter::IsImplemented), row.implemented) << row.what;
    EXPECT_EQ(ask(parameter, &KrGenParameter::IsAvailable), row.available) << row.what;
    EXPECT_EQ(ask(parameter, &KrGenParameter::IsReadable), row.readable) << row.what;
    EXPECT_EQ(ask(parameter, &KrGenParameter::IsWritable), row.writable) << row.what;
  }
  EXPECT_TRUE(camera.Integer("Gated").IsImplemented());
  EXPECT_FALSE(camera.Integer("Implemented").IsImplemented());
  EXPECT_FALSE(camera.Integer("Gated").IsAvailable());
  EXPECT_FALSE(camera.Integer("Gated").IsReadable());
  EXPECT_TRUE(camera.Integer("ByPlace").IsWritable());
}

TEST(AccessAnswers, WhetherItIsImplementedOrReadable_AskTheDeviceForNoMoreThanThat) {
  DescribedCamera camera(kNodes);
  bool answer = false;

  EXPECT_TRUE(camera.Integer("Gated").IsImplemented(answer).IsOK());
  EXPECT_TRUE(camera.Integer("ByPlace").IsReadable(answer).IsOK());
  EXPECT_TRUE(camera.Integer("ByPlace").IsAvailable(answer).IsOK());

  EXPECT_EQ(camera.port.CountReads(), 0u);
}

TEST(AccessAnswers, WherePortThrows_FailWithItsWords) {
  DescribedCamera camera(kNodes);
  struct {
    const char* what;
    std::function<KrResult(const RegisterAccessRecord&)> raise;
    const char* words;
  } const kRows[] = {
      {"with words", [](const RegisterAccessRecord&) -> KrResult { throw std::runtime_error("The cable burns."); },
       "The cable burns."},
      {"without words", [](const RegisterAccessRecord&) -> KrResult { throw 5; }, "an exception that does not say why"},
  };

  for (const auto& row : kRows) {
    camera.port.SetFault(row.raise);
    std::int64_t value = 0;

    const KrResult read = camera.Integer("Plain").GetValue(value);
    const KrResult written = camera.Integer("Plain").SetValue(1);

    EXPECT_TRUE(read == KrResult::Code::SystemError) << row.what;
    EXPECT_TRUE(written == KrResult::Code::SystemError) << row.what;
    EXPECT_THAT(read.GetDescription().ToUtf8(), HasSubstr(row.words));
    EXPECT_THAT(written.GetDescription().ToUtf8(), HasSubstr(row.words));
  }
  camera.port.SetFault({});
  EXPECT_EQ(Read(camera.Integer("Plain"), &KrGenInteger::GetValue), 0) << "the array goes on";
}
