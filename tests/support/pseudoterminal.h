#pragma once
// A pseudo-terminal whose one end is the test and whose other end has a path, for what opens serial ports.

#include "await.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <string>

namespace krtest {

class PseudoTerminal {
public:
  PseudoTerminal() : mMaster(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    EXPECT_GE(mMaster, 0);
    EXPECT_EQ(grantpt(mMaster), 0);
    EXPECT_EQ(unlockpt(mMaster), 0);
  }
  ~PseudoTerminal() { close(mMaster); }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  std::string GetPath() const { return ptsname(mMaster); }
  /// The test's end.
  int GetDescriptor() const { return mMaster; }
  /// Waits until all is written.
  void Write(const std::string& aBytes) const {
    std::size_t sum = 0;
    while (sum < aBytes.size()) {
      const ssize_t size = write(mMaster, aBytes.data() + sum, aBytes.size() - sum);
      ASSERT_GT(size, 0);
      sum += static_cast<std::size_t>(size);
    }
  }
  /// Exactly so many bytes; less when they do not come within a generous limit.
  std::string Read(std::size_t aSize) const {
    std::string text(aSize, '\0');
    std::size_t sum = 0;
    while (sum < aSize) {
      pollfd descriptor = {.fd = mMaster, .events = POLLIN, .revents = 0};
      if (poll(&descriptor, 1, GetGenerousMs()) <= 0)
        break;
      const ssize_t size = read(mMaster, text.data() + sum, aSize - sum);
      if (size <= 0)
        break;
      sum += static_cast<std::size_t>(size);
    }
    text.resize(sum);
    return text;
  }

private:
  const int mMaster;
};

} // namespace krtest
