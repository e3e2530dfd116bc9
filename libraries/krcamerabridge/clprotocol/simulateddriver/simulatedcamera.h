#pragma once
// A simulated camera as the standard wants to have one: identifier, descriptions, registers, baud rate. The standard's
// functions are left to driver.cpp.

#include "clprotocol/clprotocolapi.h"
#include "clprotocol/simulateddriver/cameratalk.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

namespace krsimulatedcl {

/// What the identifiers of all simulated cameras begin with: the template of the driver.
constexpr const char* kTemplate = "KrGUI#Simulated";

/// Results are numbers of the standard, or kFirstError less a camera's status.
///
/// Thread: one at a time.
class SimulatedCamera {
public:
  /// The way to the camera, to be told the line before each call.
  CameraTalk& GetTalk() { return mTalk; }

  /// Finds it, whatever its rate, and puts it and the line to the lowest; ended by aIsToStop.
  CLINT32 Find(CLUINT32 aTimeoutMs, const std::atomic<bool>& aIsToStop);
  const std::string& GetID() const { return mID; }

  /// Of the descriptions that it has, parted by TAB.
  CLINT32 GetXMLIDs(std::string& aXMLIDs);
  /// Where a description is, and its bytes as they are stored: a text, or a ZIP archive.
  CLINT32 FindDescription(const std::string& aXMLID, std::uint32_t& aIndex, std::uint32_t& aSize);
  CLINT32 ReadDescription(std::uint32_t aIndex, std::uint32_t aSize, char* aBytes);

  CLINT32 Read(std::uint32_t aAddress, char* aBytes, std::uint32_t aSize);
  /// PENDING_WRITE while the camera has not done it yet.
  CLINT32 Write(std::uint32_t aAddress, const std::string& aBytes);
  CLINT32 ContinueWrite();

  /// The bits of the rates that the camera has, and how it gets another one.
  CLINT32 GetRates(CLUINT32& aCurrent, CLUINT32& aSupported);
  CLINT32 SetRate(CLUINT32 aRate);

private:
  CLINT32 Identify(int aTries);

  CameraTalk mTalk;
  std::string mID;
  std::string mModel; // The identifier without what is this camera's alone.
  std::chrono::steady_clock::time_point mPendingUntil;
};

} // namespace krsimulatedcl
