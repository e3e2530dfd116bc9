#include "camerasession.h"

#include <gtest/gtest.h>

#include <sstream>

namespace krtool {
namespace {

TEST(CameraSession, Fail_DescriptionThatATerminalWouldObey_IsWrittenInOneLineWithoutThat) {
  std::ostringstream errors;

  const int exitCode = Fail(errors, Explain("opening failed", {KrResult::Code::NotFound, "cam\x1b[2J\n is away."}));

  EXPECT_EQ(errors.str(), "krtool: opening failed: cam?[2J? is away.\n");
  EXPECT_EQ(exitCode, 1);
}

TEST(CameraSession, FailForLoss_NoLoss_IsNoFailure) {
  std::ostringstream errors;

  EXPECT_EQ(FailForLoss(errors, "cam", {}), 0);

  EXPECT_EQ(errors.str(), "");
}

} // namespace
} // namespace krtool
