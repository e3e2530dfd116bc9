#pragma once
// A connection to a camera by a CL Protocol driver, and the camera's registers. What the description makes of them is
// left to the parameter array.

#include "clprotocol/cldrivertimes.h"
#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgendescription.h"
#include "line/icameraline.h"
#include "line/sessionport.h"

#include <cstdint>
#include <stop_token>

namespace krcamerabridge {

/// Drivers run in processes of their own. One that keeps silent is ended past its limit, with TimeLimitExceeded; one
/// that ends by itself is told of with SystemError. Both name the driver. In accesses to a connected camera they are
/// ConnectionLost.
///
/// Thread: Probe, Connect and Disconnect one at a time; GetTemplates any; others as of SessionPort. Ownership: borrows
/// the line, of which it is the only user.
///
///     CLProtocolPort port(line);
///     KrGenDescription description;
///     KrResult result = port.Connect(clTemplate, xmlID, description, stop);
///     if (result.IsOK())
///       result = KrGenParameterArray::Open(description, port, {CLProtocolPort::kAccessTimeoutMs}, array);
class CLProtocolPort final : public SessionPort {
public:
  /// How long an array should wait for a camera: longer than a driver may take that the camera keeps waiting with a
  /// write. One that does not come back from a call, or a camera that keeps silent, is found out long before.
  static constexpr std::uint32_t kAccessTimeoutMs = 330000;

  explicit CLProtocolPort(ICameraLine& aLine, const CLDriverTimes& aTimes = {});

  /// The templates of all drivers that are installed, "Directory#FileName#Manufacturer…" each, in the order of the
  /// directories. Drivers that do not work are left out, with a warning in the log; SystemError with what is wrong with
  /// them when nothing else is left. OK without any where no driver is installed.
  static KrResult GetTemplates(KrStringList& aTemplates, const CLDriverTimes& aTimes = {});

  /// Asks the driver of a template for a camera, and for the identifiers of its descriptions, the best first; the
  /// camera is left as it was. A template may also be a camera's identifier, which finds that camera. WrongState while
  /// connected, InvalidInput for a template that no driver has, NotFound when no camera answers.
  KrResult Probe(const KrString& aTemplate, KrString& aCameraID, KrStringList& aXMLIDs, const std::stop_token& aStop);
  /// Finds the camera, goes up to the best baud rate and gets one of its descriptions; it takes as long as the line
  /// needs. Results as of Probe; NotFound also for a description that there is not, BadData for one that is none.
  KrResult Connect(const KrString& aTemplate, const KrString& aXMLID, KrGenDescription& aDescription,
                   const std::stop_token& aStop);
  /// The full identifier of the camera that is connected, "Directory#FileName#Manufacturer…"; empty for none.
  KrString GetCameraID() const { return IsConnected() ? mCameraID : KrString(); }

private:
  ICameraLine& mLine;
  const CLDriverTimes mTimes;
  KrString mCameraID;
};

} // namespace krcamerabridge
