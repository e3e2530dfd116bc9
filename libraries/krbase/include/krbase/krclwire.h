#pragma once
// The messages between a program that uses the Camera Link serial functions and the bridge that serves it. One message
// is one packet of a SOCK_SEQPACKET socket; the socket is left to others.
//
// The bridge speaks first: Welcome, with its name if the session is opened. Then either side sends Data, the program
// may send SetSpeed, which is answered by one SpeedSet, and Flush, which is answered by one Flushed, and the bridge
// tells its Speeds whenever they change.

#include "krbase/krexport.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// What a message says; the numbers are part of the wire.
enum class KrCLMessageKind : std::uint8_t {
  Welcome = 1,  ///< value: a KrCLAnswer; bytes: the port's name when it is Taken.
  Data = 2,     ///< bytes: 1 to kKrCLMostBytes of the line.
  SetSpeed = 3, ///< value: one speed's bit.
  SpeedSet = 4, ///< value: a KrCLAnswer.
  Speeds = 5,   ///< value: the bits of the speeds that the port has.
  Flush = 6,    ///< The program wants nothing of what was received before.
  Flushed = 7   ///< Behind it are bytes that came after the Flush.
};

/// What became of an opening or a speed.
enum class KrCLAnswer : std::uint32_t {
  Taken = 0,
  InUse = 1,        ///< The port is another program's, or has no line behind it.
  NotSupported = 2, ///< The port does not have the speed.
  Failed = 3        ///< The device did not do it.
};

/// Which end of a socket a message comes from.
enum class KrCLSide { Program, Bridge };

inline constexpr std::size_t kKrCLMostBytes = 4096; ///< Of the line in one message.
inline constexpr std::size_t kKrCLMostName = 200;   ///< Bytes of a port's name, in UTF-8.
inline constexpr std::size_t kKrCLHeader = 5;       ///< The kind, and the value, least byte first.
inline constexpr std::size_t kKrCLMostMessage = kKrCLHeader + kKrCLMostBytes;

/// A message, taken apart. The bytes are borrowed from the packet.
struct KrCLMessage {
  KrCLMessageKind kind = KrCLMessageKind::Data; ///< What it says.
  std::uint32_t value = 0;                      ///< A number, where the kind has one.
  std::string_view bytes = {};                  ///< What follows, where the kind has it; of the packet that was parsed.
};

/// Takes a packet apart; nothing for one that a side may not send: an unknown kind or value, or a wrong length. Thread:
/// any.
KR_EXPORT std::optional<KrCLMessage> KrParseCLMessage(std::span<const std::uint8_t> aPacket, KrCLSide aFrom);
/// The packet of a message that keeps to the limits. Thread: any.
KR_EXPORT std::vector<std::uint8_t> KrMakeCLMessage(const KrCLMessage& aMessage);

/// The speeds that the standard knows, in baud; the bit of each is 1 << its index.
inline constexpr std::array<std::uint32_t, 8> kKrCLSpeeds = {9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600};
/// The bit of a speed in baud; 0 for one that the standard does not know. Thread: any.
KR_EXPORT std::uint32_t KrGetCLSpeedBit(std::uint32_t aBaudRate);
/// The speed of a bit, in baud; 0 for none, several or another. Thread: any.
KR_EXPORT std::uint32_t KrGetCLSpeed(std::uint32_t aBit);
