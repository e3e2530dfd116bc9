#pragma once
// What is said with a camera through its CL Protocol driver from the beginning to the end: found, described, fast,
// given free. Threads and limits of callers are left to CLProtocolPort.

#include "clprotocol/cldriver.h"
#include "clprotocol/cldriverlist.h"
#include "clprotocol/cldrivertimes.h"
#include "clprotocol/clidentifiers.h"
#include "krgenicam/krgendescription.h"
#include "line/formerrate.h"
#include "line/icameraline.h"
#include "line/sessionport.h"

#include <cstdint>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace krcamerabridge {

/// Results as of CLProtocolPort. Thread: one at a time. Ownership: borrows the line.
class CLSession final : public ILineSession {
public:
  CLSession(ICameraLine& aLine, const CLDriverTimes& aTimes) : mLine(aLine), mTimes(aTimes), mFormerRate(aLine) {}
  /// Closes.
  ~CLSession() override;
  CLSession(const CLSession&) = delete;
  CLSession& operator=(const CLSession&) = delete;

  /// Finds the driver that has a template, and the camera.
  KrResult Open(const std::string& aTemplate, const std::stop_token& aStop);
  /// "Directory#FileName#Manufacturer…".
  std::string GetCameraID() const;
  /// The identifiers of the camera's descriptions, the driver's and those of files beside it, the best first.
  KrResult GetXMLIDs(std::vector<std::string>& aXMLIDs, const std::stop_token& aStop);
  /// Goes up to the best rate of camera and line, where the driver can.
  KrResult GoFast(const std::stop_token& aStop);
  /// One that GetXMLIDs gave: from a file, else from the driver.
  KrResult ReadDescription(const std::string& aXMLID, KrGenDescription& aDescription, const std::stop_token& aStop);
  /// Gives the camera free, puts camera and line back to their rates, as far as driver and camera answer soon, and ends
  /// the driver.
  void Close(const std::stop_token& aStop) override;
  /// Ends the driver.
  void Abandon() override { mAbandoned.request_stop(); }

  std::uint64_t GetLineMs(std::size_t aBytes) const override;
  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) override;
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData, const std::stop_token& aStop) override;
  /// Reads again what was read last, and else finds the camera again.
  KrResult Probe(const std::stop_token& aStop) override;

private:
  KrResult StartDriver(const CLFullID& aTemplate, const std::stop_token& aStop);
  KrResult FindCamera(const std::string& aTemplate, std::uint32_t aBaudRate, const std::stop_token& aStop);
  KrResult SetRate(std::uint32_t aBit, const std::stop_token& aStop);
  void ReleaseCamera();
  KrResult Judge(const KrResult& aResult, const CLDriver::Said& aSaid, const char* aAttempt,
                 const std::stop_token& aStop);
  KrResult JudgeAccess(const KrResult& aResult, const CLDriver::Said& aSaid, const char* aAttempt,
                       const std::stop_token& aStop);

  ICameraLine& mLine;
  const CLDriverTimes mTimes;
  FormerRate mFormerRate;
  std::stop_source mAbandoned;
  std::unique_ptr<CLDriver> mDriver;
  std::uint32_t mFastBit = 0; // The rate that was gone up to; 0 for none.
  std::uint32_t mCookie = 0;  // 0 while no camera is found.
  std::string mShortID;
  std::uint64_t mLastAddress = 0; // Of what was read last; nothing was while the size is 0.
  std::size_t mLastSize = 0;
};

} // namespace krcamerabridge
