#pragma once
// A program that uses a serial port of the host, by the port's path.

#include "await.h"
#include "bridge/ttysettings.h"
#include "krbase/filedescriptor.h"
#include "pseudoterminal.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

/// Has opened the port as long as it lives.
class PortClient {
public:
  explicit PortClient(const std::string& aPath) : mTty(open(aPath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    EXPECT_TRUE(mTty.IsOpen()) << aPath;
  }

  void Write(const std::string& aBytes) const {
    ASSERT_EQ(write(mTty.Get(), aBytes.data(), aBytes.size()), static_cast<ssize_t>(aBytes.size()));
  }
  /// Exactly so many bytes; less when they do not come within a generous limit.
  std::string Read(std::size_t aSize) const {
    std::string text;
    std::string part(4096, '\0');
    while (text.size() < aSize) {
      pollfd waited = {.fd = mTty.Get(), .events = POLLIN, .revents = 0};
      const bool isReady = poll(&waited, 1, krtest::GetGenerousMs()) > 0;
      const ssize_t size = isReady ? read(mTty.Get(), part.data(), std::min(part.size(), aSize - text.size())) : 0;
      if (size <= 0)
        break;
      text.append(part, 0, static_cast<std::size_t>(size));
    }
    return text;
  }
  krserial::TtySettings GetSettings() const {
    return krserial::TtySettings::Read(mTty.Get()).value_or(krserial::TtySettings());
  }
  void Set(const krserial::TtySettings& aSettings) const { ASSERT_TRUE(aSettings.Apply(mTty.Get())); }
  void SetSpeed(std::uint32_t aBaudRate) const {
    krserial::TtySettings settings = GetSettings();
    settings.PutSpeed(aBaudRate);
    Set(settings);
  }

private:
  krbase::FileDescriptor mTty;
};

namespace krtest {

/// A pseudo-terminal's speed, as a program at its far end sets it.
inline void SetSpeed(const PseudoTerminal& aTerminal, std::uint32_t aBaudRate) {
  std::optional<krserial::TtySettings> settings = krserial::TtySettings::Read(aTerminal.GetDescriptor());
  ASSERT_TRUE(settings);
  settings->PutSpeed(aBaudRate);
  ASSERT_TRUE(settings->Apply(aTerminal.GetDescriptor()));
}

} // namespace krtest
