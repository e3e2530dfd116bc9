#pragma once
// A camera's frames in a display: a stream, the thread that shows it, and a camera that is set up anew in between.

#include "krdevice/krstream.h"
#include "soakdice.h"
#include "soaklab.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

class KrDisplayWnd;

/// Thread: the user interface's. Ownership: borrows window and camera, which is open from Start to Stop.
class LiveDisplay {
public:
  LiveDisplay(KrDisplayWnd& aWindow, LabCamera& aCamera);
  ~LiveDisplay();

  void Start();
  void Stop();
  bool IsRunning() const { return mStream != nullptr; }
  /// Handles events until further frames have come.
  void AwaitFrames();
  /// Another size, offset and pixel format, at random; while it is stopped.
  void ChangeFormat(SoakDice& aDice);
  /// The largest image of the first format.
  void ResetFormat();

  std::uint64_t GetFrames() const { return mFrames; }
  /// Frames that were not as the camera was set, or that the window refused.
  int GetFailures() const { return mFailures; }

private:
  void Show(const std::stop_token& aStop);
  void Take(const KrBuffer& aFrame);
  KrStringList ListFormats();
  void SetFormat(const KrString& aFormat);
  void SetInteger(const char* aName, std::int64_t aValue);
  std::int64_t GetInteger(const char* aName);

  KrDisplayWnd& mWindow;
  LabCamera& mCamera;
  std::unique_ptr<KrStream> mStream;
  std::uint32_t mWidth = 0;  // Of the frames that are to come, while a stream runs.
  std::uint32_t mHeight = 0; // The same.
  std::atomic<std::uint64_t> mFrames = 0;
  std::atomic<int> mFailures = 0;
  std::jthread mThread;
};
