#include "krclserial/clserkrg.h"

#include "errortexts.h"
#include "krbase/krexport.h"
#include "port.h"
#include "sessions.h"

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>

namespace {

using krclserial::Port;
using krclserial::Sessions;

constexpr std::string_view kMaker = "KrGUI";

// The program may be in C: nothing is thrown into it. What can be thrown tells of too little memory, or of another
// resource.
template <typename Operation>
CLINT32 Guard(Operation&& aOperation) {
  try {
    return aOperation();
  } catch (const std::exception&) {
    return CL_ERR_OUT_OF_MEMORY;
  }
}

template <typename Operation>
CLINT32 WithPort(hSerRef aReference, Operation&& aOperation) {
  return Guard([&]() -> CLINT32 {
    const std::shared_ptr<Port> port = Sessions::Get().Find(aReference);
    return port ? aOperation(*port) : CL_ERR_INVALID_REFERENCE;
  });
}

CLINT32 GiveText(std::string_view aText, CLINT8* aBuffer, CLUINT32& aSize) {
  const CLUINT32 room = aSize;
  aSize = static_cast<CLUINT32>(aText.size() + 1);
  if (aBuffer == nullptr || room < aSize)
    return CL_ERR_BUFFER_TOO_SMALL;
  aBuffer[aText.copy(aBuffer, aText.size())] = '\0';
  return CL_ERR_NO_ERR;
}

} // namespace

extern "C" {

KR_EXPORT CLINT32 clGetNumSerialPorts(CLUINT32* count) {
  if (count == nullptr)
    return CL_ERR_INVALID_PTR;
  return Guard([&]() -> CLINT32 {
    *count = static_cast<CLUINT32>(Sessions::Get().CountPorts());
    return CL_ERR_NO_ERR;
  });
}

KR_EXPORT CLINT32 clGetSerialPortIdentifier(CLUINT32 index, CLINT8* identifier, CLUINT32* size) {
  if (size == nullptr)
    return CL_ERR_INVALID_PTR;
  return Guard([&]() -> CLINT32 {
    const std::optional<KrCLPort> port = Sessions::Get().FindPort(index);
    return port ? GiveText(port->name.ToUtf8(), identifier, *size) : CL_ERR_INVALID_INDEX;
  });
}

KR_EXPORT CLINT32 clSerialInit(CLUINT32 index, hSerRef* reference) {
  if (reference == nullptr)
    return CL_ERR_INVALID_PTR;
  return Guard([&]() -> CLINT32 {
    const std::optional<KrCLPort> found = Sessions::Get().FindPort(index);
    if (!found)
      return CL_ERR_INVALID_INDEX;
    std::shared_ptr<Port> port;
    const CLINT32 result = Port::Open(*found, port);
    if (result == CL_ERR_NO_ERR)
      *reference = Sessions::Get().Add(port);
    return result;
  });
}

KR_EXPORT void clSerialClose(hSerRef reference) {
  (void)Guard([&]() -> CLINT32 { // There is nobody to tell.
    if (const std::shared_ptr<Port> port = Sessions::Get().Remove(reference))
      port->Close();
    return CL_ERR_NO_ERR;
  });
}

KR_EXPORT CLINT32 clSerialRead(hSerRef reference, CLINT8* buffer, CLUINT32* size, CLUINT32 timeout) {
  if (buffer == nullptr || size == nullptr)
    return CL_ERR_INVALID_PTR;
  return WithPort(reference,
                  [&](Port& aPort) { return aPort.Read(buffer, *size, std::chrono::milliseconds(timeout)); });
}

KR_EXPORT CLINT32 clSerialWrite(hSerRef reference, CLINT8* buffer, CLUINT32* size, CLUINT32 timeout) {
  if (buffer == nullptr || size == nullptr)
    return CL_ERR_INVALID_PTR;
  return WithPort(reference,
                  [&](Port& aPort) { return aPort.Write(buffer, *size, std::chrono::milliseconds(timeout)); });
}

KR_EXPORT CLINT32 clGetNumBytesAvail(hSerRef reference, CLUINT32* count) {
  if (count == nullptr)
    return CL_ERR_INVALID_PTR;
  return WithPort(reference, [&](Port& aPort) { return aPort.CountAvailable(*count); });
}

KR_EXPORT CLINT32 clFlushPort(hSerRef reference) {
  return WithPort(reference, [](Port& aPort) { return aPort.Flush(); });
}

KR_EXPORT CLINT32 clGetSupportedBaudRates(hSerRef reference, CLUINT32* baudRates) {
  if (baudRates == nullptr)
    return CL_ERR_INVALID_PTR;
  return WithPort(reference, [&](Port& aPort) { return aPort.GetSpeeds(*baudRates); });
}

KR_EXPORT CLINT32 clSetBaudRate(hSerRef reference, CLUINT32 baudRate) {
  return WithPort(reference, [&](Port& aPort) { return aPort.SetSpeed(baudRate); });
}

KR_EXPORT CLINT32 clGetManufacturerInfo(CLINT8* name, CLUINT32* size, CLUINT32* version) {
  if (size == nullptr || version == nullptr)
    return CL_ERR_INVALID_PTR;
  *version = CL_DLL_VERSION_1_1;
  return GiveText(kMaker, name, *size);
}

KR_EXPORT CLINT32 clGetErrorText(CLINT32 code, CLINT8* text, CLUINT32* size) {
  if (size == nullptr)
    return CL_ERR_INVALID_PTR;
  const std::string_view found = krclserial::FindErrorText(code);
  return found.empty() ? CL_ERR_ERROR_NOT_FOUND : GiveText(found, text, *size);
}

} // extern "C"
