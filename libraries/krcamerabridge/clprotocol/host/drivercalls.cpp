#include "clprotocol/host/drivercalls.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace krcamerabridge {

namespace {

constexpr CLUINT32 kMajor = 1;
constexpr CLUINT32 kFirstMinorThatStops = 2;
constexpr std::size_t kTextBuffer = kWireMaxText / 4;
constexpr std::size_t kDescriptionBuffer = std::size_t{1} << 20;

WireFrame Refuse(std::string_view aWhy) {
  aWhy = aWhy.substr(0, kWireMaxText);
  return {.kind = WireKind::Refusal, .bytes = {aWhy.begin(), aWhy.end()}};
}

WireFrame Answer(CLINT32 aCode) {
  return {.kind = WireKind::Answer, .code = aCode};
}

std::string GetText(const WireFrame& aCall) {
  return {aCall.bytes.begin(), aCall.bytes.end()};
}

// Calls with a buffer that grows to what the driver says it needs.
template <typename Call>
WireFrame AskText(std::size_t aSize, std::size_t aMost, Call aCall) {
  constexpr int kMostCalls = 4;
  std::vector<char> buffer;
  for (int i = 0; i < kMostCalls; ++i) {
    buffer.assign(aSize, 0);
    auto size = static_cast<CLUINT32>(aSize);
    const CLINT32 code = aCall(buffer.data(), &size);
    if (code == CL_ERR_BUFFER_TOO_SMALL && size > aMost)
      return Refuse("it wants a buffer of " + std::to_string(size) + " bytes");
    if (code == CL_ERR_BUFFER_TOO_SMALL && size > aSize) {
      aSize = size;
      continue;
    }
    if (code < 0)
      return Answer(code);
    if (size > aSize)
      return Refuse("it says to have written " + std::to_string(size) + " bytes into a buffer of " +
                    std::to_string(aSize));
    WireFrame answer = Answer(code);
    answer.bytes.assign(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(size));
    return answer;
  }
  return Refuse("it wants a larger buffer again and again");
}

} // namespace

WireFrame DriverCalls::Make(const WireFrame& aCall) {
  if (mIsLoaded == (aCall.kind == WireKind::Load))
    return Refuse(mIsLoaded ? "it is loaded already" : "it is not loaded");
  switch (aCall.kind) {
  case WireKind::Load:
    return Load(aCall);
  case WireKind::GetTemplates:
    return AskText(kTextBuffer, kWireMaxText, mLibrary.getTemplates);
  case WireKind::Probe:
    return Probe(aCall);
  case WireKind::GetXMLIDs:
    return AskText(kTextBuffer, kWireMaxText, [&](char* aText, CLUINT32* aSize) {
      return mLibrary.getXMLIDs(&mSerial, aCall.cookie, aText, aSize, aCall.timeoutMs);
    });
  case WireKind::GetXMLDescription:
    return GetXMLDescription(aCall);
  case WireKind::ReadRegister:
    return ReadRegister(aCall);
  case WireKind::WriteRegister:
    return WriteRegister(aCall);
  case WireKind::ContinueWrite:
    return Answer(mLibrary.continueWrite(&mSerial, aCall.cookie, aCall.length != 0 ? 1 : 0, aCall.timeoutMs));
  case WireKind::GetErrorText:
    return AskText(kTextBuffer, kWireMaxText, [&](char* aText, CLUINT32* aSize) {
      return mLibrary.getErrorText(aCall.code, aText, aSize, aCall.cookie);
    });
  case WireKind::Disconnect:
    return Answer(mLibrary.disconnect(aCall.cookie));
  case WireKind::GetParam:
    return GetParam(aCall);
  case WireKind::SetParam:
    return SetParam(aCall);
  case WireKind::Close:
    return Close();
  default:
    return Refuse("it cannot be asked that");
  }
}

void DriverCalls::StopProbe() {
  const std::lock_guard lock(mStopMutex);
  if (mStopper == nullptr)
    return;
  mStops.emplace_back([this, stopper = mStopper] {
    const char isToStop = 1;
    // A probe that does not stop meets its limit.
    static_cast<void>(stopper(&mSerial, CLP_STOP_PROBE_DEVICE, 0, &isToStop, sizeof isToStop, 0));
  });
}

WireFrame DriverCalls::Load(const WireFrame& aCall) {
  if (const std::string why = mLibrary.Load(GetText(aCall)); !why.empty())
    return Refuse(why);
  WireFrame answer = Answer(CL_ERR_NO_ERR);
  if (const CLINT32 code = mLibrary.getVersion(&answer.cookie, &answer.length); code < 0)
    return Refuse("clpGetCLProtocolVersion failed with error " + std::to_string(code));
  if (answer.cookie != kMajor)
    return Refuse("it is of version " + std::to_string(answer.cookie) + '.' + std::to_string(answer.length) +
                  " of the standard, of which only 1.x is known");
  if (mLibrary.initLib != nullptr) {
    if (const CLINT32 code = mLibrary.initLib(mLogger, CLP_LOG_INFO); code < 0)
      return Refuse("clpInitLib failed with error " + std::to_string(code));
  }
  if (answer.length >= kFirstMinorThatStops) {
    const std::lock_guard lock(mStopMutex);
    mStopper = mLibrary.setParam;
  }
  mIsLoaded = true;
  return answer;
}

WireFrame DriverCalls::Probe(const WireFrame& aCall) {
  const std::string clTemplate = GetText(aCall);
  CLUINT32 cookie = 0;
  WireFrame answer = AskText(kTextBuffer, kWireMaxText, [&](char* aText, CLUINT32* aSize) {
    cookie = 0;
    return mLibrary.probe(&mSerial, clTemplate.c_str(), aText, aSize, &cookie, aCall.timeoutMs);
  });
  answer.cookie = cookie;
  return answer;
}

WireFrame DriverCalls::GetXMLDescription(const WireFrame& aCall) {
  const std::string xmlID = GetText(aCall);
  return AskText(kDescriptionBuffer, kWireMaxDescription, [&](char* aText, CLUINT32* aSize) {
    return mLibrary.getXMLDescription(&mSerial, aCall.cookie, xmlID.c_str(), aText, aSize, aCall.timeoutMs);
  });
}

WireFrame DriverCalls::ReadRegister(const WireFrame& aCall) {
  std::vector<char> buffer(aCall.length);
  WireFrame answer = Answer(mLibrary.readRegister(&mSerial, aCall.cookie, static_cast<CLINT64>(aCall.address),
                                                  buffer.data(), aCall.length, aCall.timeoutMs));
  if (answer.code >= 0)
    answer.bytes.assign(buffer.begin(), buffer.end());
  return answer;
}

WireFrame DriverCalls::WriteRegister(const WireFrame& aCall) {
  const std::string bytes = GetText(aCall);
  return Answer(mLibrary.writeRegister(&mSerial, aCall.cookie, static_cast<CLINT64>(aCall.address), bytes.data(),
                                       static_cast<CLINT64>(bytes.size()), aCall.timeoutMs));
}

WireFrame DriverCalls::GetParam(const WireFrame& aCall) {
  if (mLibrary.getParam == nullptr ||
      (mLibrary.isParamSupported != nullptr && mLibrary.isParamSupported(aCall.code) < 0))
    return Answer(CL_ERR_PARAM_NOT_SUPPORTED);
  std::vector<char> buffer(aCall.length);
  WireFrame answer =
      Answer(mLibrary.getParam(&mSerial, aCall.code, aCall.cookie, buffer.data(), aCall.length, aCall.timeoutMs));
  if (answer.code >= 0)
    answer.bytes.assign(buffer.begin(), buffer.end());
  return answer;
}

WireFrame DriverCalls::SetParam(const WireFrame& aCall) {
  if (mLibrary.setParam == nullptr ||
      (mLibrary.isParamSupported != nullptr && mLibrary.isParamSupported(aCall.code) < 0))
    return Answer(CL_ERR_PARAM_NOT_SUPPORTED);
  const std::string bytes = GetText(aCall);
  return Answer(mLibrary.setParam(&mSerial, aCall.code, aCall.cookie, bytes.data(), static_cast<CLINT64>(bytes.size()),
                                  aCall.timeoutMs));
}

WireFrame DriverCalls::Close() {
  std::vector<std::jthread> stops;
  {
    const std::lock_guard lock(mStopMutex);
    mStopper = nullptr;
    stops.swap(mStops);
  }
  // The driver may be in one of them still.
  stops.clear();
  mIsLoaded = false;
  const CLINT32 code = mLibrary.closeLib != nullptr ? mLibrary.closeLib() : CL_ERR_NO_ERR;
  mLibrary.Unload();
  return Answer(code);
}

} // namespace krcamerabridge
