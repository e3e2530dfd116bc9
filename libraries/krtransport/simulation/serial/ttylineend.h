#pragma once
// A tty or pseudo-terminal of the host behind a serial port, so that a real program or instrument can sit there. A tty
// that cannot be opened, or goes, leaves the line silent until it is there again.

#include "krbase/krlogger.h"
#include "krbase/wakeevent.h"
#include "simulation/serial/bytequeue.h"
#include "simulation/serial/hosttty.h"
#include "simulation/serial/ilineend.h"

#include <mutex>
#include <string>
#include <thread>

namespace krtransport {

/// Thread and ownership as ILineEnd. While the port is open a thread waits for the tty and, twice a second, for one
/// that is not there. What the port sends meanwhile is dropped.
class TtyLineEnd final : public ILineEnd {
public:
  /// What waits for the port, or for the tty, at most.
  static constexpr std::size_t kBufferBytes = 16384;

  /// aPort names the port in the log.
  TtyLineEnd(std::string aPort, std::string aPath);
  ~TtyLineEnd() override;

  void Open(std::uint32_t aRate, Waker aWaker) override;
  void Close() override;
  void SetRate(std::uint32_t aRate) override;
  std::size_t Take(const std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) override;
  std::size_t Give(std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) override;

private:
  using Lock = std::unique_lock<std::mutex>;

  struct News {
    KrLogLevel level;
    std::string text;
  };
  using AllNews = std::vector<News>;

  void Tell(const AllNews& aNews) const;
  bool OpenTty();
  void LoseTty(const KrResult& aReason);
  void Run();
  void Poll(Lock& aLock);
  bool Transfer();

  const std::string mPort;
  const std::string mPath;
  Waker mWaker;
  krbase::WakeEvent mSignal; // By it the thread hears of what it has to do.
  std::thread mThread;

  std::mutex mMutex; // Guards the members from here on.
  HostTty mTty;
  ByteQueue mFromPort;
  ByteQueue mToPort;
  std::uint32_t mRate = 0;
  bool mIsStopping = false;
  bool mIsMissing = false; // Said so in the log.
  AllNews mNews;           // To be logged without the lock.
};

} // namespace krtransport
