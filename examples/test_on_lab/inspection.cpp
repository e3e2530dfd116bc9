#include "inspection.h"

#include "krdevice/krstream.h"

KrResult OpenCamera(const KrString& aName, std::unique_ptr<KrDevice>& aDevice) {
  KrSystem system;
  KrResult found = system.Find();
  if (!found.IsOK())
    return found;
  for (std::size_t index = 0; index < system.GetDeviceCount(); ++index) {
    const KrDeviceInfo& info = *system.GetDeviceInfo(index);
    if (info.GetUserDefinedName() == aName)
      return KrDevice::Open(info, KrDeviceAccess::Control, aDevice);
  }
  return {KrResult::Code::NotFound, "There is no camera " + aName + ". Check its cable, and krtool list."};
}

KrResult SetExposureTime(KrDevice& aDevice, double aMicroseconds) {
  KrGenParameterArray* array = nullptr;
  KrResult read = aDevice.GetParameters(array);
  if (!read.IsOK())
    return read;
  KrGenFloat* const exposureTime = array->GetFloat("ExposureTime");
  if (!exposureTime)
    return {KrResult::Code::NotSupported, "The camera has no exposure time that can be set."};
  return exposureTime->SetValue(aMicroseconds);
}

InspectionReport Inspect(KrDevice& aDevice, std::uint32_t aParts, const std::function<void()>& aOnFrame) {
  InspectionReport report;
  KrStream stream(aDevice);
  report.result = stream.Start();
  while (report.result.IsOK() && report.inspected < aParts) {
    KrBuffer* buffer = nullptr;
    report.result = stream.Retrieve(buffer, 5000);
    if (!buffer)
      continue; // No part in time, or the camera is lost.
    (buffer->GetStatus() == KrBufferStatus::Complete ? report.inspected : report.spoilt) += 1;
    if (aOnFrame)
      aOnFrame();
    report.result = stream.Release(buffer);
  }
  return report;
}
