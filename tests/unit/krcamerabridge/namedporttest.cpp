#include "line/namedport.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace krcamerabridge {
namespace {

constexpr const char* kWords = "No answer.";

class OrderedPort final : public IKrRegisterPort {
public:
  KrResult Read(std::uint64_t, void*, std::size_t, std::uint32_t, const std::stop_token&) override { return result; }
  KrResult Write(std::uint64_t, const void*, std::size_t, std::uint32_t, const std::stop_token&) override {
    return result;
  }

  KrResult result;
};

class NamedPortTest : public testing::Test {
protected:
  KrResult Read(const KrResult& aResult) {
    camera.result = aResult;
    std::uint8_t byte = 0;
    return port.Read(0, &byte, 1, 1000);
  }
  KrResult Write(const KrResult& aResult) {
    camera.result = aResult;
    const std::uint8_t byte = 0;
    return port.Write(0, &byte, 1, 1000);
  }

  OrderedPort camera;
  CameraAnswers answers;
  NamedPort port{camera, "Serial0 of Grabber", answers};
};

TEST_F(NamedPortTest, Silence_IsThatOfTheCameraThatIsNamed) {
  const KrResult silence(KrResult::Code::TimeLimitExceeded, kWords);

  for (const KrResult& result : {Read(silence), Write(silence)}) {
    EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
    EXPECT_STREQ(result.GetDescription().CStr(), "Serial0 of Grabber: No answer.");
  }
}

TEST_F(NamedPortTest, OtherFailures_KeepTheirWords) {
  for (const auto code : {KrResult::Code::ConnectionLost, KrResult::Code::ProtocolError, KrResult::Code::Aborted}) {
    const KrResult result = Read({code, kWords});

    EXPECT_EQ(result, code);
    EXPECT_STREQ(result.GetDescription().CStr(), kWords);
  }
}

TEST_F(NamedPortTest, SilenceAndLoss_AreRememberedUntilAnAccessSucceeds) {
  EXPECT_TRUE(answers.GetFailure().IsOK());
  for (const auto code : {KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost}) {
    (void)Write({code, kWords});
    EXPECT_EQ(answers.GetFailure(), code);

    // Who left, or was refused, says nothing of it.
    (void)Read({KrResult::Code::Aborted, kWords});
    (void)Read({KrResult::Code::AccessDenied, kWords});
    EXPECT_EQ(answers.GetFailure(), code);

    (void)Read({});
    EXPECT_TRUE(answers.GetFailure().IsOK());
  }
}

TEST_F(NamedPortTest, AnotherCamera_HasNotFailed) {
  (void)Read({KrResult::Code::TimeLimitExceeded, kWords});

  answers.Forget();

  EXPECT_TRUE(answers.GetFailure().IsOK());
}

} // namespace
} // namespace krcamerabridge
