#include "acquisition/devicelending.h"

namespace krviewer {

void DeviceLending::Lend(KrDevice& aDevice, KrStream& aStream, KrGenParameterArray* aParameters, bool aIsKept) {
  mAdapter.emplace(aDevice);
  mLent.emplace(LentDevice{*mAdapter, &aStream});
  for (Loan<LentDevice>& loan : mDevices)
    loan.Lend(*mLent);
  mHostParameters.Lend(aDevice, aStream);
  mResponses.Follow(aDevice.GetRegisterPort());
  if (!aParameters)
    return;
  for (Loan<KrGenParameterArray>& loan : mParameters)
    loan.Lend(*aParameters);
  if (aIsKept)
    mKept.Follow(*aParameters);
  mThermometer.Follow(*aParameters);
}

void DeviceLending::LeaveCamera() {
  mThermometer.Leave();
  mResponses.Leave();
}

void DeviceLending::TakeBackDevice() {
  for (Loan<LentDevice>& loan : mDevices)
    loan.TakeBack();
}

void DeviceLending::TakeBack() {
  mKept.Leave();
  LeaveCamera();
  for (Loan<KrGenParameterArray>& loan : mParameters)
    loan.TakeBack();
  mHostParameters.TakeBack();
  TakeBackDevice();
  mLent.reset();
  mAdapter.reset();
}

} // namespace krviewer
