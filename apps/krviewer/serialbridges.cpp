#include "serialbridges.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krserial/krdeviceserialport.h"

namespace krviewer {

namespace {

constexpr const char* kListName = "SerialBridges";

} // namespace

void SerialBridges::TakeDevice(IKrDeviceAdapter& aDevice) {
  KrStringList errors;
  if (const KrResult set = mWindow.SetDevice(&aDevice); !set.IsOK())
    errors.Add(set.GetDescription());
  else if (!mKept.GetWanted().IsEmpty())
    Start(aDevice, errors);
  if (!errors.IsEmpty() && mTellFailures)
    mTellFailures(errors);
}

void SerialBridges::DropDevice() {
  mKept.Keep(GetNow());
  // It returns when no bridge uses the device any more.
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(nullptr); // Always OK.
}

void SerialBridges::LookAgain() {
  if (HasDevice() && mKept.HasFailed())
    mKept.NoteChange(GetNow());
}

KrPropertyList SerialBridges::GetNow() {
  KrPropertyList now;
  [[maybe_unused]] const KrResult saved = mWindow.Save(now); // Always OK.
  return now;
}

void SerialBridges::Start(IKrDeviceAdapter& aDevice, KrStringList& aErrors) {
  KrPropertyList wanted = mKept.GetWanted();
  [[maybe_unused]] const KrResult loaded = mWindow.Load(wanted, aErrors); // What fails is in the list, line by line.
  KeptBridges::Ports ports;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (KrDeviceSerialPort::IsSupported(&aDevice, port))
      ports.insert(port);
  mKept.NoteStart(GetNow(), ports);
}

KrResult SerialBridges::LoadSetup(const KrString& aFileName, KrStringList& aErrors) {
  KrConfigurationReader reader;
  KrPropertyList bridges;
  KrResult result = reader.Load(aFileName);
  if (result.IsOK())
    result = reader.Restore(kListName, bridges);
  if (!result.IsOK())
    return result;
  mKept.Want(bridges);
  if (HasDevice())
    Start(*GetDevice(), aErrors);
  return {};
}

KrResult SerialBridges::SaveSetup(const KrString& aFileName) {
  KrConfigurationWriter writer;
  KrResult result = writer.Store(kListName, HasDevice() ? mKept.GetSetup(GetNow()) : mKept.GetWanted());
  if (result.IsOK())
    result = writer.Save(aFileName);
  return result;
}

} // namespace krviewer
