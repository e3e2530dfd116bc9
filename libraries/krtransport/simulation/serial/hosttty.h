#pragma once
// A tty or pseudo-terminal of the host by its path: opened raw, never waiting, never as the controlling terminal.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace krtransport {

/// Thread: one at a time. Ownership: the descriptor.
class HostTty {
public:
  HostTty() = default;
  ~HostTty() { Close(); }
  HostTty(const HostTty&) = delete;
  HostTty& operator=(const HostTty&) = delete;

  /// SystemError, with the system's own words, for what cannot be opened or is no tty.
  KrResult Open(const std::string& aPath, std::uint32_t aRate);
  /// Never waits: what a UART has not sent is dropped.
  void Close();
  bool IsOpen() const { return mDescriptor >= 0; }
  /// To be polled; -1 while nothing is open.
  int GetDescriptor() const { return mDescriptor; }

  /// Any rate is asked for; a pseudo-terminal remembers it, a UART comes as near as it can.
  KrResult SetRate(std::uint32_t aRate);
  /// Drops what came and was not read.
  void DropReceived();
  /// False when the other end has gone; aRead and aWritten are 0 where nothing can be done at the moment.
  bool Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead);
  bool Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten);

private:
  int mDescriptor = -1;
};

} // namespace krtransport
