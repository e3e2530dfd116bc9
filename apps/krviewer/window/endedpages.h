#pragma once
// The pages of cameras that are closed, until the last of it: the camera is given back, what was recorded is written,
// its end is noted, and nothing of the page is at work any more. Which pages end, and when, is left to the viewer.

#include "krsystem/krdeviceinfo.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <vector>

namespace krviewer {

class CameraPage;

/// How the end of all is awaited.
struct EndOfPages {
  bool isTold = false;                                  ///< Whether the window shows what went wrong.
  std::chrono::milliseconds limit{};                    ///< kNoLimit for none.
  std::chrono::milliseconds cameraLimit{};              ///< As EndingWork has it.
  std::function<void(const QString& aUnderWay)> giveUp; ///< The limit has passed, and something is still under way.
  /// All have ended, or were left: does what follows, and gives what went wrong with that.
  std::function<QString()> complete;
};

/// Thread: user interface. Ownership: owns the pages.
class EndedPages {
public:
  EndedPages();
  ~EndedPages();
  EndedPages(const EndedPages&) = delete;
  EndedPages& operator=(const EndedPages&) = delete;

  void Add(std::unique_ptr<CameraPage> aPage);
  /// Whether a page of the same camera has not given it back yet.
  bool IsBeingGivenBack(const KrDeviceInfo& aCamera) const;
  /// Those whose cameras were given back for good since the last call.
  std::vector<const CameraPage*> TakeEnded();
  /// What went wrong with files of pages that nobody sees any more, in words.
  QString TellWritten();
  /// Deletes those of which nothing is under way, as late as the toolkit does that.
  void DeleteIdle();
  /// Waits for all of them, with a window that says for what where that takes a moment. Gives what went wrong with
  /// their files.
  QString Await(const EndOfPages& aEnd);
  /// Whether a camera was not waited for, which is still being given back: its page cannot end.
  bool HasLeftCamera() const;

private:
  std::vector<std::unique_ptr<CameraPage>> mPages;
  std::set<const CameraPage*> mUntaken;   ///< The ones that TakeEnded has not given yet.
  std::set<const CameraPage*> mUnwritten; ///< And those whose files are perhaps not all written yet.
};

} // namespace krviewer
