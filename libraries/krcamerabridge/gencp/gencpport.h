#pragma once
// A connection to a GenCP camera, and its registers. What the description makes of them is left to the parameter array.

#include "gencp/commandcycle.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgendescription.h"
#include "line/icameraline.h"
#include "line/sessionport.h"

#include <cstdint>
#include <stop_token>

namespace krcamerabridge {

/// Thread: Connect, Disconnect and GetXMLIDs one at a time; others as of SessionPort. Ownership: borrows the line, of
/// which it is the only user.
///
///     GenCPPort port(line);
///     KrGenDescription description;
///     KrResult result = port.Connect(xmlID, description, stop);
///     if (result.IsOK())
///       result = KrGenParameterArray::Open(description, port, {GenCPPort::kAccessTimeoutMs}, array);
class GenCPPort final : public SessionPort {
public:
  /// How long an array should wait for a camera: the longest packets, lost three times at the slowest rate.
  static constexpr std::uint32_t kAccessTimeoutMs = 15000;

  explicit GenCPPort(ICameraLine& aLine, const CycleTimes& aTimes = {});

  /// The identifiers of the camera's descriptions, the best first; the camera is left as it was. WrongState while
  /// connected, NotFound when no camera answers or it has no description that can be read.
  KrResult GetXMLIDs(KrStringList& aXMLIDs, const std::stop_token& aStop);
  /// Finds the camera, takes control of it, goes up to the best baud rate and reads one of its descriptions; it takes
  /// as long as the line needs. WrongState while connected, NotFound when no camera answers or it has no such
  /// description, AccessDenied when it does not give control, BadData for a description that is none, or not the one
  /// whose hash the manifest has.
  KrResult Connect(const KrString& aXMLID, KrGenDescription& aDescription, const std::stop_token& aStop);

private:
  ICameraLine& mLine;
  const CycleTimes mTimes;
};

} // namespace krcamerabridge
