#pragma once
// What the viewer's windows look at: a camera of the simulated lab on the viewer's own thread, and its loop.

#include "acquisition/acquisition.h"
#include "await.h"
#include "labfixture.h"

#include <QCoreApplication>

#include <functional>
#include <optional>

class ViewerLabTest : public LabTest {
protected:
  void Open(const char* aMACAddress = kMonoMAC) {
    FindAll();
    mAcquisition.emplace(mWindow, krviewer::BorrowCamera(*FindInfo(aMACAddress)));
  }
  /// What the viewer does every now and then.
  virtual void LookAgain() = 0;
  // Looks again until a condition comes true; false when it does not within a generous limit.
  bool Await(const std::function<bool()>& aCondition) {
    return krtest::Await([&] {
      const bool isSo = aCondition();
      if (!isSo) {
        QCoreApplication::processEvents();
        LookAgain();
      }
      return isSo;
    });
  }
  bool IsIn(krviewer::AcquisitionState aState) const { return mAcquisition->GetProgress().state == aState; }

  KrDisplayWnd mWindow;
  std::optional<krviewer::Acquisition> mAcquisition;
};
