#pragma once
// Whether a device keeps silent at the moment: reported by whoever waited in vain, ended by the link's watch when the
// device answers again. Loss is another matter, and the watch's.

namespace krtransport {

/// Thread: any; nothing blocks.
class ISilence {
public:
  virtual ~ISilence() = default;
  /// True from ReportSilence until the device answers again; false once the device counts as lost.
  virtual bool IsSilent() const = 0;
  /// An access got no answer: the device is asked at once.
  virtual void ReportSilence() = 0;
};

} // namespace krtransport
