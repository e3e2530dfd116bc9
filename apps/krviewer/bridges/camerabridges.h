#pragma once
// The camera bridges of the viewer, for a frame grabber whose cameras have features of their own. The bridges and the
// window itself are the library's. Cameras that are asked while the window is closed are asked on a thread, so that the
// viewer goes on; in the window that is open they are asked as the window does it.

#include "backgroundcall.h"
#include "bridges/bridgewindow.h"
#include "krcamerabridge/krcamerabridgeset.h"
#include "krgui/krcamerabridgemanagerwnd.h"

#include <vector>

namespace krviewer {

class CameraBridges : public BridgeWindow {
public:
  CameraBridges() : BridgeWindow(kCameraBridgeRules) {}

  KrCameraBridgeManagerWnd& GetWindow() override { return mWindow; }
  void LookAgain() override;
  /// There is a device, and nobody asks the cameras behind it already.
  bool IsOffered() override { return HasDevice() && !IsWorking(); }
  /// NotSupported for a device without ports behind which there may be cameras.
  KrResult CheckShowing() override;
  bool IsWorking() const override { return mCall.IsRunning() || mIsAskedInWindow; }
  bool HasPorts() { return mWindow.GetBridgeCount() > 0; }

private:
  KrResult SetUp(LentDevice& aDevice) override;
  void TakeOut() override;
  KrPropertyList GetNow() override;
  KeptBridges::Ports GetPorts() override;
  void Start(const KrPropertyList& aWanted, BridgeNews aNews) override;
  KrResult ReadSetup(const KrConfigurationReader& aReader, KrPropertyList& aBridges) override;
  KrResult WriteSetup(const KrPropertyList& aBridges, KrConfigurationWriter& aWriter) override;
  void SaveNow(const KrString& aFileName) override;

  std::vector<KrCameraBridgeAtPort> GetBridges();
  void LoadInWindow(const KrConfigurationReader& aSetup, BridgeNews aNews);
  void LoadBeside(const KrConfigurationReader& aSetup, BridgeNews aNews);
  void NoteEnd(BridgeNews aNews, const KrStringList& aErrors);
  void SaveInWindow(const KrString& aFileName);
  void SaveBeside(const KrString& aFileName);
  void WriteWhole(const KrString& aFileName, const KrConfigurationWriter& aWhole, const KrResult& aResult);
  void Call(bool aIsToSave, const BackgroundCall::Work& aWork, const std::function<void()>& aThen);

  KrCameraBridgeManagerWnd mWindow;
  bool mIsAskedInWindow = false;
  bool mIsSaving = false; ///< The call saves.
  BackgroundCall mCall;   ///< Last, so that it ends before the bridges.
};

} // namespace krviewer
