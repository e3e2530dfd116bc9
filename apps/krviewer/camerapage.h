#pragma once
// One camera on the screen: its picture, the panels around it, what is wrong with it above, and what can be done with
// it. Frames are the acquisition's, which page is to be seen the window's.

#include "acquisition.h"
#include "camerainfo.h"
#include "cameratools.h"
#include "framerelay.h"
#include "messagebar.h"
#include "pagepanels.h"
#include "parameterpanel.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class QMainWindow;

namespace krviewer {

struct PageOptions {
  AcquisitionOptions acquisition = {};
  bool isPictureKept = false; ///< Frames are displayed while the page is behind others, too.
  int number = 1;             ///< Of the camera, in the order in which they were opened.
};

/// From its opening until End, with one connection after the other as the user disconnects and connects.
///
/// Thread: user interface. Ownership: shares the camera's information. Looks may run loops, in which the page is
/// ended: it is deleted when IsIdle alone.
class CameraPage : public QWidget {
  Q_OBJECT

public:
  CameraPage(CameraInfo aCamera, const PageOptions& aOptions);
  ~CameraPage() override;

  /// Makes the picture and connects to the camera.
  KrResult Open();
  /// The panels as they were; the way they are at first for anything else.
  void RestoreLayout(const QByteArray& aLayout);
  /// Gives the camera back for good. Nothing for a page that was ended.
  void End();
  bool IsEnded() const { return mIsEnded; }
  /// Whether nothing of the page is under way.
  bool IsIdle() const { return mCalls == 0; }

  const KrDeviceInfo& GetCamera() const { return *mCamera; }
  int GetNumber() const { return mOptions.number; }
  /// The camera, and what there is to know of its state.
  QString GetTitle() const;
  const AcquisitionProgress& GetProgress() const { return mProgress; }
  KrDisplayWnd& GetDisplay() { return mDisplay; }
  CameraTools& GetTools() { return mTools; }
  PagePanels& GetPanels() { return mPanels; }
  ParameterPanel& GetFeatures() { return *mFeatures; }

  /// Whether there is an acquisition that could be asked to do something.
  bool IsConnected() const;
  /// Whether the number of frames has come, or the camera could not be had.
  bool HasAcquisitionEnded() const { return mHasToldEnd; }
  bool IsStreaming() const { return mProgress.state == AcquisitionState::Streaming; }
  /// Whether the camera is given back until Reconnect.
  bool IsDisconnected() const { return mIsDisconnected; }
  void Start();
  void StartSingle();
  void StopStreaming();
  void Trigger();
  void Disconnect();
  void Reconnect();
  /// Does what may run a loop, as the page is not to be deleted meanwhile.
  void Call(const std::function<void(CameraPage&)>& aCall);

signals:
  /// The user wants to pick another camera.
  void FindWanted();
  /// The acquisition has come to its end: the number of frames has come, or the camera could not be had.
  void AcquisitionEnded();

protected:
  void showEvent(QShowEvent* aEvent) override;
  void hideEvent(QHideEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;

private:
  void WantPicture();
  void Connect();
  void GiveBack();
  void LookAgain();
  void FollowLoans();
  void TellState();
  void TellRefusal(const QString& aWhat, const KrResult& aResult);
  bool IsAlive() const { return mAcquisition && !mIsEnded && !mIsDisconnected; }

  const CameraInfo mCamera;
  const PageOptions mOptions;
  AcquisitionProgress mProgress; ///< As of the last look.
  KrDisplayWnd mDisplay;
  FrameRelay mFrames; ///< Before whatever watches frames.
  MessageBar* const mBar;
  QMainWindow* const mArea;
  PagePanels mPanels;
  ParameterPanel* const mFeatures;
  CameraTools mTools;
  std::unique_ptr<Acquisition> mAcquisition;
  QTimer mTimer;
  QString mTold; ///< What the bar says by itself, of the state.
  int mCalls = 0;
  bool mHasToldMissing = false;
  bool mHasToldEnd = false;
  bool mIsDisconnected = false;
  bool mIsEnded = false;
  bool mHasWidths = false;
};

} // namespace krviewer
