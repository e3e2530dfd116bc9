#pragma once
// Where a device says that its description is, and the bytes that are there. What the bytes are is left to
// KrGenDescription.

#include "description/descriptionurl.h"
#include "krbase/krresult.h"
#include "krgenicam/krgendescription.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace krgenicam {

/// Thread: one at a time. Ownership: borrows the port.
class DescriptionLocator {
public:
  /// Called with the bytes of one place and the place's name; success ends the search.
  using Take = std::function<KrResult(const std::string& aBytes, const std::string& aOrigin)>;

  DescriptionLocator(IKrRegisterPort& aPort, std::uint32_t aTimeoutMs, const std::stop_token& aCancel)
      : mPort(aPort), mTimeoutMs(aTimeoutMs), mCancel(aCancel) {}

  /// Tries one place after the other until aTake is content. The failure of the first place otherwise, with the reasons
  /// of all; Aborted and ConnectionLost at once.
  KrResult Find(KrGenBootstrap aBootstrap, const Take& aTake);

private:
  using Bytes = std::vector<unsigned char>;

  void TryGigEVision(const Take& aTake);
  void TryGenCP(const Take& aTake);
  void TryGigEManifest(const Take& aTake);
  void TryUrl(const std::string& aName, std::uint64_t aAddress, const Take& aTake);
  void TryRange(const std::string& aName, const std::string& aOrigin, const RegisterRange& aRange, const Take& aTake);

  KrResult ReadBytes(const RegisterRange& aRange, Bytes& aBytes);
  bool ReadNumber(const std::string& aName, std::uint64_t aAddress, std::size_t aBytes, bool aIsBigEndian,
                  std::uint64_t& aValue);
  bool IsGenCPBigEndian();
  bool Note(const std::string& aName, const KrResult& aResult);
  bool IsOver() const;

  IKrRegisterPort& mPort;
  const std::uint32_t mTimeoutMs;
  const std::stop_token mCancel;
  bool mHasAnswered = false;  // Any register was read.
  KrResult mFirst;            // The first failure.
  KrResult mEnd;              // A failure that ends the search.
  std::string mReasons;       // Of all places.
  std::size_t mAlignment = 1; // Registers are read in multiples of as many bytes.
  bool mIsFound = false;
};

} // namespace krgenicam
