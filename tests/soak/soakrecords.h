#pragma once
// What a soak is told beside results: log records, the toolkit's warnings, message boxes. Those that belong to cameras
// that go are expected; each other one fails the soak.

#include "krbase/krlogger.h"

#include <QTimer>

#include <set>
#include <string>
#include <vector>

/// Collects records while it lives, and closes message boxes as a user does.
///
/// Thread: the user interface's; records of all threads.
class SoakRecords {
public:
  SoakRecords();
  ~SoakRecords();
  SoakRecords(const SoakRecords&) = delete;
  SoakRecords& operator=(const SoakRecords&) = delete;

  /// A camera is away or silent: until the trouble ends message boxes may say so, until the next Take records that have
  /// one of its names.
  void BeginTrouble(const std::vector<std::string>& aNames);
  void EndTrouble() { mIsCameraInTrouble = false; }
  /// Looks at the records since the last call and forgets them; prints those that are not expected. Nothing is in
  /// trouble.
  void Take();
  int GetUnexpected() const { return mUnexpected; }
  int GetExpected() const { return mExpected; }
  int GetBoxes() const { return mBoxes; }

private:
  void AnswerBox();
  bool IsExpected(const KrLogRecord& aRecord) const;

  KrLogCapture mCapture;
  QTimer mAnswering;
  bool mIsCameraInTrouble = false;
  std::set<std::string> mTroubled;
  int mExpected = 0;
  int mUnexpected = 0;
  int mBoxes = 0;
};
