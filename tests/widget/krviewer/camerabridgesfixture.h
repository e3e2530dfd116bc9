#pragma once
// The camera bridges of the viewer, with the frame grabber that its thread lends.

#include "bridges/camerabridges.h"
#include "krcamerabridge/krcamerabridge.h"
#include "viewerlab.h"

#include <QComboBox>

class CameraBridgesTest : public ViewerLabTest {
protected:
  static constexpr const char* kGrabberMAC = "02:4b:52:00:78:12";
  static constexpr int kPortList = 1048;

  void LookAgain() override {
    mBridges.Follow(GetLoan());
    mBridges.LookAgain();
  }
  void OpenGrabber() {
    Open(kGrabberMAC);
    ASSERT_TRUE(AwaitDevice());
  }
  bool AwaitDevice() {
    return Await([this] { return mBridges.HasPorts() && IsIn(krviewer::AcquisitionState::Streaming); });
  }
  void Lose() {
    ASSERT_TRUE(mLab->Lose(kGrabberMAC).IsOK());
    ASSERT_TRUE(Await([this] { return !mBridges.HasDevice(); }));
  }
  void Return() {
    ASSERT_TRUE(mLab->Restore(kGrabberMAC).IsOK());
    ASSERT_TRUE(AwaitDevice());
  }
  void Close() {
    mBridges.GiveBack(GetLoan());
    mAcquisition->Stop();
  }
  krviewer::Loan<krviewer::LentDevice>& GetLoan() {
    return mAcquisition->GetDevice(krviewer::DeviceBorrower::CameraBridges);
  }
  int CountListedPorts() {
    return mBridges.GetWindow().GetWidget()->findChild<QComboBox*>("control" + QString::number(kPortList))->count();
  }

  krviewer::CameraBridges mBridges;
};
