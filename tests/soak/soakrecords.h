#pragma once
// What a soak is told beside results: log records, the toolkit's warnings, message boxes. Those that belong to cameras
// that go are expected; each other one fails the soak.

#include "krbase/krlogger.h"

#include <QTimer>

/// Collects records while it lives, and closes message boxes as a user does.
///
/// Thread: the user interface's; records of all threads.
class SoakRecords {
public:
  SoakRecords();
  ~SoakRecords();
  SoakRecords(const SoakRecords&) = delete;
  SoakRecords& operator=(const SoakRecords&) = delete;

  /// Whether a camera is away or silent, so that message boxes may say so.
  void SetCameraInTrouble(bool aIsSo) { mIsCameraInTrouble = aIsSo; }
  /// Looks at the records since the last call and forgets them; prints those that are not expected.
  void Take();
  int GetUnexpected() const { return mUnexpected; }
  int GetExpected() const { return mExpected; }
  int GetBoxes() const { return mBoxes; }

private:
  void AnswerBox();

  KrLogCapture mCapture;
  QTimer mAnswering;
  bool mIsCameraInTrouble = false;
  int mExpected = 0;
  int mUnexpected = 0;
  int mBoxes = 0;
};
