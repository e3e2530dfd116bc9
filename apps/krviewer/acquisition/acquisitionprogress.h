#pragma once
// What the acquisition's thread tells of itself: what it does, why, and the figures so far.

#include "acquisition/camerainfo.h"
#include "acquisition/settingsreturn.h"
#include "krbase/krresult.h"
#include "krdevice/krstream.h"
#include "streamfigures.h"

#include <cstdint>
#include <optional>

namespace krviewer {

enum class AcquisitionState {
  Connecting,
  Connected, ///< The camera is open and sends nothing: it was stopped, or could not be started.
  Streaming, ///< Frames come, or would if the camera sent any.
  Lost,      ///< The camera vanished; it is awaited.
  Finished,  ///< The number of frames asked for came, or the acquisition was ended.
  Failed,    ///< It could not be opened, or was lost while a number of frames was asked for.
};

/// A copy of what the thread has come to.
struct AcquisitionProgress {
  AcquisitionState state = AcquisitionState::Connecting;
  CameraInfo camera;             ///< Where it is, or was before it was lost; null before it was looked for.
  KrResult result;               ///< Why it was lost, failed, or is connected and could not be started.
  KrResult parameters;           ///< Why the camera's parameters cannot be had; OK while that is not known.
  std::uint64_t lastFrameID = 0; ///< Of the frame displayed last.
  std::uint64_t returns = 0;     ///< How often the camera was lost and came back.
  SettingsReturned settings;     ///< What came of setting it as before the last time.
  krapps::StreamFigures figures;
  bool wasOpened = false; ///< The camera was had, now or before.
  bool isRefused = false; ///< A lost camera is back and cannot be started.
  KrString strayAddress;  ///< Where a lost camera answers that cannot be reached there; empty for one that does not.
  bool isSlow = false;    ///< Whether its registers take long to answer.
  KrStreamStatistics statistics;      ///< Of all connections together.
  double framesPerSecond = 0;         ///< Over the last second; 0 when no frames come any more.
  double megabytesPerSecond = 0;      ///< Likewise.
  std::optional<double> temperatureC; ///< Of the camera, where it says one.
};

} // namespace krviewer
