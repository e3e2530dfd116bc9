#include "bridges/camerabridges.h"

#include "bridges/camerasetup.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krdevice/ikrdeviceadapter.h"
#include "krdevice/krdevice.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krserial/krdeviceserialport.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace krviewer {

namespace {

KrGenProgress MakeProgress(const std::stop_token& aStop) {
  return [aStop](std::size_t, std::size_t) { return !aStop.stop_requested(); };
}

} // namespace

KrResult CameraBridges::SetUp(LentDevice& aDevice) {
  [[maybe_unused]] KrResult set = mWindow.SetStream(aDevice.stream); // Before the device, whose bridges get it.
  return mWindow.SetDevice(aDevice.adapter.GetDevice());             // Always OK, as the other.
}

void CameraBridges::TakeOut() {
  const bool isUnsaved = mIsSaving && mCall.IsRunning();
  mCall.End();
  if (isUnsaved)
    TellFailure(BridgeNews::NotSaved,
                {KrResult::Code::ConnectionLost, "The device went before the cameras had told what they are set to."});
  [[maybe_unused]] KrResult set = mWindow.SetDevice(nullptr); // Always OK.
  set = mWindow.SetStream(nullptr);
}

// A search for ports that was cancelled has found none, and is done again when the window is opened.
KrResult CameraBridges::CheckShowing() {
  const auto isThere = [this](KrDeviceSerial aPort) {
    return KrDeviceSerialPort::IsSupported(&GetDevice()->adapter, aPort);
  };
  if (!HasDevice() || HasPorts() || std::ranges::any_of(kDeviceSerialPorts, isThere))
    return {};
  return {KrResult::Code::NotSupported, "The device has no serial port."};
}

void CameraBridges::LookAgain() {
  mCall.Follow();
  BridgeWindow::LookAgain();
}

std::vector<KrCameraBridgeAtPort> CameraBridges::GetBridges() {
  std::vector<KrCameraBridgeAtPort> bridges;
  for (int index = 0; index < mWindow.GetBridgeCount(); ++index)
    bridges.push_back({mWindow.GetBridgePort(index), mWindow.GetBridge(index)});
  return bridges;
}

/// What the cameras are set to is theirs: it is asked for when a setup is saved, and not for taking them up again.
KrPropertyList CameraBridges::GetNow() {
  KrConfigurationWriter writer;
  KrPropertyList now;
  if (KrSaveCameraBridges(GetBridges(), KrCameraBridgeContent::ConnectionAlone, writer).IsOK())
    (void)ReadCameraSetup(KrConfigurationReader(writer), now); // It has an index.
  return now;
}

KeptBridges::Ports CameraBridges::GetPorts() {
  KeptBridges::Ports ports;
  for (const KrCameraBridgeAtPort& bridge : GetBridges())
    ports.insert(bridge.port);
  return ports;
}

KrResult CameraBridges::ReadSetup(const KrConfigurationReader& aReader, KrPropertyList& aBridges) {
  return ReadCameraSetup(aReader, aBridges);
}

KrResult CameraBridges::WriteSetup(const KrPropertyList& aBridges, KrConfigurationWriter& aWriter) {
  return WriteCameraSetup(aBridges, aWriter);
}

void CameraBridges::Start(const KrPropertyList& aWanted, BridgeNews aNews) {
  KrConfigurationWriter writer;
  if (const KrResult written = WriteCameraSetup(aWanted, writer); !written.IsOK())
    return TellFailure(aNews, written);
  const KrConfigurationReader setup(writer);
  if (mWindow.GetWidget())
    LoadInWindow(setup, aNews);
  else
    LoadBeside(setup, aNews);
}

void CameraBridges::LoadInWindow(const KrConfigurationReader& aSetup, BridgeNews aNews) {
  const std::uint64_t loan = GetLoan();
  KrConfigurationReader setup = aSetup;
  KrStringList errors;
  mIsAskedInWindow = true;
  const KrResult loaded = mWindow.Load(setup, errors);
  mIsAskedInWindow = false;
  if (!IsLent(loan))
    return;
  const bool isCancelled = loaded == KrResult::Code::Cancelled;
  // Who closes the window does not want less of its bridges.
  if (isCancelled && !mWindow.GetWidget())
    return LoadBeside(setup, aNews);
  NoteEnd(aNews, isCancelled ? KrStringList() : errors);
}

void CameraBridges::LoadBeside(const KrConfigurationReader& aSetup, BridgeNews aNews) {
  const auto errors = std::make_shared<KrStringList>();
  Call(
      false,
      [bridges = GetBridges(), setup = aSetup, errors](const std::stop_token& aStop) {
        // What fails is in the list, line by line.
        (void)KrLoadCameraBridges(bridges, setup, *errors, MakeProgress(aStop));
      },
      [this, aNews, errors] { NoteEnd(aNews, *errors); });
}

/// That a device is lost is said of the device, whose cameras are tried again when it is back.
void CameraBridges::NoteEnd(BridgeNews aNews, const KrStringList& aErrors) {
  const KrDevice* const device = GetDevice()->adapter.GetDevice();
  NoteStart(aNews, device->IsConnected() ? aErrors : KrStringList());
}

void CameraBridges::SaveNow(const KrString& aFileName) {
  if (mWindow.GetWidget())
    SaveInWindow(aFileName);
  else
    SaveBeside(aFileName);
}

void CameraBridges::SaveInWindow(const KrString& aFileName) {
  const std::uint64_t loan = GetLoan();
  KrConfigurationWriter whole;
  mIsAskedInWindow = true;
  const KrResult saved = mWindow.Save(whole);
  mIsAskedInWindow = false;
  if (IsLent(loan) && saved == KrResult::Code::Cancelled && !mWindow.GetWidget())
    return SaveBeside(aFileName);
  WriteWhole(aFileName, whole, saved);
}

void CameraBridges::SaveBeside(const KrString& aFileName) {
  struct Answer {
    KrConfigurationWriter whole;
    KrResult result;
  };
  const auto answer = std::make_shared<Answer>();
  Call(
      true,
      [bridges = GetBridges(), answer](const std::stop_token& aStop) {
        answer->result =
            KrSaveCameraBridges(bridges, KrCameraBridgeContent::Everything, answer->whole, MakeProgress(aStop));
      },
      [this, aFileName, answer] { WriteWhole(aFileName, answer->whole, answer->result); });
}

/// A setup that the user cancelled is not written. Of a camera that does not answer there is how it was connected.
void CameraBridges::WriteWhole(const KrString& aFileName, const KrConfigurationWriter& aWhole,
                               const KrResult& aResult) {
  KrPropertyList whole;
  if (aResult == KrResult::Code::Busy || !ReadCameraSetup(KrConfigurationReader(aWhole), whole).IsOK())
    return TellFailure(BridgeNews::NotSaved, aResult);
  if (!aResult.IsOK())
    TellFailure(BridgeNews::NotAllSaved, aResult);
  WriteFile(aFileName, CompleteCameraSetup(whole, GetNow()));
}

void CameraBridges::Call(bool aIsToSave, const BackgroundCall::Work& aWork, const std::function<void()>& aThen) {
  mIsSaving = aIsToSave;
  const auto hurry = [bridges = GetBridges()] {
    for (const KrCameraBridgeAtPort& bridge : bridges)
      bridge.bridge->Cancel();
  };
  mCall.Start(aWork, hurry, aThen);
}

} // namespace krviewer
