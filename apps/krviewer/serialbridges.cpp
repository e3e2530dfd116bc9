#include "serialbridges.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"

namespace krviewer {

namespace {

constexpr const char* kListName = "SerialBridges";

} // namespace

void SerialBridges::TakeDevice(IKrDeviceAdapter& aDevice) {
  KrStringList errors;
  if (const KrResult set = mWindow.SetDevice(&aDevice); set.IsOK())
    Start(errors);
  else
    errors.Add(set.GetDescription());
  if (!errors.IsEmpty() && mTellFailures)
    mTellFailures(errors);
}

void SerialBridges::DropDevice() {
  mKept.Keep(GetNow());
  // It returns when no bridge uses the device any more.
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(nullptr); // Always OK.
}

void SerialBridges::LookAgain() {
  if (HasDevice())
    mKept.NoteChange(GetNow());
}

KrPropertyList SerialBridges::GetNow() {
  KrPropertyList now;
  [[maybe_unused]] const KrResult saved = mWindow.Save(now); // Always OK.
  return now;
}

void SerialBridges::Start(KrStringList& aErrors) {
  if (KrPropertyList wanted = mKept.GetWanted(); !wanted.IsEmpty()) {
    [[maybe_unused]] const KrResult loaded = mWindow.Load(wanted, aErrors); // What fails is in the list, line by line.
  }
  mKept.NoteStart(GetNow());
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
  if (HasDevice()) {
    // The list as it is, so that what is wrong with it is told.
    [[maybe_unused]] const KrResult loaded = mWindow.Load(bridges, aErrors);
    mKept.NoteStart(GetNow());
  }
  return {};
}

KrResult SerialBridges::SaveSetup(const KrString& aFileName) {
  KrConfigurationWriter writer;
  KrResult result = writer.Store(kListName, HasDevice() ? GetNow() : mKept.GetWanted());
  if (result.IsOK())
    result = writer.Save(aFileName);
  return result;
}

} // namespace krviewer
