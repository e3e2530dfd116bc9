#pragma once
// The private messages of the serial terminal.

#include <cstdint>

namespace krgui {

/// Shows what is pending; posted once.
inline constexpr std::uint32_t kFlushTranscriptMessage = 0x1E90;
/// First parameter kEchoChunk: the next chunk of the transfer's mailbox is echoed; 1 to 3: that line of its statistics
/// is shown. Each carries what it shows: the second parameter is its number in the mailbox.
inline constexpr std::uint32_t kTransferMessage = 0x1E91;
inline constexpr std::uint64_t kEchoChunk = 0;
/// Sending is allowed again, if the port is open.
inline constexpr std::uint32_t kTransferEndedMessage = 0x1E92;
/// The transcript shows every append again.
inline constexpr std::uint32_t kTranscriptPaceMessage = 0x1E93;
/// The progress of a transfer has changed; posted once.
inline constexpr std::uint32_t kTransferProgressMessage = 0x1E94;
/// The file of a transfer could not be opened; posted before kTranscriptPaceMessage and kTransferEndedMessage.
inline constexpr std::uint32_t kTransferFailedMessage = 0x1E95;
/// The device of the open port has gone; posted once an opening.
inline constexpr std::uint32_t kPortLostMessage = 0x1E96;
/// The line has taken all messages after it had refused one.
inline constexpr std::uint32_t kLineTakesAgainMessage = 0x1E97;

} // namespace krgui
