#pragma once
// Asks a device whether it is there and whether anybody controls it, within half a second. What follows from the answer
// is decided by those who ask.

#include "gigevision/gvcpclient.h"

#include <stop_token>

namespace krtransport {

enum class ProbeFinding {
  Controlled,   ///< Some application has control.
  Uncontrolled, ///< The device answers and nobody has.
  Withheld,     ///< The device answers, but not to that question, or late: it is held exclusively, busy, or slow.
  Silent,
  Cancelled, ///< The stop token ended the asking.
};

/// Takes half a second for a silent device, and no time to speak of for one that answers.
ProbeFinding ProbeDevice(GvcpClient& aClient, const std::stop_token& aStop = {});

} // namespace krtransport
