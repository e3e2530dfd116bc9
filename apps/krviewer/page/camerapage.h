#pragma once
// One camera on the screen: its picture, the panels around it, what is wrong with it above, and what can be done with
// it. Frames are the acquisition's, which page is to be seen the window's.

#include "acquisition/adviser.h"
#include "acquisition/cameraconnection.h"
#include "acquisition/camerainfo.h"
#include "acquisition/devicesettings.h"
#include "acquisition/framerelay.h"
#include "acquisition/newestframe.h"
#include "bridges/cameratools.h"
#include "page/messagebar.h"
#include "page/pagemessages.h"
#include "page/pagepanels.h"
#include "panels/intervalpanel.h"
#include "panels/parameterpanel.h"
#include "panels/shownfigures.h"
#include "recording/framesaver.h"
#include "recording/recorder.h"
#include "recording/recordpanel.h"
#include "region/regioneditor.h"

#include <QTimer>
#include <QWidget>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

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
  /// Where its panels are, and what was chosen in them, for the next page.
  QByteArray SaveState();
  /// What is no such state leaves all as it is at first.
  void RestoreState(const QByteArray& aState);
  /// Begins to give the camera back for good; a recording stops.
  void End();
  /// Looks how far the end is, in any loop: whether the camera is given back and all is written.
  bool FollowEnd();
  /// Waits until it is given back, but no longer than a limit.
  void AwaitAway(std::chrono::milliseconds aLimit) { mConnection.AwaitAway(aLimit); }
  /// Waits until it is given back, if it was not left, and what was recorded and saved is written.
  void AwaitEnd();
  /// Whether it is given back for good, or left.
  bool HasEnded() const { return mIsEnded && (mIsCameraLeft || !mConnection.IsLeaving()); }
  /// Whether nothing but the camera, which is being given back, keeps the page from its end.
  bool AwaitsCamera() const { return mIsEnded && !HasEnded() && !IsWriting(); }
  /// Does not wait for the camera any longer. It is being given back all the same, and the page not idle until it is.
  void LeaveCamera() { mIsCameraLeft = true; }
  bool IsCameraLeft() const { return mIsCameraLeft; }
  /// Whether nothing of the page is under way.
  bool IsIdle() const { return mCalls == 0 && !mConnection.IsLeaving() && !IsWriting(); }
  /// Whether frames are being recorded or saved, or a setup of bridges.
  bool IsWriting() const { return mRecorder.IsBusy() || mSaver.IsBusy() || mTools.IsWriting(); }

  /// The camera as it is known now: it may have got another address since the page was opened.
  const KrDeviceInfo& GetCamera() const { return *mCamera; }
  /// The same camera was found anew: its next connection is there.
  void SetCamera(const CameraInfo& aCamera);
  int GetNumber() const { return mOptions.number; }
  /// The camera, and what there is to know of its state.
  QString GetTitle() const { return MakePageTitle(GetState()); }
  const AcquisitionProgress& GetProgress() const { return mConnection.GetProgress(); }
  /// What the user has set of the host's side of the camera; whole when it HasEnded.
  HostSettings GetHostSettings() const { return mConnection.GetHostSettings(); }
  KrDisplayWnd& GetDisplay() { return mDisplay; }
  CameraTools& GetTools() { return mTools; }
  const CameraTools& GetTools() const { return mTools; }
  DeviceSettings& GetSettings() { return mSettings; }
  bool CanSaveFrame() const { return mSaver.HasFrame(); }
  void SaveFrame() { mSaver.Ask(this); }
  bool IsRecording() const { return mRecorder.IsBusy(); }
  /// Whether its end stopped a recording, or found one that had just ended.
  bool HasEndedRecording() const { return mHasEndedRecording; }
  RecordingProgress GetRecording() const { return mRecorder.GetProgress(); }
  /// Stops a recording without what is not written yet.
  void GiveUpRecording() { mRecorder.GiveUp(); }
  /// Changes as what is recorded and saved gets on; nothing where nothing is.
  std::optional<std::uint64_t> GetWritten() const;
  /// Does not wait any longer for files whose disk does not answer: they have failed.
  void LeaveFiles();
  const QStringList& GetSavingFailures() const { return mSaver.GetFailures(); }
  /// Starts a recording as its panel says, which is shown, or stops the one that runs. Of a camera that is not there it
  /// says why none can be started.
  void StartOrStopRecording();
  RegionEditor& GetRegion() { return mRegion; }
  PagePanels& GetPanels() { return mPanels; }
  ParameterPanel& GetFeatures() { return *mFeatures; }
  /// What the status bar says of the camera at the moment.
  ShownFigures GetFigures() const;

  /// Whether the camera is there and does what it is asked to.
  bool IsConnected() const;
  bool IsStreaming() const { return IsConnected() && GetProgress().state == AcquisitionState::Streaming; }
  /// Whether the camera is lost, or could not be had.
  bool IsInTrouble() const;
  /// Whether the number of frames has come, or the camera could not be had.
  bool HasAcquisitionEnded() const { return mHasToldEnd; }
  /// Whether there is nothing that Disconnect could give back, and Reconnect connects.
  bool CanConnect() const;
  bool CanDisconnect() const { return mConnection.GetActive() && !CanConnect(); }
  void Start();
  void StartSingle();
  void StopStreaming();
  void Restart();
  void Trigger();
  void Do(DeviceWork aWork);
  void Disconnect();
  /// At once, or when the camera is given back.
  void Reconnect();
  /// Does what may run a loop, as the page is not to be deleted meanwhile.
  void Call(const std::function<void(CameraPage&)>& aCall);

signals:
  /// The camera is open for the first time.
  void Opened();
  /// The user wants to pick another camera.
  void FindWanted();
  /// The user wants to give a camera an address.
  void AddressWanted();
  /// The camera is known otherwise from now on, by its address for one; before it was known by this ID.
  void CameraChanged(const QString& aFormerID);
  /// Something was done that is worth a word and no more.
  void Noticed(const QString& aText);
  /// Before the page's end, something that was to be recorded could not be written.
  void RecordingFailed(const krviewer::RecordingProgress& aRecording);
  /// The acquisition has come to its end: the number of frames has come, or the camera could not be had.
  void AcquisitionEnded();

protected:
  void showEvent(QShowEvent* aEvent) override;
  void hideEvent(QHideEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;

private:
  void ShareOut();
  void AddPanels();
  void WantPicture();
  void Connect();
  void GiveBack(Acquisition& aAcquisition);
  void LookAgain();
  void Follow(Acquisition& aAcquisition);
  PageState GetState() const;
  void LookForTrouble();
  void TellState();
  void TellRefusal(const QString& aWhat, const KrResult& aResult);
  void TellNothingToRecord();
  void TellRecordings();
  void AnnounceSettings(const QString& aWhat);
  void TellSettings(const QString& aWhat, const KrStringList& aProblems);

  CameraInfo mCamera;
  CameraInfo mConnected; ///< As the connection knew it at the last look.
  const PageOptions mOptions;
  KrDisplayWnd mDisplay;
  FrameRelay mFrames; ///< Before whatever watches frames.
  NewestFrame mNewestFrame;
  Recorder mRecorder;
  FrameSaver mSaver;
  MessageBar* const mBar;
  QMainWindow* const mArea;
  PagePanels mPanels;
  ParameterPanel* const mFeatures;
  ParameterPanel* const mStreamFeatures;
  ParameterPanel* const mTransportFeatures;
  IntervalPanel* const mIntervals;
  RecordPanel* const mRecordPanel;
  CameraTools mTools;
  DeviceSettings mSettings;
  RegionEditor mRegion;
  CameraConnection mConnection; ///< Ends before what it gives frames to.
  Adviser mAdviser;
  Advice mAdvice; ///< As of the last look.
  QTimer mTimer;
  QString mTold; ///< What the bar says by itself, of the state.
  int mCalls = 0;
  bool mHasToldOpened = false;
  bool mHasToldMissing = false;
  bool mHasToldEnd = false;
  bool mHasFollowed = false;     ///< What the connection lends was shown at a look.
  bool mIsConnectWanted = false; ///< As soon as the camera is given back.
  bool mIsEnded = false;
  bool mIsCameraLeft = false;
  bool mHasEndedRecording = false;
  bool mIsRestored = false;  ///< Its panels are as a run before had them.
  bool mIsSharedOut = false; ///< They were fitted to the page as it is on the screen.
};

} // namespace krviewer
