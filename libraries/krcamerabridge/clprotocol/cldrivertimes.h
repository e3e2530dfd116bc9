#pragma once
// How long a CL Protocol driver may take. Past a limit the process that it runs in is ended.

#include <cstddef>
#include <cstdint>

namespace krcamerabridge {

/// All in milliseconds.
struct CLDriverTimes {
  std::uint32_t accessMs = 500; ///< What a driver is told: how long the camera may take for one answer.

  std::uint32_t loadLimitMs = 10000;         ///< Loading the driver, and asking for its templates.
  std::uint32_t probeLimitMs = 60000;        ///< A probe.
  std::uint32_t descriptionLimitMs = 900000; ///< Reading a description at the lowest speed.
  std::uint32_t registerLimitMs = 10000;     ///< Reading or writing registers, beside what their bytes take.
  std::uint32_t callLimitMs = 10000;         ///< Any other call.
  std::uint32_t pendingLimitMs = 300000;     ///< A write of which the driver says that the camera is not done with it.
  std::uint32_t quietLimitMs = 10000;        ///< Without a use of the line, in any call.
  std::uint32_t cancelLimitMs = 3000;        ///< To come back from a call that was cancelled.
  std::uint32_t closeLimitMs = 4000;         ///< For all calls that give camera and driver free.
};

/// How long so many bytes of registers may take on a line of aBaudRate, in milliseconds: each is eight on the line,
/// which is what accesses of four bytes with their addresses and checks come to, and has two milliseconds of the
/// camera's own. Thread: any.
std::uint64_t GetRegisterLineMs(std::size_t aBytes, std::uint32_t aBaudRate);
/// How long a driver may take to read or write them: registerLimitMs more. Thread: any.
std::uint32_t GetRegisterLimitMs(const CLDriverTimes& aTimes, std::size_t aBytes, std::uint32_t aBaudRate);

} // namespace krcamerabridge
