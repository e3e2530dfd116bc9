#pragma once
// An X server of a test's own, which it can stop, let go on and kill. Its screen has 1024 x 768 pixels.

#include "await.h"
#include "spawning.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

class XvfbServer {
public:
  /// With a screen of so many bits a pixel, and further arguments for the server.
  explicit XvfbServer(int aDepth = 24, const std::vector<std::string>& aMore = {}) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    Start(ends[1], aDepth, aMore);
    close(ends[1]);
    mDisplayName = ":" + ReadLine(ends[0]);
    close(ends[0]);
  }
  ~XvfbServer() { Kill(); }
  XvfbServer(const XvfbServer&) = delete;
  XvfbServer& operator=(const XvfbServer&) = delete;

  const std::string& GetDisplayName() const { return mDisplayName; }

  /// Returns when the server has stopped.
  void Stop() {
    kill(mProcess, SIGSTOP);
    int status = 0;
    EXPECT_EQ(waitpid(mProcess, &status, WUNTRACED), mProcess);
    EXPECT_TRUE(WIFSTOPPED(status));
  }
  void Continue() { kill(mProcess, SIGCONT); }
  /// Returns when the server has ended.
  void Kill() {
    if (mProcess > 0) {
      kill(mProcess, SIGKILL);
      waitpid(mProcess, nullptr, 0);
      mProcess = 0;
    }
  }

private:
  void Start(int aReadyEnd, int aDepth, const std::vector<std::string>& aMore) {
    constexpr int kReady = 3;
    std::vector<std::string> words = {"Xvfb", "-displayfd", std::to_string(kReady), "-nolisten", "tcp", "-noreset"};
    words.insert(words.end(), {"-screen", "0", "1024x768x" + std::to_string(aDepth)});
    words.insert(words.end(), aMore.begin(), aMore.end());
    mProcess = Spawning(std::move(words)).Give(aReadyEnd, kReady).DiscardOutput().Start();
    EXPECT_GE(mProcess, 0);
  }
  /// What the server writes when it is ready: the number of its display.
  static std::string ReadLine(int aEnd) {
    std::string line;
    pollfd descriptor = {aEnd, POLLIN, 0};
    char character = 0;
    while (poll(&descriptor, 1, krtest::GetGenerousMs()) == 1 && read(aEnd, &character, 1) == 1 && character != '\n') {
      line += character;
    }
    EXPECT_EQ(character, '\n') << "The X server did not start.";
    return line;
  }

  pid_t mProcess = 0;
  std::string mDisplayName;
};

} // namespace krgui
