#pragma once
// The pages of cameras that are closed, until the last of it: the camera is given back, what was recorded is written,
// figures are printed, and nothing of the page is at work any more. Which pages end, and when, is left to the viewer.

#include "krsystem/krdeviceinfo.h"

#include <QString>

#include <memory>
#include <set>
#include <vector>

namespace krviewer {

class CameraPage;

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
  /// Prints the figures of those that have ended since; each line names its camera where that is wanted.
  void PrintFigures(bool aHasNames);
  /// What went wrong with files of pages that nobody sees any more, in words.
  QString TellWritten();
  /// Deletes those of which nothing is under way, as late as the toolkit does that.
  void DeleteIdle();
  /// Waits for all of them, with a window that says for what where that takes a moment. Gives what went wrong with
  /// their files, which is shown in that window where aIsTold.
  QString Await(bool aIsTold);

private:
  std::vector<std::unique_ptr<CameraPage>> mPages;
  std::set<const CameraPage*> mUnprinted; ///< The ones whose figures are not printed yet.
  std::set<const CameraPage*> mUnwritten; ///< And those whose files are perhaps not all written yet.
};

} // namespace krviewer
