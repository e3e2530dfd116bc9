#pragma once
// An end of a pseudo-terminal that reads and writes only what it is told to, and both at once: socat stops reading
// while it writes into a line that is full.

#include "await.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

/// Thread: one reads, another one writes.
class RawEnd {
public:
  /// A port that is there, as a program opens it.
  explicit RawEnd(const std::string& aPath) : RawEnd(open(aPath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
  ~RawEnd() { close(mDescriptor); }
  RawEnd(const RawEnd&) = delete;
  RawEnd& operator=(const RawEnd&) = delete;

  /// Until all is written.
  void Write(const std::string& aBytes) const {
    std::size_t sum = 0;
    while (sum < aBytes.size()) {
      const ssize_t count = write(mDescriptor, aBytes.data() + sum, aBytes.size() - sum);
      ASSERT_GT(count, 0);
      sum += static_cast<std::size_t>(count);
    }
  }
  /// Exactly so many bytes; less when the line ends, or they do not come within a generous limit.
  std::string Read(std::size_t aSize) const {
    std::string bytes(aSize, '\0');
    std::size_t sum = 0;
    pollfd readable = {.fd = mDescriptor, .events = POLLIN, .revents = 0};
    while (sum < aSize && poll(&readable, 1, kLimitMs) > 0) {
      const ssize_t count = read(mDescriptor, bytes.data() + sum, aSize - sum);
      if (count <= 0)
        break;
      sum += static_cast<std::size_t>(count);
    }
    bytes.resize(sum);
    return bytes;
  }

protected:
  explicit RawEnd(int aDescriptor) : mDescriptor(aDescriptor) {
    termios settings = {};
    EXPECT_EQ(tcgetattr(mDescriptor, &settings), 0);
    cfmakeraw(&settings);
    EXPECT_EQ(tcsetattr(mDescriptor, TCSANOW, &settings), 0);
  }

  inline static const int kLimitMs = krtest::GetGenerousMs();

  const int mDescriptor;
};

/// A pseudo-terminal of its own, whose other end is linked under a path.
class RawLine : public RawEnd {
public:
  explicit RawLine(const std::string& aPath) : RawEnd(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)), mPath(aPath) {
    EXPECT_TRUE(grantpt(mDescriptor) == 0 && unlockpt(mDescriptor) == 0);
    std::filesystem::create_symlink(ptsname(mDescriptor), mPath);
  }
  ~RawLine() { std::filesystem::remove(mPath); }

private:
  const std::string mPath;
};
