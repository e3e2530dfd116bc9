#include "cancellation.h"

#include "await.h"
#include "describedcamera.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <csignal>
#include <mutex>

namespace krtool {
namespace {

// Answers a read only when it is cancelled.
class SilentPort : public IKrRegisterPort {
public:
  KrResult Read(std::uint64_t, void*, std::size_t, std::uint32_t, const std::stop_token& aCancel) override {
    std::mutex mutex;
    std::condition_variable_any cancelled;
    std::unique_lock lock(mutex);
    std::raise(SIGINT);
    cancelled.wait_for(lock, aCancel, krtest::GetGenerousLimit(), [&aCancel] { return aCancel.stop_requested(); });
    return aCancel.stop_requested() ? KrResult::Code::Aborted : KrResult::Code::TimeLimitExceeded;
  }
  KrResult Write(std::uint64_t, const void*, std::size_t, std::uint32_t, const std::stop_token&) override {
    return KrResult::Code::NotOffered;
  }
};

TEST(Cancellation, Signal_EndsTheAccessThatIsUnderWay) {
  SilentPort port;
  KrGenDescription description;
  ASSERT_TRUE(
      KrGenDescription::ReadFromMemory(MakeDescription(R"(<IntReg Name="Width"><Address>0</Address><Length>4</Length>
                    <AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>)"),
                                       "test", description)
          .IsOK());
  std::unique_ptr<KrGenParameterArray> array;
  ASSERT_TRUE(KrGenParameterArray::Open(description, port, {.timeoutMs = 60'000}, array).IsOK());
  const Cancellation cancellation(*array);

  std::int64_t value = 0;
  const KrResult result = array->GetInteger("Width")->GetValue(value);

  EXPECT_EQ(result, KrResult::Code::Aborted);
  EXPECT_EQ(cancellation.GetStop().GetSignal(), SIGINT);
}

} // namespace
} // namespace krtool
