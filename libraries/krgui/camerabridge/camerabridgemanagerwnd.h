#pragma once
// The camera bridge manager's implementation window: how each of a device's cameras is reached, and its parameters. The
// bridges are CameraBridgeList's, the controls are found, filled and laid out by CameraControls, the parameters are
// shown by a feature browser.

#include "camerabridge/camerabridgelist.h"
#include "camerabridge/grabberquestions.h"
#include "frame/tabledwnd.h"
#include "krgui/krgenbrowserwnd.h"
#include "platform/backgroundtask.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>

class QObject;

namespace krgui {

class CameraControls;

class CameraBridgeManagerWnd : public TabledWnd {
public:
  CameraBridgeManagerWnd();
  ~CameraBridgeManagerWnd() override;

  KrResult SetDevice(KrDevice* aDevice);
  KrResult SetStream(KrStream* aStream);
  KrResult Load(const KrConfigurationReader& aReader, KrStringList& aErrors);
  KrResult Save(KrConfigurationWriter& aWriter);
  static KrResult Recover();
  int GetBridgeCount() const;
  KrCameraBridge* GetBridge(int aIndex) const;
  KrDeviceSerial GetBridgePort(int aIndex) const;
  void SetPCFVisible(bool aIsVisible);
  bool IsPCFVisible() const { return mIsPCFVisible; }

protected:
  bool OnInitDialog() override;
  void OnSize(const QSize& aSize) override;
  /// The Enter key does nothing.
  void OnOK() override;
  void OnDestroy() override;

private:
  /// One opening of the window.
  struct Opening {
    bool isBusy = false;        ///< A camera is asked, on another thread.
    bool isDeviceAsked = false; ///< The device itself.
    // What is to be done as soon as nothing is under way.
    bool mustFindPorts = false;
    bool mustShowFacts = false;
    bool mustFillBrowser = false;
    bool mustFetchTemplates = false;
    bool isBrowserLeftEmpty = false; ///< The user did not want to wait for its parameters.
    // What is known of the device.
    bool hasSources = false; ///< They are listed.
    PoCLState poCL;

    void ForgetDevice() {
      hasSources = false;
      poCL = {};
    }
    bool IsBehind() const { return mustFindPorts || mustShowFacts || mustFillBrowser || mustFetchTemplates; }
  };
  /// What a wait, a message box or a dialog is about. Meanwhile the window may be closed or deleted, and the bridges
  /// made anew.
  struct Moment {
    std::weak_ptr<const Opening> opening;
    std::weak_ptr<CameraBridgeList> bridges; ///< Ends with this object.
    std::uint64_t generation = 0;
    KrDeviceSerial port = KrDeviceSerial::Invalid;

    /// Whether this object is still there, with the same bridges.
    bool IsOfPresentBridges() const;
    /// The same of a window that is still open.
    bool IsShown() const;
    /// The port's bridge, where it is still the same one; null otherwise.
    CameraBridgeEntry* FindEntry() const;
    /// The same, of a window that is still open.
    CameraBridgeEntry* FindShownEntry() const;
  };
  class Asking;
  enum class Cursor { Usual, Wait };
  /// A piece of work that may take long.
  struct Order {
    QString text; ///< What is under way.
    Cursor cursor = Cursor::Usual;
    std::function<void(const KrGenProgress& aProgress)> work; ///< On another thread.
    std::function<void()> hurry = {};                         ///< Ends it before its time, where that can be done.
    BackgroundTask::WhenCancelled whenCancelled = BackgroundTask::WhenCancelled::Wait;
    bool isOfDevice = false; ///< No camera is asked, so that the bridges may be used meanwhile.
  };
  /// One of the ways to a camera.
  struct Connection {
    Cursor cursor = Cursor::Usual;
    CameraBridgeTexts texts; ///< Of the bridge once it is connected, but for its status.
    int status = 0;          ///< The label of the status.
    std::function<KrResult(KrCameraBridge& aBridge)> connect; ///< On another thread.
    std::function<KrString(KrCameraBridge& aBridge)> failure; ///< What is told then.
  };

  Moment GetMoment(KrDeviceSerial aPort) const;
  CameraBridgeEntry* GetSelectedEntry() const;
  bool IsBusy() const { return mOpening && mOpening->isBusy; }
  /// Does the work while the window stays alive; afterwards it may have gone. False when the user, or the window's end,
  /// ended the work before its time.
  bool Await(const Order& aOrder);
  /// The same of a port's camera.
  bool Ask(CameraBridgeEntry& aEntry, const char* aText, Cursor aCursor,
           const std::function<void(KrCameraBridge& aBridge)>& aWork);
  /// The same of all cameras; without a window, here and now.
  KrResult AskAll(const char* aText, const std::function<KrResult(const KrGenProgress& aProgress)>& aWork);
  void EndWork();
  /// The same of the device itself; the question is to borrow nothing of this window.
  bool AskDevice(const char* aText, std::function<void(const KrGenProgress& aProgress)> aQuestion);

  void EndBridges(const std::shared_ptr<EndingBridges>& aBridges);
  void FindPorts();
  void ShowFacts();
  void ShowFactsSoon();
  void CatchUpSoon();
  void CatchUp();

  void CreateBrowser();
  void PlaceBrowser();
  void WireControls();
  void WireMarks();
  void WireLists();
  void ShowDevice();
  void ShowEntry();
  void ShowKind(CameraBridgeEntry& aEntry);
  void ShowSwitches() const;
  void ShowParameters(const CameraBridgeEntry& aEntry);
  void FillBrowser();
  void ApplyStates();
  void FocusNextStep() const;
  void Tick() const;

  /// What the user's hands do: nothing while a camera is asked.
  void Perform(const std::function<void()>& aAction);
  void ChoosePort();
  void ChooseKind(CameraBridgeKind aKind);
  void FetchTemplates();
  void FetchGenCPXMLIDs();
  void Probe();
  void ConnectCLProtocol();
  void ConnectGenCP();
  void LoadCameraFile();
  void Connect(CameraBridgeEntry& aEntry, const Connection& aConnection);
  void ChooseCameraFile();
  void ChooseSource();
  void SwitchSynchronization();
  void SwitchPoCL();
  void ResetStatistics();

  /// Shared with nobody; a weak pointer to it tells of this object's end.
  const std::shared_ptr<CameraBridgeList> mBridges = std::make_shared<CameraBridgeList>();
  KrGenBrowserWnd mBrowser;
  bool mIsPCFVisible = true;
  QString mFolder;           ///< Of the camera file that was chosen last.
  std::stop_source mWorkEnd; ///< Ends what is under way, and what asks the user.

  // What follows is null while the window is not open.
  std::unique_ptr<CameraControls> mControls;
  /// What the controls and the timer call of this window ends with the opening: they may outlive it for a while.
  std::unique_ptr<QObject> mConnections;
  std::shared_ptr<Opening> mOpening; ///< Ends with the opening.
};

} // namespace krgui
