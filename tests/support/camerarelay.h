#pragma once
// A way to a camera that does what a test tells it: loses chosen stream packets, lets packets for trial through up to a
// size, refuses registers. The camera behind it is an honest one on another address of loopback.

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

/// One packet of a stream, as its header says (GigE Vision stream protocol).
struct StreamPacket {
  std::uint32_t frame = 0;  ///< Counted by its leader, from 1.
  std::uint8_t format = 0;  ///< 1 leader, 2 trailer, 3 payload.
  std::uint32_t number = 0; ///< Within the frame; the leader has 0.
};

inline constexpr std::uint8_t kLeaderFormat = 1;
inline constexpr std::uint8_t kTrailerFormat = 2;
inline constexpr std::uint8_t kPayloadFormat = 3;

/// What a relay does; all of it may be left out.
struct RelayOrders {
  /// Whether a stream packet is lost. On the relay's thread.
  std::function<bool(const StreamPacket&)> isLost = {};
  /// Whether a stream packet is kept back until the host asks for it again. On the relay's thread.
  std::function<bool(const StreamPacket&)> isLate = {};
  /// Whether a stream packet comes twice. On the relay's thread.
  std::function<bool(const StreamPacket&)> isDoubled = {};
  /// Whether a stream packet is overtaken by the one after it. On the relay's thread.
  std::function<bool(const StreamPacket&)> isOvertaken = {};
  /// Whether a command of the control protocol, by its number there, is lost on its way. On the relay's thread.
  std::function<bool(std::uint16_t)> isUnheard = {};
  /// The largest packet for trial that the device sends and the way lets through; 0 for a device that knows none.
  std::uint32_t largestTrial = 0;
  /// Registers that cannot be written: the device answers that they are protected.
  std::set<std::uint32_t> refusedRegisters = {};
  /// What registers are said to hold, whatever is written to them.
  std::map<std::uint32_t, std::uint32_t> statedRegisters = {};
  /// How long each answer takes, one command after the other; at once where it is empty. On the relay's thread.
  std::function<std::chrono::milliseconds()> getAnswerDelay = {};
};

/// Makes an address of the loopback adapter, 127.0.0.x, one that a camera can be started on.
void AddLoopbackAddress(const std::string& aAddress);
/// The largest packet that the loopback adapter takes, from construction to destruction.
class LoopbackMtu {
public:
  explicit LoopbackMtu(std::uint32_t aBytes);
  ~LoopbackMtu();
  LoopbackMtu(const LoopbackMtu&) = delete;
  LoopbackMtu& operator=(const LoopbackMtu&) = delete;
};

/// Stands at one address of loopback for the camera at another, from construction to destruction.
///
/// Thread: forwards on threads of its own; the operations may be called from any.
class CameraRelay {
public:
  CameraRelay(const std::string& aAddress, const std::string& aCameraAddress, RelayOrders aOrders);
  ~CameraRelay();
  CameraRelay(const CameraRelay&) = delete;
  CameraRelay& operator=(const CameraRelay&) = delete;

  /// The values written to a register so far, in their order.
  std::vector<std::uint32_t> GetWritten(std::uint32_t aRegister) const;
  /// How many frames the camera has begun to send.
  std::uint32_t GetFrames() const { return mFrames; }
  /// How many packets the orders lost.
  std::uint32_t GetLostPackets() const { return mLostPackets; }
  /// How many packets for trial were sent, whether or not they came through.
  std::uint32_t GetTrials() const { return mTrials; }
  /// How many packets that were kept back the host asked for and got.
  std::uint32_t GetResentPackets() const { return mResentPackets; }

private:
  using Datagram = std::vector<std::uint8_t>;

  void RelayControl();
  void RelayStream();
  Datagram Answer(std::span<const std::uint8_t> aCommand);
  void StateRegister(std::span<const std::uint8_t> aCommand, Datagram& aAnswer) const;
  Datagram AnswerWrite(std::span<const std::uint8_t> aCommand);
  Datagram Forward(std::span<const std::uint8_t> aCommand);
  void SendTrial(std::uint32_t aBytes);
  void Resend(std::span<const std::uint8_t> aCommand);
  void SendToHost(std::span<const std::uint8_t> aPacket) const;

  const std::string mAddress;
  const RelayOrders mOrders;
  int mFront = -1;  // Where the host asks.
  int mBack = -1;   // Where the camera answers.
  int mStream = -1; // Where the camera's stream comes in, and goes on from.
  std::array<int, 2> mStopPipe{-1, -1};
  std::atomic<std::uint32_t> mHostAddress{0};
  std::atomic<std::uint32_t> mHostPort{0};
  std::atomic<std::uint32_t> mLostPackets{0};
  std::atomic<std::uint32_t> mTrials{0};
  std::atomic<std::uint32_t> mFrames{0};

  std::atomic<std::uint32_t> mResentPackets{0};

  // Guards what was written and what was kept back, by the device's frame number and the packet's.
  mutable std::mutex mMutex;
  std::map<std::pair<std::uint16_t, std::uint32_t>, Datagram> mLate;
  std::map<std::uint32_t, std::vector<std::uint32_t>> mWritten;

  std::thread mControlThread;
  std::thread mStreamThread;
};
