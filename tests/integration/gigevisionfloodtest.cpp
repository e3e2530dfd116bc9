// Discovery among answers without end: neither good nor bad ones keep it from ending when it is told to.

#include "gvcpresponder.h"

#include "gigevision/gigevisiontransport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stop_token>
#include <thread>

namespace {

constexpr std::uint32_t kLoopback = 0x7F000001;
constexpr std::size_t kMacOffset = 8 + 0x0A; // In a discovery acknowledge.
constexpr std::uint32_t kManyAnswers = 20000;

using MakeAnswer = std::vector<std::uint8_t> (*)(std::span<const std::uint8_t> aCommand, std::uint32_t aNumber);

struct FloodRow {
  const char* what;
  MakeAnswer make;
};

constexpr FloodRow kFloods[] = {
    {"OneDeviceAgainAndAgain", [](std::span<const std::uint8_t> aCommand,
                                  std::uint32_t) { return MakeDiscoveryAcknowledge(aCommand, kLoopback, "same"); }},
    {"EverNewDevices",
     [](std::span<const std::uint8_t> aCommand, std::uint32_t aNumber) {
       auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, "new");
       PutBigEndian32(answer, kMacOffset + 2, aNumber);
       return answer;
     }},
    {"MalformedAnswers",
     [](std::span<const std::uint8_t> aCommand, std::uint32_t) {
       auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, "short");
       answer.resize(100);
       return answer;
     }},
    {"AnswersToSomebodyElse",
     [](std::span<const std::uint8_t> aCommand, std::uint32_t) {
       auto answer = MakeDiscoveryAcknowledge(aCommand, kLoopback, "foreign");
       answer[7] ^= 0x01;
       return answer;
     }},
};

class GigEVisionFlood : public testing::TestWithParam<FloodRow> {
protected:
  /// A round that ends by aCancel alone.
  static KrResult Discover(const std::stop_token& aCancel) {
    krtransport::GigEVisionTransport transport;
    std::vector<krsystem::InterfaceFields> interfaces;
    if (KrResult result = transport.ListInterfaces(interfaces); !result.IsOK())
      return result;
    return transport.Discover(interfaces, {.timeoutMs = 3600000, .subnetBroadcast = true, .cancel = aCancel},
                              [](std::size_t, const krsystem::AnyDeviceFields&) {});
  }
};

TEST_P(GigEVisionFlood, Discover_CancelledInTheMiddle_ReturnsAborted) {
  std::atomic<std::uint32_t> count{0};
  const GvcpResponder responder(
      [&](std::span<const std::uint8_t> aCommand) {
        ++count;
        count.notify_all();
        return Datagrams{GetParam().make(aCommand, count)};
      },
      GvcpAnswers::WithoutEnd);
  std::stop_source cancel;
  KrResult result;
  std::jthread finder([&] { result = Discover(cancel.get_token()); });
  for (std::uint32_t seen = count; seen < kManyAnswers; seen = count)
    count.wait(seen);

  cancel.request_stop();
  finder.join();

  EXPECT_EQ(result, KrResult::Code::Aborted);
}

INSTANTIATE_TEST_SUITE_P(Answers, GigEVisionFlood, testing::ValuesIn(kFloods),
                         [](const auto& aInfo) { return std::string(aInfo.param.what); });

} // namespace
