#pragma once
// The serial line as a driver sees it: every use of it is done by the application.

#include "clprotocol/clprotocolapi.h"
#include "clprotocol/host/hostchannel.h"

namespace krcamerabridge {

/// Thread: any. Ownership: borrows the channel.
class HostSerial final : public ISerial {
public:
  explicit HostSerial(HostChannel& aChannel) : mChannel(aChannel) {}

  CLINT32 clSerialRead(CLINT8* aBuffer, CLUINT32* aSize, CLUINT32 aTimeoutMs) override;
  CLINT32 clSerialWrite(CLINT8* aBuffer, CLUINT32* aSize, CLUINT32 aTimeoutMs) override;
  CLINT32 clGetSupportedBaudRates(CLUINT32* aRates) override;
  CLINT32 clSetBaudRate(CLUINT32 aRate) override;

private:
  HostChannel& mChannel;
};

} // namespace krcamerabridge
