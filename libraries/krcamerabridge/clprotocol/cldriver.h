#pragma once
// A CL Protocol driver in a process of its own: its functions, each with a limit. In which order they are called is
// left to CLSession.

#include "clprotocol/cldriverlist.h"
#include "clprotocol/cldrivertimes.h"
#include "clprotocol/clserial.h"
#include "clprotocol/driverwire.h"
#include "clprotocol/hostprocess.h"
#include "krbase/krresult.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace krcamerabridge {

/// Results of all calls: TimeLimitExceeded for a driver that does not come back within its limit and is ended,
/// SystemError for one that ended by itself, is ended, or says what cannot be; Aborted by aStop. What the driver itself
/// says is in its own code: 0, above for success with information, below for errors.
///
/// Thread: one at a time. Ownership: owns the process; borrows the line.
class CLDriver {
public:
  /// A call, and what the driver says to it.
  struct Said {
    std::int32_t code = 0;
    std::uint32_t cookie = 0;
    std::vector<std::uint8_t> bytes = {};
  };

  /// aLine is null for what needs no camera. Once aAbandoned is stopped nobody waits for the driver any more: the call
  /// that runs, and every later one, ends the process at once, with Aborted.
  CLDriver(const CLDriverFile& aFile, const CLDriverTimes& aTimes, ICameraLine* aLine,
           const std::stop_token& aAbandoned = {});
  /// Ends the process; Close comes before where the driver is to know of it.
  ~CLDriver() = default;
  CLDriver(const CLDriver&) = delete;
  CLDriver& operator=(const CLDriver&) = delete;

  /// Starts the process and loads the driver.
  KrResult Start(const std::stop_token& aStop);
  /// False before Start, and after the process has ended, for whatever reason.
  bool IsRunning() const { return mProcess != nullptr; }
  /// From now on all calls together, Close included, have the time for closing. Close begins it where nobody has.
  void BeginClosing() { mClosedUntil = Clock::now() + std::chrono::milliseconds(mTimes.closeLimitMs); }
  /// Has the driver end what it does, as far as it runs, and ends the process.
  void Close();
  const CLDriverFile& GetFile() const { return mFile; }
  CLSerial* GetSerial() { return mSerial ? &*mSerial : nullptr; }

  KrResult GetTemplates(std::vector<std::string>& aTemplates, const std::stop_token& aStop);
  /// bytes are the camera's short identifier.
  KrResult Probe(const std::string& aTemplate, Said& aSaid, const std::stop_token& aStop);
  KrResult GetXMLIDs(std::uint32_t aCookie, Said& aSaid, const std::stop_token& aStop);
  KrResult GetXMLDescription(std::uint32_t aCookie, const std::string& aXMLID, Said& aSaid,
                             const std::stop_token& aStop);
  /// Where the code is no error the bytes are as many as were asked for.
  KrResult ReadRegister(std::uint32_t aCookie, std::uint64_t aAddress, std::size_t aSize, Said& aSaid,
                        const std::stop_token& aStop);
  /// Continues as long as the driver says that the camera is not done, up to the limit for that, which is a
  /// TimeLimitExceeded; then, and by aStop, cancels.
  KrResult WriteRegister(std::uint32_t aCookie, std::uint64_t aAddress, std::span<const std::uint8_t> aBytes,
                         Said& aSaid, const std::stop_token& aStop);
  /// Parameters of four bytes.
  KrResult GetParam(std::uint32_t aCookie, std::int32_t aParam, std::uint32_t& aValue, Said& aSaid,
                    const std::stop_token& aStop);
  KrResult SetParam(std::uint32_t aCookie, std::int32_t aParam, std::uint32_t aValue, Said& aSaid,
                    const std::stop_token& aStop);
  KrResult Disconnect(std::uint32_t aCookie, Said& aSaid, const std::stop_token& aStop);

  /// What an error number means: in the driver's words, else the line's, else the standard's.
  std::string GetErrorWords(std::int32_t aCode, std::uint32_t aCookie, const std::stop_token& aStop);

private:
  struct Limits;
  using Clock = HostProcess::Clock;

  std::uint32_t GetRegisterLimit(std::size_t aBytes) const;
  KrResult ContinueWrite(std::uint32_t aCookie, Said& aSaid, const std::stop_token& aStop);
  KrResult CancelWrite(std::uint32_t aCookie, KrResult::Code aWhy);
  Limits MakeLimits(std::uint32_t aLimitMs) const;
  KrResult Call(const WireFrame& aCall, std::uint32_t aLimitMs, Said& aSaid, const std::stop_token& aStop);
  KrResult Await(const WireFrame& aCall, Limits& aLimits, WireFrame& aAnswer, const std::stop_token& aStop);
  KrResult Miss(HostProcess::Event aEvent, const WireFrame& aCall, const Limits& aLimits);
  std::string DescribeLimit(const Limits& aLimits) const;
  void Cancel(const WireFrame& aCall, Limits& aLimits);
  bool Serve(const WireFrame& aUse, Limits& aLimits, const std::stop_token& aStop);
  WireFrame UseLine(const WireFrame& aUse, std::uint32_t aTimeoutMs, const std::stop_token& aStop);
  KrResult Fail(KrResult::Code aCode, const std::string& aWords);

  const CLDriverFile mFile;
  const CLDriverTimes mTimes;
  const std::stop_token mAbandoned;
  std::optional<Clock::time_point> mClosedUntil;
  std::optional<CLSerial> mSerial;
  std::unique_ptr<HostProcess> mProcess; // Null while none runs.
  int mLogged = 0;                       // Of what the driver wants to have logged.
  KrResult mEnd{KrResult::Code::SystemError, "The CL Protocol driver was not started."}; // Why none runs.
};

} // namespace krcamerabridge
