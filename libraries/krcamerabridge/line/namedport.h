#pragma once
// A camera's registers as its parameters reach them: names the camera where it keeps silent, and notes whether it
// answers. Reading and writing is left to the port of the way that it is connected by.

#include "krbase/krstring.h"
#include "krgenicam/ikrregisterport.h"
#include "line/cameraanswers.h"

#include <utility>

namespace krcamerabridge {

/// Thread: any. Ownership: borrows port and answers.
class NamedPort final : public IKrRegisterPort {
public:
  NamedPort(IKrRegisterPort& aPort, KrString aName, CameraAnswers& aAnswers)
      : mPort(aPort), mName(std::move(aName)), mAnswers(aAnswers) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override {
    return Take(mPort.Read(aAddress, aData, aLength, aTimeoutMs, aCancel));
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override {
    return Take(mPort.Write(aAddress, aData, aLength, aTimeoutMs, aCancel));
  }

private:
  // Loss is the device's, whose words name it.
  KrResult Take(KrResult aResult) {
    if (aResult == KrResult::Code::TimeLimitExceeded)
      aResult = {aResult.GetCode(), mName + ": " + aResult.GetDescription()};
    mAnswers.Note(aResult);
    return aResult;
  }

  IKrRegisterPort& mPort;
  const KrString mName;
  CameraAnswers& mAnswers;
};

} // namespace krcamerabridge
