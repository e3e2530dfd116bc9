#include "simulation/serial/serialchannel.h"

#include <utility>

namespace krtransport {

void ChannelAccess::End(const KrResult& aReason) {
  const std::lock_guard lock(mMutex);
  if (!mEnd)
    mEnd = aReason;
}

KrResult ChannelAccess::Check() const {
  const std::lock_guard lock(mMutex);
  return mEnd.value_or(KrResult());
}

SerialChannel::SerialChannel(std::shared_ptr<SerialLine> aLine, std::shared_ptr<const ChannelAccess> aAccess)
    : mLine(std::move(aLine)), mAccess(std::move(aAccess)) {}

SerialChannel::~SerialChannel() {
  Close();
}

KrResult SerialChannel::Open() {
  if (!mAccess->HasControl())
    return {KrResult::Code::AccessDenied,
            "Opening a serial port: the camera is open to monitor; open it with control to use its serial ports."};
  KrResult result = mAccess->Check();
  if (!result.IsOK())
    return result;
  result = mLine->Open(this);
  if (!result.IsOK())
    return result;
  // The link may have ended before the line knew that it was open for it.
  result = mAccess->Check();
  if (!result.IsOK())
    mLine->Close(this);
  return result;
}

void SerialChannel::Close() {
  mLine->Close(this);
}

KrResult SerialChannel::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                             const std::stop_token& aCancel) {
  aRead = 0;
  const KrResult checked = mAccess->Check();
  return checked.IsOK() ? mLine->Read(this, aBytes, aSize, aRead, aTimeoutMs, aCancel) : checked;
}

KrResult SerialChannel::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                              std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  aWritten = 0;
  const KrResult checked = mAccess->Check();
  return checked.IsOK() ? mLine->Write(this, aBytes, aSize, aWritten, aTimeoutMs, aCancel) : checked;
}

} // namespace krtransport
