#include "logic/finder/hostdiagnosis.h"

#include "systemfixtures.h"

#include <future>
#include <thread>

namespace krgui {

namespace {

krsystem::GEVFields MakeForeign() {
  krsystem::GEVFields camera = MakeCamera("a", "172.16.0.5");
  camera.configurationValid = false;
  return camera;
}

} // namespace

TEST(DiagnoseHost, Round_IsOneByLimitedBroadcastAndItsAnswersCount) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeForeign()}};

  const HostDiagnosis diagnosis = DiagnoseHost({});

  EXPECT_TRUE(diagnosis.result.IsOK());
  ASSERT_EQ(diagnosis.findings.size(), 1u);
  EXPECT_EQ(diagnosis.findings[0].kind, KrFindingKind::ForeignSubnet);
  EXPECT_EQ(diagnosis.findings[0].subject, "Camera a");
  ASSERT_EQ(transport->requests.size(), 1u);
  EXPECT_FALSE(transport->requests[0].subnetBroadcast);
}

TEST(DiagnoseHost, StoppedInTheRound_EndsWithoutFindings) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->answers = {{0, MakeForeign()}};
  std::promise<void> isLooking;
  std::atomic<bool> wasCancelled = false;
  transport->afterAnswers = [&](const krsystem::DiscoveryRequest& aRequest) {
    isLooking.set_value();
    const KrResult result = WaitForCancel(aRequest);
    wasCancelled = result == KrResult::Code::Aborted;
    return result;
  };
  std::stop_source stop;
  auto diagnosis = std::async(std::launch::async, [&] { return DiagnoseHost(stop.get_token()); });
  isLooking.get_future().get();

  stop.request_stop();

  EXPECT_TRUE(diagnosis.get().result == KrResult::Code::Aborted);
  EXPECT_TRUE(wasCancelled);
}

TEST(DiagnoseHost, StoppedBefore_AsksNobody) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  std::stop_source stop;
  stop.request_stop();

  const HostDiagnosis diagnosis = DiagnoseHost(stop.get_token());

  EXPECT_TRUE(diagnosis.result == KrResult::Code::Aborted);
  EXPECT_TRUE(diagnosis.findings.empty());
  EXPECT_TRUE(transport->requests.empty());
}

TEST(DiagnoseHost, StoppedAtAnyMoment_Ends) {
  const RegisteredTransport transport;
  transport->interfaces = {MakeAdapter("eth0")};
  transport->afterAnswers = WaitForCancel;
  for (int i = 0; i < 200; ++i) {
    std::stop_source stop;
    std::jthread diagnosing([&] { (void)DiagnoseHost(stop.get_token()); });
    for (int turn = 0; turn < i; ++turn)
      std::this_thread::yield();

    stop.request_stop();
    diagnosing.join();

    EXPECT_TRUE(transport->requests.size() <= static_cast<std::size_t>(i) + 1);
  }
}

} // namespace krgui
