#pragma once
// The ways to a camera: what each has to be told, and how it connects. Which one is taken is left to the user.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgendescription.h"
#include "line/cameraanswers.h"
#include "line/icameraline.h"
#include "line/icameraport.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string_view>

namespace krcamerabridge {

struct CameraWay;

/// What a camera is connected with. Of the texts those count that the way has keys for.
struct CameraChoice {
  const CameraWay* way = nullptr; ///< None where nothing is chosen.
  KrString driverTemplate = {};
  KrString xmlID = {};
  KrString path = {};
};

/// A camera that answers.
struct ConnectedCamera {
  std::unique_ptr<ICameraPort> port;
  KrGenDescription description;
  std::uint32_t accessMs = 1000; ///< How long an access may take, in milliseconds.
  KrString cameraID;             ///< Where the way has one.
};

/// What a way needs in order to connect.
struct ConnectionOrder {
  std::function<KrResult(ICameraLine*&)> openLine; ///< To be called once, when the line is needed.
  std::stop_token stop;
  KrStringList& mistakes; ///< Gets those of a file.
  KrString cameraName;    ///< Where the camera is, for what is said of its silence.
  CameraAnswers& answers; ///< Gets what its parameters' accesses come to.
};

/// A row of the table of ways. A new way is one more.
struct CameraWay {
  struct Key {
    const char* name;
    KrString CameraChoice::*text;
  };

  std::string_view word; ///< In saved settings.
  const char* name;      ///< For people.
  std::span<const Key> keys;
  KrResult (*connect)(const CameraChoice& aChoice, const ConnectionOrder& aOrder, ConnectedCamera& aCamera);
};

extern const CameraWay kCameraFileWay;
extern const CameraWay kCLProtocolWay;
extern const CameraWay kGenCPWay;

/// All of them.
std::span<const CameraWay* const> GetCameraWays();

} // namespace krcamerabridge
