#pragma once
// The line to a camera with the rules of the Camera Link serial functions, as drivers of the CL Protocol expect them:
// reading is of all bytes or none, rates are bits, results are numbers.

#include "line/icameraline.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <stop_token>
#include <vector>

namespace krcamerabridge {

/// The rate with which every line to a camera begins, in baud.
constexpr std::uint32_t kCLFirstRate = 9600;

/// Thread: one at a time. Ownership: borrows the line.
class CLSerial {
public:
  explicit CLSerial(ICameraLine& aLine) : mLine(aLine) {}

  /// Waits until all bytes are there; those that came stay for the next time when it lasts too long.
  std::int32_t Read(std::size_t aSize, std::uint32_t aTimeoutMs, const std::stop_token& aStop,
                    std::vector<std::uint8_t>& aBytes);
  std::int32_t Write(const std::vector<std::uint8_t>& aBytes, std::uint32_t aTimeoutMs, const std::stop_token& aStop);
  /// The bits of the rates that the line can have; that of the one that it has where it cannot change it.
  std::uint32_t GetSupportedRates();
  std::int32_t SetRate(std::uint32_t aBit);
  /// In baud, as it was last set; the first one, which is the slowest, where that failed. Does not ask the line.
  /// Thread: any.
  std::uint32_t GetRate() const { return mRate; }

  /// Drops what was received and not read.
  void Drop();
  /// Why the line failed last since the last Forget; OK where it did not, silence not counted.
  const KrResult& GetFailure() const { return mFailure; }
  void ForgetFailure() { mFailure = {}; }

private:
  std::int32_t Note(const KrResult& aResult);

  ICameraLine& mLine;
  std::vector<std::uint8_t> mReceived;
  std::atomic<std::uint32_t> mRate{kCLFirstRate};
  KrResult mFailure;
};

} // namespace krcamerabridge
