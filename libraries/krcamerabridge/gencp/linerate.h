#pragma once
// How fast camera and line talk (GenCP 1.3.1, baud rate change): finds out at start, goes up to the fastest rate that
// both have, and comes back.

#include "gencp/commandcycle.h"
#include "gencp/devicememory.h"
#include "krbase/krresult.h"
#include "line/icameraline.h"

#include <cstdint>
#include <stop_token>
#include <vector>

namespace krcamerabridge {

/// The rate at which every camera starts, and to which it falls back.
constexpr std::uint32_t kDefaultBaudRate = 9600;

/// Thread: one at a time. Ownership: borrows all that it is made of.
class LineRate {
public:
  LineRate(ICameraLine& aLine, CommandCycle& aCycle, DeviceMemory& aMemory);

  /// Looks for the camera at the default rate, then at the others that the line can have, as it may not have
  /// heard yet that its last user is gone. NotFound when it does not answer at any.
  KrResult FindCamera(const std::stop_token& aStop);
  /// Looks for a camera that does not answer any more, at the rate where it was and at the default rate.
  /// TimeLimitExceeded when it is at neither.
  KrResult FindCameraAgain(const std::stop_token& aStop);
  /// Goes up to the fastest rate that both have. OK also where it stays as it is, as long as the camera answers.
  KrResult Raise(std::uint64_t aSerialMap, const std::stop_token& aStop);
  /// Brings the camera back to the default rate.
  KrResult Lower(std::uint64_t aSerialMap, const std::stop_token& aStop);
  /// The camera has gone back to the default rate by itself; so does the line.
  void FollowToDefault();
  /// Puts the line back to where it was before.
  void RestoreLine();

  std::uint32_t Get() const { return mCycle.GetBaudRate(); }

private:
  bool IsSettable(std::uint32_t aBaudRate) const;
  KrResult SetLine(std::uint32_t aBaudRate);
  KrResult ProbeAt(std::uint32_t aBaudRate, int aTries, const std::stop_token& aStop);
  KrResult Change(std::uint64_t aSerialMap, std::uint32_t aBaudRate, const std::stop_token& aStop);
  KrResult Settle(std::uint32_t aOld, std::uint32_t aNew, const std::stop_token& aStop);

  ICameraLine& mLine;
  CommandCycle& mCycle;
  DeviceMemory& mMemory;
  std::vector<std::uint32_t> mSupported; // By the line; empty where nothing can be set.
  std::uint32_t mBefore = 0;             // 0 where it was not known.
};

/// The register's bit for a rate; 0 for one that GenCP does not have.
std::uint32_t GetBaudRateBit(std::uint32_t aBaudRate);

} // namespace krcamerabridge
