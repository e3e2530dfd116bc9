#pragma once
// The end of a camera's page: the pictures that were asked for, and the figures that are printed.

#include "recording/recordingprogress.h"
#include "window/endingwindow.h"

#include <QString>

#include <chrono>

namespace krviewer {

class CameraPage;

// Thread: user interface.

/// Ends a page that is on the screen, with pictures of its display and its features in a folder, if it has shown any
/// frame. Waits for the camera to be given back, as frames come until then, but no longer than aLimit. False, told on
/// the error stream, where it has shown none or a picture could not be written.
bool EndWithPictures(CameraPage& aPage, const QString& aFolder, std::chrono::milliseconds aLimit);

/// What is still under way of a page that has ended, which outlives it. So long its camera is awaited at most.
EndingWork MakeEndingWork(CameraPage& aPage, std::chrono::milliseconds aCameraLimit);

/// Tells on the error stream what of a recording could not be written, and gives it in words.
QString TellFailedRecording(const CameraPage& aPage, const RecordingProgress& aRecording);

/// Prints what came of the recording that a page's end stopped, and tells on the error stream what of it, or of frames
/// that were saved, could not be written: all is written, or never will be. Gives that trouble in words; empty without.
QString TellWritten(const CameraPage& aPage);

/// Prints what came of a page that has ended; aPrefix comes before it.
void PrintFigures(const CameraPage& aPage, const QString& aPrefix);

} // namespace krviewer
