#pragma once
// What the application and the process of a CL Protocol driver say to each other, over a stream socket. The application
// sends one call and gets one answer; in between the driver uses the line, and the application answers that.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace krcamerabridge {

/// What a frame says; the numbers are part of the wire.
enum class WireKind : std::uint8_t {
  // Calls of the application. Each names the members that it takes.
  Load = 1,          ///< bytes: the library's path. The answer: its version, major in cookie, minor in length.
  GetTemplates,      ///< The answer: bytes.
  Probe,             ///< bytes: a template; timeoutMs. The answer: bytes, cookie.
  GetXMLIDs,         ///< cookie, timeoutMs. The answer: bytes.
  GetXMLDescription, ///< cookie, timeoutMs; bytes: the identifier. The answer: bytes.
  ReadRegister,      ///< cookie, timeoutMs, address, length. The answer: bytes.
  WriteRegister,     ///< cookie, timeoutMs, address, bytes.
  ContinueWrite,     ///< cookie, timeoutMs; length: 0 to cancel.
  GetErrorText,      ///< cookie; code. The answer: bytes.
  Disconnect,        ///< cookie.
  GetParam,          ///< cookie, timeoutMs; code: which; length. The answer: bytes.
  SetParam,          ///< cookie, timeoutMs; code: which; bytes.
  Close,             ///< The end of the library.
  // The application beside a call.
  StopProbe = 0x41, ///< The probe that runs is to end; not answered.
  LineAnswer,       ///< code; bytes that were read; cookie: rates.
  // The driver's process.
  Answer = 0x81, ///< code: what the driver's function returned.
  Refusal,       ///< The call was not made; bytes: why.
  LineRead,      ///< length, timeoutMs.
  LineWrite,     ///< timeoutMs, bytes.
  LineGetRates,  ///< The line's answer: cookie.
  LineSetRate,   ///< cookie: the rate's bit.
  Log,           ///< code: the level; bytes. Not answered.
};

/// Which end a frame comes from.
enum class WireSide { Application, Driver };

struct WireFrame {
  WireKind kind;
  std::int32_t code = 0;
  std::uint32_t cookie = 0;
  std::uint32_t length = 0;
  std::uint32_t timeoutMs = 0;
  std::uint64_t address = 0;
  std::vector<std::uint8_t> bytes = {};
};

constexpr std::size_t kWireHeader = 29;
constexpr std::size_t kWireMaxText = std::size_t{64} << 10;
constexpr std::size_t kWireMaxAccess = std::size_t{16} << 20; ///< Bytes of registers, or of the line.
/// A description, with the zero behind it.
constexpr std::size_t kWireMaxDescription = (std::size_t{64} << 20) + 1;

/// The bytes of a frame that keeps to the limits: all numbers with the least byte first. Thread: any.
std::vector<std::uint8_t> MakeWireBytes(const WireFrame& aFrame);

/// Takes frames out of what comes over the socket. Holds no more than came.
/// Thread: one at a time.
class WireReader {
public:
  explicit WireReader(WireSide aFrom) : mFrom(aFrom) {}

  void Add(std::span<const std::uint8_t> aBytes);
  /// The next whole frame; nothing when there is none yet, or what came is no frame of this side.
  std::optional<WireFrame> Take();
  /// What came is no frame: nothing behind it is taken.
  bool IsBroken() const { return mIsBroken; }

private:
  const WireSide mFrom;
  std::vector<std::uint8_t> mBytes;
  std::size_t mTaken = 0; // Of the bytes.
  bool mIsBroken = false;
};

} // namespace krcamerabridge
