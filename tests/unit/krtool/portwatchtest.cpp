#include "portwatch.h"

#include "krgenicam/krgenmemoryport.h"
#include "recordingport.h"

#include <gmock/gmock.h>

namespace krtool {
namespace {

class Watched : public testing::Test {
protected:
  // Reads, or writes, with a failure of the port behind, and gives what came out.
  KrResult Access(const KrResult& aFailure, bool aIsWrite = false) {
    mPort.SetFault([aFailure](const RegisterAccessRecord&) { return aFailure; });
    std::uint8_t byte = 0;
    return aIsWrite ? mWatch.Write(0, &byte, 1, 1000) : mWatch.Read(0, &byte, 1, 1000);
  }

  KrGenMemoryPort mMemory;
  RecordingPort mPort{mMemory};
  PortWatch mWatch{mPort};
};

TEST_F(Watched, AccessesThatAreAnswered_AreNoLoss) {
  EXPECT_TRUE(Access({}).IsOK());
  EXPECT_EQ(Access(KrResult::Code::ProtocolError), KrResult::Code::ProtocolError);

  EXPECT_TRUE(mWatch.GetLoss().IsOK());
}

TEST_F(Watched, FirstAccessWithoutAnAnswer_IsKept) {
  EXPECT_EQ(Access(KrResult::Code::TimeLimitExceeded), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(Access(KrResult::Code::ConnectionLost), KrResult::Code::ConnectionLost);
  EXPECT_TRUE(Access({}).IsOK());

  EXPECT_EQ(mWatch.GetLoss(), KrResult::Code::TimeLimitExceeded);
}

TEST_F(Watched, WriteThatIsCancelled_IsALossToo) {
  EXPECT_EQ(Access(KrResult::Code::Aborted, true), KrResult::Code::Aborted);

  EXPECT_EQ(mWatch.GetLoss(), KrResult::Code::Aborted);
}

} // namespace
} // namespace krtool
