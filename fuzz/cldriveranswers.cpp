// Whatever a CL Protocol driver may answer to its calls, in the process that calls it: what goes to the application is
// one frame that it takes, with what the driver wrote and no more, or a refusal that says why. The driver is this
// program itself, whose functions answer from the input.

#include "clprotocol/driverwire.h"
#include "clprotocol/host/drivercalls.h"
#include "require.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace {

using namespace krcamerabridge;

constexpr std::size_t kMostBytes = std::size_t{16} << 10;
constexpr std::size_t kMostLength = 4096; // Of registers; longer ones show the same.

// What the driver has to say, from the first call to the last; zeros behind the end.
std::span<const std::uint8_t> gAnswers;

template <typename Number>
Number Take() {
  Number number = 0;
  const std::size_t size = std::min(sizeof number, gAnswers.size());
  if (size > 0)
    std::memcpy(&number, gAnswers.data(), size);
  gAnswers = gAnswers.subspan(size);
  return number;
}

// A result: mostly success, else any code.
CLINT32 TakeCode() {
  const auto kind = Take<std::uint8_t>();
  if (kind < 160)
    return CL_ERR_NO_ERR;
  return kind < 200 ? CL_ERR_BUFFER_TOO_SMALL : Take<CLINT32>();
}

// Fills a buffer, which no driver can be kept from leaving half as it was.
void Fill(CLINT8* aBuffer, std::size_t aSize) {
  const std::size_t size = std::min<std::size_t>({Take<std::uint8_t>(), aSize, gAnswers.size()});
  std::copy_n(gAnswers.begin(), size, aBuffer);
  gAnswers = gAnswers.subspan(size);
}

// Says any size, and nothing where it says nothing of it.
CLINT32 AnswerText(CLINT8* aText, CLUINT32* aSize) {
  const CLINT32 code = TakeCode();
  Fill(aText, *aSize);
  if (Take<std::uint8_t>() % 2 == 0)
    *aSize = Take<std::uint8_t>();
  else
    *aSize = Take<CLUINT32>();
  return code;
}

CLINT32 AnswerBytes(CLINT8* aBytes, CLINT64 aSize) {
  Fill(aBytes, static_cast<std::size_t>(aSize));
  return TakeCode();
}

void Log(CLUINT32, const char*, va_list) {}

std::size_t GetMostBytes(const WireFrame& aCall) {
  switch (aCall.kind) {
  case WireKind::ReadRegister:
  case WireKind::GetParam:
    return aCall.length;
  case WireKind::GetXMLDescription:
    return kWireMaxDescription;
  case WireKind::GetTemplates:
  case WireKind::Probe:
  case WireKind::GetXMLIDs:
  case WireKind::GetErrorText:
    return kWireMaxText;
  default:
    return 0;
  }
}

// The application takes the frame, and nothing is left of it.
void CheckTaken(const WireFrame& aAnswer) {
  const std::vector<std::uint8_t> bytes = MakeWireBytes(aAnswer);
  WireReader reader(WireSide::Driver);
  reader.Add(bytes);
  const std::optional<WireFrame> taken = reader.Take();
  Require(taken && taken->kind == aAnswer.kind && taken->bytes == aAnswer.bytes && taken->code == aAnswer.code);
  Require(!reader.Take() && !reader.IsBroken());
}

void CheckAnswer(const WireFrame& aCall, const WireFrame& aAnswer) {
  CheckTaken(aAnswer);
  if (aAnswer.kind == WireKind::Refusal) {
    Require(!aAnswer.bytes.empty() && aAnswer.bytes.size() <= kWireMaxText);
    return;
  }
  Require(aAnswer.kind == WireKind::Answer && aAnswer.bytes.size() <= GetMostBytes(aCall));
  Require(aAnswer.code >= 0 || aAnswer.bytes.empty());
  const bool isOfLength = aCall.kind == WireKind::ReadRegister || aCall.kind == WireKind::GetParam;
  Require(!isOfLength || aAnswer.code < 0 || aAnswer.bytes.size() == aCall.length);
}

// The calls that an application may ask for, of a kind each byte; the driver's library is the program.
void MakeCalls(std::span<const std::uint8_t> aCalls) {
  HostChannel channel(-1);
  DriverCalls calls(channel, &Log);
  const WireFrame load{.kind = WireKind::Load};
  const WireFrame loaded = calls.Make(load);
  CheckAnswer(load, loaded);
  const bool isLoaded = loaded.kind == WireKind::Answer;
  for (const std::uint8_t each : aCalls) {
    WireFrame call{.kind = static_cast<WireKind>(each % 16), .code = each, .cookie = each, .length = 16U * each};
    call.length = std::min<std::uint32_t>(call.length, kMostLength);
    call.bytes.assign(each / 16, 'x');
    if (call.kind == WireKind::Load || call.kind == WireKind::Close)
      continue;
    const WireFrame answer = calls.Make(call);
    CheckAnswer(call, answer);
    Require(isLoaded || answer.kind == WireKind::Refusal);
  }
  const WireFrame close{.kind = WireKind::Close};
  Require((calls.Make(close).kind == WireKind::Answer) == isLoaded);
  Require(calls.Make(close).kind == WireKind::Refusal);
}

} // namespace

extern "C" {

[[gnu::visibility("default")]] CLINT32 clpInitLib(CLLogger, CLUINT32) {
  return TakeCode();
}
[[gnu::visibility("default")]] CLINT32 clpCloseLib() {
  return TakeCode();
}
[[gnu::visibility("default")]] CLINT32 clpGetCLProtocolVersion(CLUINT32* aMajor, CLUINT32* aMinor) {
  const auto version = Take<std::uint8_t>();
  *aMajor = version < 0xF0 ? 1 : Take<CLUINT32>();
  *aMinor = version % 4;
  return TakeCode();
}
[[gnu::visibility("default")]] CLINT32 clpGetShortDeviceIDTemplates(CLINT8* aTemplates, CLUINT32* aSize) {
  return AnswerText(aTemplates, aSize);
}
[[gnu::visibility("default")]] CLINT32 clpProbeDevice(ISerial*, const CLINT8*, CLINT8* aDeviceID, CLUINT32* aSize,
                                                      CLUINT32* aCookie, CLUINT32) {
  *aCookie = Take<CLUINT32>();
  return AnswerText(aDeviceID, aSize);
}
[[gnu::visibility("default")]] CLINT32 clpGetXMLIDs(ISerial*, CLUINT32, CLINT8* aXMLIDs, CLUINT32* aSize, CLUINT32) {
  return AnswerText(aXMLIDs, aSize);
}
[[gnu::visibility("default")]] CLINT32 clpGetXMLDescription(ISerial*, CLUINT32, const CLINT8*, CLINT8* aText,
                                                            CLUINT32* aSize, CLUINT32) {
  return AnswerText(aText, aSize);
}
[[gnu::visibility("default")]] CLINT32 clpReadRegister(ISerial*, CLUINT32, CLINT64, CLINT8* aBytes, CLINT64 aSize,
                                                       CLUINT32) {
  return AnswerBytes(aBytes, aSize);
}
[[gnu::visibility("default")]] CLINT32 clpWriteRegister(ISerial*, CLUINT32, CLINT64, const CLINT8*, CLINT64, CLUINT32) {
  return TakeCode();
}
[[gnu::visibility("default")]] CLINT32 clpContinueWriteRegister(ISerial*, CLUINT32, BOOL8, CLUINT32) {
  return TakeCode();
}
[[gnu::visibility("default")]] CLINT32 clpGetErrorText(CLINT32, CLINT8* aText, CLUINT32* aSize, CLUINT32) {
  return AnswerText(aText, aSize);
}
[[gnu::visibility("default")]] CLINT32 clpDisconnect(CLUINT32) {
  return TakeCode();
}
[[gnu::visibility("default")]] CLINT32 clpGetParam(ISerial*, CLINT32, CLUINT32, CLINT8* aBuffer, CLINT64 aSize,
                                                   CLUINT32) {
  return AnswerBytes(aBuffer, aSize);
}
[[gnu::visibility("default")]] CLINT32 clpSetParam(ISerial*, CLINT32, CLUINT32, const CLINT8*, CLINT64, CLUINT32) {
  return TakeCode();
}
[[gnu::visibility("default")]] CLINT32 clpIsParamSupported(CLINT32) {
  return TakeCode();
}

// The first byte says how many of the next ones are calls; what is behind them the driver has to say.
int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0 || aSize > kMostBytes)
    return 0;
  const std::span bytes(aData + 1, aSize - 1);
  const std::span calls = bytes.first(std::min<std::size_t>(aData[0] % 8, bytes.size()));
  gAnswers = bytes.subspan(calls.size());
  MakeCalls(calls);
  return 0;
}

} // extern "C"
