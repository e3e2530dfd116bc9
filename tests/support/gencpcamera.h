#pragma once
// A small GenCP camera at the end of a serial line, written from the standard alone, and a line that loses, doubles and
// changes bytes and garbles them when its ends are set to different rates.

#include "krsystem/ibytechannel.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace krtest {

/// Both ends of a line, as the host's device and the camera set them.
struct WireEnds {
  std::atomic<std::uint32_t> hostRate{9600};
  std::atomic<std::uint32_t> cameraRate{9600};

  /// The camera changes its rate behind its acknowledge: false when it has not within a generous limit.
  bool AwaitCameraRate(std::uint32_t aRate) const;
};

/// What the camera and its line do wrong; all of it may be changed at any time.
struct CameraFaults {
  double lost = 0;    ///< Of all bytes, in both directions.
  double doubled = 0; ///< Likewise.
  double changed = 0; ///< Likewise.
  bool isSilent = false;
  bool hasNoise = false;               ///< Instead of an answer of a silent camera come bytes that are none.
  std::size_t mostHeard = 0;           ///< Commands to more bytes are not heard; 0 for no limit.
  std::uint64_t deafFrom = UINT64_MAX; ///< Commands for addresses from here on are not heard either.
  bool hasRubbish = false;         ///< Bytes that belong to nothing stand before each answer, also halves of packets.
  bool hasForeignAnswers = false;  ///< Before each answer come those to another request and on another channel.
  int wrongLengths = 0;            ///< So many answers to reads lack their last byte, with checksums that fit.
  /// So many second orders of a rate are not heard, as if they came too late: it goes back to the rate of before.
  int lostConfirmations = 0;
  int lostConfirmationAnswers = 0; ///< So many of them are heard, but not answered.
  int lostAnswers = 0;             ///< So many answers are not sent, repeated ones among them.
  int refusedRepeats = 0;          ///< So many commands that come again are answered by refusal alone.
  std::uint16_t refusal = 0;
  int halfWrites = 0;     ///< So many writes are done by half, as their answers say.
  int busyAnswers = 0;    ///< So many commands get the status that it is busy.
  int pendingAnswers = 0; ///< So many times it asks for time, pendingMs each, before it carries out a command.
  std::uint16_t pendingMs = 0;
  std::uint64_t pendingFrom = 0;        ///< Only for addresses from here on,
  std::uint64_t pendingTo = UINT64_MAX; ///< up to here.
  std::uint16_t lateMs = 0;             ///< So much longer it takes then.
  int damagedAnswers = 0;               ///< So many answers have a wrong last byte.
  std::uint64_t damagedFrom = 0;        ///< Only to commands for addresses from here on.
};

/// What it has heard.
struct HeardCommand {
  std::uint16_t flags = 0;
  std::uint16_t command = 0;
  std::uint16_t request = 0;
  std::uint64_t address = 0;
  std::size_t bytes = 0; ///< To be read or written.
};

/// Registers, faults and rates may be changed and looked at while it runs.
///
/// Thread: any.
class GenCPCamera {
public:
  GenCPCamera();
  ~GenCPCamera();
  GenCPCamera(const GenCPCamera&) = delete;
  GenCPCamera& operator=(const GenCPCamera&) = delete;

  static constexpr std::uint64_t kSerialMap = 0x10000;
  static constexpr std::uint64_t kManifest = 0x20000;
  static constexpr std::uint64_t kFiles = 0x100000;
  static constexpr std::uint64_t kFeatures = 0x80000000;

  /// The line as a device of the host gives it.
  std::shared_ptr<krsystem::IByteChannel> GetChannel();
  std::shared_ptr<WireEnds> GetWire() { return mWire; }

  /// Registers that were not set do not exist.
  void Poke(std::uint64_t aAddress, const std::vector<std::uint8_t>& aBytes);
  void PokeNumber(std::uint64_t aAddress, std::size_t aSize, std::uint64_t aValue);
  std::vector<std::uint8_t> Peek(std::uint64_t aAddress, std::size_t aSize);
  std::uint64_t PeekNumber(std::uint64_t aAddress, std::size_t aSize);
  /// Adds a file and its entry of the manifest table; aKind is the second word of the entry.
  void AddFile(std::uint32_t aVersion, std::uint32_t aKind, const std::string& aContent,
               const std::vector<std::uint8_t>& aSha1 = {});

  void SetFaults(const CameraFaults& aFaults);
  /// What is left of those that were counted.
  CameraFaults GetFaults();
  /// How many bytes were lost, doubled or changed.
  int CountFaults() const { return mFaultCount; }
  /// Most bytes that it reads, or writes, by one command; more is an invalid parameter. 0 for no limit.
  void SetMost(std::size_t aRead, std::size_t aWritten);
  /// Its heartbeat runs out, or it was switched off and on: nobody has control, and the rate is the default.
  void Forget();
  /// It gives nobody control.
  void RefuseControl(bool aRefuses);

  std::vector<HeardCommand> TakeHeard();
  /// The writes that it has carried out.
  std::vector<HeardCommand> TakeWrites();
  /// False when there are not so many within a generous limit.
  bool AwaitHeard(std::size_t aCount);
  bool AwaitReadsOf(std::uint64_t aAddress, int aCount);
  bool AwaitWritesTo(std::uint64_t aAddress, int aCount);

private:
  using Bytes = std::vector<std::uint8_t>;

  bool AwaitCommands(std::uint16_t aCommand, std::uint64_t aAddress, int aCount);
  void Work();
  void Hear(const Bytes& aBytes);
  void OnQuiet();
  void Handle(const Bytes& aPacket);
  bool Ignores(const HeardCommand& aHeard);
  bool Repeat(const HeardCommand& aHeard);
  bool Delay(const HeardCommand& aHeard);
  Bytes Execute(const HeardCommand& aHeard, const Bytes& aData, std::uint16_t& aStatus);
  Bytes ExecuteWrite(const HeardCommand& aHeard, Bytes aData, std::uint16_t& aStatus);
  std::uint16_t Write(std::uint64_t aAddress, const Bytes& aData);
  bool Has(std::uint64_t aAddress, std::size_t aSize) const;
  void Acknowledge(std::uint16_t aStatus, std::uint16_t aCommand, std::uint16_t aRequest, const Bytes& aData);
  void Send(const Bytes& aBytes);
  Bytes Spoil(const Bytes& aBytes);
  void SetRate(std::uint32_t aRate);

  const std::shared_ptr<WireEnds> mWire = std::make_shared<WireEnds>();
  int mCameraEnd = -1;
  std::shared_ptr<krsystem::IByteChannel> mChannel;
  std::atomic<int> mFaultCount{0};
  std::atomic<bool> mIsEnding{false};

  std::mutex mMutex; // Guards what follows.
  std::condition_variable mChanged;
  std::map<std::uint64_t, std::uint8_t> mRegisters;
  CameraFaults mFaults;
  std::vector<HeardCommand> mHeard;
  std::vector<HeardCommand> mWrites;
  std::size_t mMostRead = 0;
  std::size_t mMostWritten = 0;
  bool mRefusesControl = false;
  std::size_t mFileCount = 0;
  std::uint64_t mFileEnd = kFiles;
  bool mAwaitsConfirmation = false; // Of the rate that it has.
  std::uint32_t mRateBefore = 9600;
  std::uint32_t mNextRate = 0; // After the answer that is sent now.
  std::mt19937 mRandom{20260101};
  Bytes mBuffer;
  bool mIsFlushing = false;
  std::uint64_t mAddress = 0; // Of the command that is heard now.
  std::optional<std::uint16_t> mLastRequest;
  Bytes mLastAnswer;

  std::thread mThread;
};

} // namespace krtest
