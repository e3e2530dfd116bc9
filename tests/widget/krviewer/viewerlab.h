#pragma once
// What the viewer's windows look at: a camera of the simulated lab on the viewer's own thread, and its loop.

#include "acquisition/acquisition.h"
#include "labfixture.h"

#include <QCoreApplication>

#include <chrono>
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
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(kGenerousLimitMs);
    while (!aCondition() && std::chrono::steady_clock::now() < until) {
      QCoreApplication::processEvents();
      LookAgain();
    }
    return aCondition();
  }
  bool IsIn(krviewer::AcquisitionState aState) const { return mAcquisition->GetProgress().state == aState; }

  KrDisplayWnd mWindow;
  std::optional<krviewer::Acquisition> mAcquisition;
};
