#include "clprotocol/host/hostserial.h"

#include "clprotocol/driverwire.h"

#include <cstring>

namespace krcamerabridge {

CLINT32 HostSerial::clSerialRead(CLINT8* aBuffer, CLUINT32* aSize, CLUINT32 aTimeoutMs) {
  if (aSize == nullptr || (aBuffer == nullptr && *aSize > 0))
    return CL_ERR_INVALID_PTR;
  if (*aSize > kWireMaxAccess)
    return CL_ERR_OUT_OF_MEMORY;
  const WireFrame answer = mChannel.AskLine({.kind = WireKind::LineRead, .length = *aSize, .timeoutMs = aTimeoutMs});
  if (answer.code < 0)
    return answer.code;
  if (answer.bytes.size() != *aSize)
    return CL_ERR_TIMEOUT;
  if (*aSize > 0)
    std::memcpy(aBuffer, answer.bytes.data(), *aSize);
  return answer.code;
}

CLINT32 HostSerial::clSerialWrite(CLINT8* aBuffer, CLUINT32* aSize, CLUINT32 aTimeoutMs) {
  if (aSize == nullptr || (aBuffer == nullptr && *aSize > 0))
    return CL_ERR_INVALID_PTR;
  if (*aSize > kWireMaxAccess)
    return CL_ERR_OUT_OF_MEMORY;
  return mChannel.AskLine({.kind = WireKind::LineWrite, .timeoutMs = aTimeoutMs, .bytes = {aBuffer, aBuffer + *aSize}})
      .code;
}

CLINT32 HostSerial::clGetSupportedBaudRates(CLUINT32* aRates) {
  if (aRates == nullptr)
    return CL_ERR_INVALID_PTR;
  const WireFrame answer = mChannel.AskLine({.kind = WireKind::LineGetRates});
  if (answer.code >= 0)
    *aRates = answer.cookie;
  return answer.code;
}

CLINT32 HostSerial::clSetBaudRate(CLUINT32 aRate) {
  return mChannel.AskLine({.kind = WireKind::LineSetRate, .cookie = aRate}).code;
}

} // namespace krcamerabridge
