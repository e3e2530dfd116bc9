#include "deviceparameters.h"

#include <utility>

namespace krdevice {

namespace {

// Long enough for a camera that is busy, short enough for whoever waits for one that is dead.
constexpr std::uint32_t kAccessTimeoutMs = 1000;

} // namespace

DeviceParameters::DeviceParameters(krsystem::IDeviceLink& aLink, IKrRegisterPort& aPort, bool aIsReadOnly,
                                   KrString aDeviceName)
    : mLink(aLink), mPort(aPort, kAccessTimeoutMs), mIsReadOnly(aIsReadOnly), mDeviceName(std::move(aDeviceName)) {}

KrResult DeviceParameters::Get(KrGenParameterArray*& aArray) {
  const std::lock_guard lock(mMutex);
  if (const KrResult open = CheckOpen(); !open.IsOK())
    return open;
  if (!mArray) {
    if (!mFault.IsOK())
      return mFault;
    if (const KrResult made = Make(); !made.IsOK()) {
      // The link's words of silence and loss name the device themselves.
      const bool isNamed = made == KrResult::Code::TimeLimitExceeded || made == KrResult::Code::ConnectionLost;
      const KrString owner = isNamed ? KrString("the device") : mDeviceName;
      KrResult failure(made.GetCode(), "Making the parameters of " + owner + " failed: " + made.GetDescription());
      if (made == KrResult::Code::BadData)
        mFault = failure;
      return failure;
    }
  }
  aArray = mArray.get();
  return {};
}

KrGenParameterArray* DeviceParameters::Find() {
  const std::lock_guard lock(mMutex);
  return mArray.get();
}

KrResult DeviceParameters::ReadDescription(KrGenDescription& aDescription) {
  const std::lock_guard lock(mMutex);
  if (const KrResult open = CheckOpen(); !open.IsOK())
    return open;
  return ReadOwn(aDescription);
}

KrResult DeviceParameters::CheckOpen() const {
  if (mClosing.stop_requested())
    return {KrResult::Code::ConnectionLost, "Asking for the parameters of " + mDeviceName + ": it is being closed."};
  return {};
}

KrResult DeviceParameters::ReadOwn(KrGenDescription& aDescription) {
  return KrGenDescription::ReadFromDevice(mPort, mLink.GetBootstrap(), aDescription, kAccessTimeoutMs,
                                          mClosing.get_token());
}

KrResult DeviceParameters::Make() {
  KrGenDescription description;
  if (mDescription) {
    description = *mDescription;
  } else if (KrResult read = ReadOwn(description); !read.IsOK()) {
    return read;
  }
  return KrGenParameterArray::Open(description, mPort, {.timeoutMs = kAccessTimeoutMs, .isReadOnly = mIsReadOnly},
                                   mArray);
}

KrResult DeviceParameters::SetDescription(const KrGenDescription& aDescription) {
  if (aDescription.GetText().empty())
    return {KrResult::Code::InvalidInput, "Giving " + mDeviceName + " a description: it is empty; read one first."};
  const std::lock_guard lock(mMutex);
  if (mArray)
    return {KrResult::Code::WrongState, "Giving " + mDeviceName +
                                            " a description: its parameters are in use already; give it right after "
                                            "opening the device."};
  mDescription = aDescription;
  mFault = {};
  return {};
}

void DeviceParameters::Close() {
  mClosing.request_stop();
  const std::lock_guard lock(mMutex);
  if (mArray)
    mArray->Close();
}

} // namespace krdevice
