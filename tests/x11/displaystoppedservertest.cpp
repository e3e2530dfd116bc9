// A display whose X server stops reading: the camera goes on, and the screen does when the server does. The window is
// in a process of its own, as its toolkit may wait for the server for as long as that pleases.

#include "krgui/krdisplaywnd.h"

#include "await.h"
#include "plainframes.h"
#include "screenreader.h"
#include "windowwait.h"
#include "xvfbserver.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::uint32_t kFrames = 40;
constexpr std::chrono::milliseconds kPeriod(50);

/// What the process with the window tells; each is sent once, in this order.
struct Ready {
  int x = 0; ///< The middle of the window on the screen.
  int y = 0;
};
struct Given {
  std::uint32_t accepted = 0; ///< Frames whose Display returned success.
};
struct Counted {
  std::uint64_t received = 0;
  std::uint64_t shown = 0;
  std::uint64_t dropped = 0;
};

/// One end of the way between the two processes.
class Channel {
public:
  explicit Channel(int aSocket) : mSocket(aSocket) {}
  ~Channel() { ::close(mSocket); }
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  template <typename Report>
  void Send(const Report& aReport) const {
    EXPECT_EQ(::send(mSocket, &aReport, sizeof aReport, MSG_NOSIGNAL), static_cast<ssize_t>(sizeof aReport));
  }
  /// False when nothing comes within a limit that only a fault can reach.
  template <typename Report>
  [[nodiscard]] bool Receive(Report& aReport) const {
    pollfd wait{mSocket, POLLIN, 0};
    return ::poll(&wait, 1, krtest::GetGenerousMs()) == 1 &&
           ::recv(mSocket, &aReport, sizeof aReport, 0) == static_cast<ssize_t>(sizeof aReport);
  }
  void SendWord() const { Send('w'); }
  [[nodiscard]] bool ReceiveWord() const {
    char word = 0;
    return Receive(word);
  }

private:
  int mSocket;
};

/// The camera's thread: gives frames at the first word, tells of the window at the second.
void RunCamera(KrDisplayWnd& aWindow, const Channel& aChannel) {
  Given given;
  if (!aChannel.ReceiveWord())
    return;
  auto next = std::chrono::steady_clock::now();
  for (std::uint32_t number = 1; number <= kFrames; ++number) {
    std::this_thread::sleep_until(next); // The camera's clock: the server is stopped for two seconds at least.
    next += kPeriod;
    given.accepted += aWindow.Display(*MakeFrame(320, 240, number), false).IsOK() ? 1 : 0;
  }
  aChannel.Send(given);
  if (!aChannel.ReceiveWord())
    return;
  const KrDisplayStatistics statistics = aWindow.GetStatistics();
  aChannel.Send(Counted{statistics.received, statistics.shown, statistics.dropped});
}

/// The process with the window; ends with 0 when all went its way.
int RunWindow(const Channel& aChannel) {
  int argumentCount = 1;
  char name[] = "camera";
  char* arguments[] = {name, nullptr};
  const QApplication application(argumentCount, arguments);
  KrDisplayWnd window;
  window.SetPosition(100, 100, 320, 240);
  if (!window.ShowModeless(0).IsOK() || !krtest::AwaitExposed(window.GetWidget()) ||
      !window.Display(*MakeFrame(320, 240, 0), false).IsOK())
    return 2;
  const QPoint middle = window.GetWidget()->mapToGlobal(window.GetWidget()->rect().center());
  const ScreenReader screen;
  if (!krtest::AwaitCondition([&] { return screen.Read(middle) == GetFrameColor(0); }))
    return 3;
  aChannel.Send(Ready{middle.x(), middle.y()});

  std::atomic<bool> isDone = false;
  std::thread camera([&] {
    RunCamera(window, aChannel);
    isDone = true;
  });
  const bool isEnded = QTest::qWaitFor([&] { return isDone.load(); }, 2 * krtest::kGenerousMs);
  camera.join();
  return isEnded ? 0 : 4;
}

/// The server, and a process that shows frame 0 on it.
class DisplayOnAStoppedServer : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_NE(server.GetDisplayName(), ":");
    int sockets[2] = {-1, -1};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, sockets), 0);
    process = ::fork();
    ASSERT_GE(process, 0);
    if (process == 0) {
      ::close(sockets[0]);
      ::setenv("DISPLAY", server.GetDisplayName().c_str(), 1);
      int status = 1;
      {
        const Channel toTest(sockets[1]);
        status = RunWindow(toTest);
      }
      std::_Exit(HasFailure() ? 1 : status);
    }
    ::close(sockets[1]);
    channel = std::make_unique<Channel>(sockets[0]);
  }
  void TearDown() override {
    if (process <= 0)
      return;
    server.Continue();
    channel.reset();
    ::waitpid(process, nullptr, 0);
  }
  /// Waits for the process with the window; what it returned.
  int AwaitEnd() {
    int status = -1;
    EXPECT_GT(::waitpid(std::exchange(process, -1), &status, 0), 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  krgui::XvfbServer server;
  pid_t process = -1;
  std::unique_ptr<Channel> channel;
};

TEST_F(DisplayOnAStoppedServer, CameraGoesOn_AndTheNewestFrameIsShownAfterwards) {
  Ready ready;
  ASSERT_TRUE(channel->Receive(ready));
  server.Stop();

  channel->SendWord();
  Given given;
  const bool haveAllReturned = channel->Receive(given); // The server is stopped still.
  server.Continue();
  ASSERT_TRUE(haveAllReturned);
  const ScreenReader screen(server.GetDisplayName().c_str());
  const bool isNewestShown = screen.AwaitColor({ready.x, ready.y}, GetFrameColor(kFrames));
  channel->SendWord();
  Counted counted;

  ASSERT_TRUE(channel->Receive(counted));
  EXPECT_EQ(AwaitEnd(), 0);
  EXPECT_EQ(given.accepted, kFrames);
  EXPECT_TRUE(isNewestShown);
  EXPECT_EQ(counted.received, kFrames + 1);
  EXPECT_GT(counted.dropped, 0u);
  EXPECT_EQ(counted.shown + counted.dropped, counted.received);
}

} // namespace
