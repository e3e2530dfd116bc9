#pragma once
// From a sample to the byte that is shown: one entry for each value that a sample can have, with the window, the white
// balance and gamma in it. Which settings are in effect is the store's business.

#include "krbuffer/krconversionsettings.h"
#include "krbuffer/krpixeltype.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace krbuffer {

struct ToneSettings {
  KrWhiteBalance whiteBalance;
  double gamma = 1;
  std::optional<KrSampleWindow> window;
};

/// What tables depend on besides the settings.
struct ToneDepth {
  unsigned bits;    ///< Of a sample, 1 to 16.
  double least;     ///< The value of sample 0: below 0 for signed formats, whose samples come with half a range added.
  bool hasChannels; ///< True for colours, which have a table for each channel.

  friend bool operator==(const ToneDepth&, const ToneDepth&) = default;
};

/// The depth of a format's samples. Luma and chroma and components of different sizes are bytes when tables see them.
ToneDepth GetToneDepth(const KrPixelTypeInfo& aFormat);

/// True when the settings leave samples of this depth as they are: they are shown by their top 8 bits. Samples of fewer
/// bits always need a table.
bool IsNeutral(const ToneSettings& aSettings, const ToneDepth& aDepth);

/// What a value from 0 to 1 is shown as, rounded to the nearest.
std::uint8_t ShowTone(double aInput, double aGamma);

/// Thread: constant once made.
class ToneTables {
public:
  enum class Channel { Red, Green, Blue };

  ToneTables(const ToneSettings& aSettings, const ToneDepth& aDepth);

  /// The table of a channel; formats without channels have the same for all. One entry for each sample.
  const std::uint8_t* GetTable(Channel aChannel) const {
    return mTables[mTables.size() == 1 ? 0 : static_cast<std::size_t>(aChannel)].data();
  }
  /// The table of formats without channels.
  const std::uint8_t* GetGreyTable() const { return mTables.front().data(); }

private:
  std::vector<std::vector<std::uint8_t>> mTables;
};

} // namespace krbuffer
