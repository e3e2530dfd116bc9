#include "acquisition/overlaytext.h"

#include "plaintext.h"

#include <string>

namespace krviewer {

KrString FormatOverlay(const FrameMeter& aMeter, const KrStreamStatistics& aStatistics) {
  return krapps::FormatFixed(aMeter.GetFramesPerSecond(), 1) + " frames/s   " +
         krapps::FormatFixed(aMeter.GetMegabytesPerSecond(), 1) + " MB/s\nincomplete " +
         std::to_string(aStatistics.incomplete) + "   missing packets " + std::to_string(aStatistics.missingPackets) +
         "   resent " + std::to_string(aStatistics.resentPackets);
}

KrString BreakIntoSentences(const KrString& aText) {
  std::string text = aText.ToUtf8();
  for (std::size_t end = text.find(". "); end != std::string::npos; end = text.find(". ", end))
    text.replace(end, 2, ".\n");
  return text;
}

} // namespace krviewer
