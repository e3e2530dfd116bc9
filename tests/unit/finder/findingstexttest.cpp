#include "logic/finder/findingstext.h"

#include <gmock/gmock.h>

#include <vector>

namespace krgui {

using testing::HasSubstr;

TEST(FormatFindings, EachFinding_IsAParagraphWithItsRemedy) {
  const std::vector<KrFinding> findings = {
      {KrFindingKind::NoAddress, "eth1", "The adapter has no address.", "Give it one:\nip address add …"},
      {KrFindingKind::AdapterDown, "eth2", "eth2 is switched off.", ""},
      {KrFindingKind::ReceiveBufferLimit, "", "The limit is small.", "Raise it."}};

  EXPECT_EQ(FormatFindings(findings).ToUtf8(), "eth1: The adapter has no address.\nGive it one:\nip address add …\n"
                                               "\n"
                                               "eth2 is switched off.\n"
                                               "\n"
                                               "The limit is small.\nRaise it.\n");
}

TEST(FormatFindings, NoFindings_SayWhereToLookNext) {
  EXPECT_THAT(FormatFindings({}).ToUtf8(), HasSubstr("No reason was found on this computer."));
}

TEST(FormatDiagnosisFailure, Reason_IsTheResultsTextOrItsCode) {
  EXPECT_THAT(FormatDiagnosisFailure({KrResult::Code::SystemError, "The adapters cannot be read."}).ToUtf8(),
              HasSubstr("The adapters cannot be read."));
  EXPECT_THAT(FormatDiagnosisFailure(KrResult::Code::NotSupported).ToUtf8(),
              HasSubstr(KrResult(KrResult::Code::NotSupported).GetCodeString().ToUtf8()));
}

} // namespace krgui
