#include "krbase/krresult.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct CodeRow {
  KrResult::Code code;
  std::uint32_t number;
  std::string name;
};

const std::vector<CodeRow> kRows = {
    {KrResult::Code::OK, 0, "OK"},
    {KrResult::Code::NotFound, 2, "NotFound"},
    {KrResult::Code::AccessDenied, 3, "AccessDenied"},
    {KrResult::Code::ConnectionLost, 4, "ConnectionLost"},
    {KrResult::Code::Aborted, 5, "Aborted"},
    {KrResult::Code::Busy, 6, "Busy"},
    {KrResult::Code::ProtocolError, 7, "ProtocolError"},
    {KrResult::Code::SystemError, 8, "SystemError"},
    {KrResult::Code::BadData, 9, "BadData"},
    {KrResult::Code::NotSupported, 26, "NotSupported"},
    {KrResult::Code::WrongState, 28, "WrongState"},
    {KrResult::Code::TimeLimitExceeded, 30, "TimeLimitExceeded"},
    {KrResult::Code::InvalidInput, 1281, "InvalidInput"},
    {KrResult::Code::NotOffered, 1540, "NotOffered"},
    {KrResult::Code::Failed, 16384, "Failed"},
    {KrResult::Code::OutOfRange, 16385, "OutOfRange"},
    {KrResult::Code::Cancelled, 16386, "Cancelled"},
};

class EveryCode : public testing::TestWithParam<CodeRow> {};

} // namespace

TEST_P(EveryCode, HasItsNumberAndName) {
  const KrResult result = GetParam().code;

  EXPECT_EQ(result.GetCodeNumber(), GetParam().number);
  EXPECT_EQ(result.GetCodeString().ToUtf8(), GetParam().name);
}

TEST_P(EveryCode, IsOKForSuccessAlone) {
  const KrResult result = GetParam().code;

  EXPECT_EQ(result.IsOK(), GetParam().number == 0);
}

INSTANTIATE_TEST_SUITE_P(KrResult, EveryCode, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<CodeRow>& aInfo) { return aInfo.param.name; });

TEST(KrResult, Default_IsSuccessWithoutDescription) {
  const KrResult result;

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(result.GetCode(), KrResult::Code::OK);
  EXPECT_TRUE(result.GetDescription().IsEmpty());
}

TEST(KrResult, CodeAlone_HasNoDescription) {
  const KrResult result = KrResult::Code::Busy;

  EXPECT_TRUE(result.GetDescription().IsEmpty());
}

TEST(KrResult, Failure_KeepsItsDescription) {
  const KrResult result(KrResult::Code::NotFound, "No device answers at 10.0.0.7.");

  EXPECT_EQ(result.GetDescription(), "No device answers at 10.0.0.7.");
}

TEST(KrResult, Success_TakesNoDescription) {
  const KrResult result(KrResult::Code::OK, "All went well.");

  EXPECT_TRUE(result.GetDescription().IsEmpty());
}

TEST(KrResult, CodeOutsideTheEnumeration_IsNamedUnknownAndKeepsItsNumber) {
  const KrResult result = static_cast<KrResult::Code>(4711);

  EXPECT_EQ(result.GetCodeString(), "Unknown");
  EXPECT_EQ(result.GetCodeNumber(), 4711u);
  EXPECT_FALSE(result.IsOK());
}

TEST(KrResult, Comparison_LooksAtTheCodeAndNotAtTheDescription) {
  const KrResult result(KrResult::Code::Busy, "Streaming.");

  EXPECT_TRUE(result == KrResult::Code::Busy);
  EXPECT_FALSE(result == KrResult::Code::OK);
}
