#pragma once
// The texts drawn over the picture. When they are drawn is left to FramePicture.

#include "acquisition/framemeter.h"
#include "krbase/krstring.h"
#include "krdevice/krstream.h"

namespace krviewer {

/// Rates and losses.
KrString FormatOverlay(const FrameMeter& aMeter, const KrStreamStatistics& aStatistics);

/// A text with each sentence in a line of its own, as the window does not wrap lines.
KrString BreakIntoSentences(const KrString& aText);

} // namespace krviewer
