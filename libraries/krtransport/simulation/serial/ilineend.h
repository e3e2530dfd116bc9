#pragma once
// What is attached behind a serial port of a simulated camera: an instrument, a tty of the host, another camera. Speed,
// loss and loopback are the line's; what the bytes mean is the end's.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>

namespace krtransport {

/// The far end of a serial line. What it holds is bounded: bytes that it does not take wait on the line, as with
/// hardware handshake, and nothing is lost between the two.
///
/// Thread: Open comes on the thread that opens the port, everything else on the line's own, one call at a time and
/// with no lock held. No call may wait. Times are the camera's clock's.
/// Ownership: the line's.
class ILineEnd {
public:
  /// Has the line ask again: there are bytes to give, or there is room for more. Any thread, from Open to Close.
  using Waker = std::function<void()>;

  static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

  virtual ~ILineEnd() = default;

  /// The port was opened, at a rate in bits a second. What was meant for its last opening is dropped.
  virtual void Open(std::uint32_t aRate, Waker aWaker) = 0;
  /// The port was closed; the waker may not be called any more.
  virtual void Close() = 0;
  virtual void SetRate(std::uint32_t aRate) = 0;
  /// The cable carries power, as it does at first, or not. What went and came back meanwhile is told as both.
  virtual void SetPower(bool) {}
  /// Bytes that the port has sent; gives how many of them are taken. The others come again when the line is woken.
  virtual std::size_t Take(const std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) = 0;
  /// Puts up to aSize bytes for the port into aBytes; gives how many.
  virtual std::size_t Give(std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) = 0;
  /// When it has something to give by the clock alone; kNever where it has not.
  virtual std::uint64_t GetNextNs() const { return kNever; }
};

} // namespace krtransport
