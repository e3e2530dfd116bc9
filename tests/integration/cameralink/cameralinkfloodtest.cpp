// A bridge that sends more than it was asked for, and what of it gets into the memory of the program at its port.

#include "await.h"
#include "cllibrary.h"
#include "krbase/krclsockets.h"
#include "krbase/krclwire.h"
#include "publishedline.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/socket.h>

namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20U;
constexpr std::size_t kMostAhead = std::size_t{64} << 10U;
/// What the kernel keeps of a socket's way is far below this.
constexpr std::size_t kOnTheWay = 2 * kMiB;

/// Serves one program: welcomes it, then sends bytes of the line.
class FloodingBridge {
public:
  /// Sends them at once, or when it is asked for a speed, so many of them, and then that the speed is set.
  enum class Begin { AtOnce, WithASpeed };

  FloodingBridge(Begin aBegin, std::size_t aBytes) : mBegin(aBegin), mBytes(aBytes) {
    const KrResult made = KrCLPublication::Make("Flood", mPublication);
    EXPECT_TRUE(made.IsOK()) << made.GetDescription().CStr();
    mThread = std::thread([this] { Serve(); });
  }
  ~FloodingBridge() { mThread.join(); }
  FloodingBridge(const FloodingBridge&) = delete;
  FloodingBridge& operator=(const FloodingBridge&) = delete;

  /// How many bytes of the line were sent; the program must have closed its port.
  std::size_t CountSent() {
    while (!mIsOver)
      mIsOver.wait(false);
    return mSent;
  }

private:
  void Serve() {
    pollfd waited{.fd = mPublication->GetSocket(), .events = POLLIN, .revents = 0};
    EXPECT_EQ(::poll(&waited, 1, static_cast<int>(krtest::GetGenerousLimit().count())), 1) << "No program connects.";
    const krbase::FileDescriptor program(::accept4(mPublication->GetSocket(), nullptr, nullptr, SOCK_CLOEXEC));
    const std::string name = mPublication->GetName().ToUtf8();
    Send(program, {KrCLMessageKind::Welcome, static_cast<std::uint32_t>(KrCLAnswer::Taken), name});
    Send(program, {KrCLMessageKind::Speeds, KrGetCLSpeedBit(9600)});
    std::vector<std::uint8_t> packet(kKrCLMostMessage);
    if (mBegin == Begin::AtOnce || ::recv(program.Get(), packet.data(), packet.size(), 0) > 0)
      Flood(program);
    mIsOver = true;
    mIsOver.notify_all();
  }

  void Flood(const krbase::FileDescriptor& aProgram) {
    const std::string bytes(kKrCLMostBytes, 'x');
    while (mSent < mBytes && Send(aProgram, {KrCLMessageKind::Data, 0, bytes}))
      mSent += bytes.size();
    if (mSent >= mBytes)
      Send(aProgram, {KrCLMessageKind::SpeedSet, static_cast<std::uint32_t>(KrCLAnswer::Taken)});
  }

  // False when the program has gone.
  static bool Send(const krbase::FileDescriptor& aProgram, const KrCLMessage& aMessage) {
    const std::vector<std::uint8_t> packet = KrMakeCLMessage(aMessage);
    return ::send(aProgram.Get(), packet.data(), packet.size(), MSG_NOSIGNAL) >= 0;
  }

  const Begin mBegin;
  const std::size_t mBytes;
  std::unique_ptr<KrCLPublication> mPublication;
  std::size_t mSent = 0; // By the thread, until it is over.
  std::atomic<bool> mIsOver = false;
  std::thread mThread;
};

class CameraLinkFlood : public testing::Test {
protected:
  SocketFolder mFolder;
  CLLibrary mLibrary;
};

TEST_F(CameraLinkFlood, BeforeAnAnswer_EndsTheWaitingForItAfter16MiB) {
  FloodingBridge bridge(FloodingBridge::Begin::WithASpeed, 64 * kMiB);
  const hSerRef reference = mLibrary.Open(0);

  EXPECT_EQ(mLibrary.setSpeed(reference, CL_BAUDRATE_9600), CL_ERR_TIMEOUT);

  mLibrary.close(reference);
  const std::size_t sent = bridge.CountSent();
  EXPECT_GE(sent, 16 * kMiB);
  EXPECT_LE(sent, 16 * kMiB + kOnTheWay);
}

TEST_F(CameraLinkFlood, OfBytesThatNobodyReads_IsTakenUpTo64KiB) {
  FloodingBridge bridge(FloodingBridge::Begin::AtOnce, 64 * kMiB);
  const hSerRef reference = mLibrary.Open(0);
  CLUINT32 available = 0;

  EXPECT_TRUE(krtest::Await([&] {
    EXPECT_EQ(mLibrary.countAvailable(reference, &available), CL_ERR_NO_ERR);
    return available >= kMostAhead;
  }));
  EXPECT_EQ(mLibrary.countAvailable(reference, &available), CL_ERR_NO_ERR);

  EXPECT_LT(available, kMostAhead + kKrCLMostBytes);
  mLibrary.close(reference);
  EXPECT_LE(bridge.CountSent(), kMostAhead + kKrCLMostBytes + kOnTheWay);
}

} // namespace
