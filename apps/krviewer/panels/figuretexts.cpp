#include "panels/figuretexts.h"

#include "panels/valuetext.h"
#include "plaintext.h"

#include <algorithm>
#include <numeric>

namespace krviewer {

namespace {

/// What a figure means does not depend on its value.
struct FigureWords {
  FigureKind kind;
  const char* usual;
  const char* meaning;
};

constexpr std::array<FigureWords, kFigures> kWords = {{
    {FigureKind::Pixel, "x 0000  y 0000   raw R 0000   shown 000 000 000",
     "The pixel under the mouse: its column and line, what the sensor sent and what the screen shows of it."},
    {FigureKind::FrameRate, "000.0 frames/s", "Frames that arrive in a second."},
    {FigureKind::DataRate, "0000.0 MB/s", "Millions of bytes of frames that arrive in a second."},
    {FigureKind::Frames, "0000000 frames", "Frames that have arrived, whole or not."},
    {FigureKind::Incomplete, "incomplete 00",
     "Frames of which a part was lost. Larger packets on all parts of the way, a lower frame rate or another cable may "
     "help."},
    {FigureKind::MissingFrames, "missing frames 00",
     "Frames of which nothing arrived, as the numbers of the others show."},
    {FigureKind::MissingPackets, "missing packets 00",
     "Packets that did not arrive in time. Larger socket buffers, a packet delay or a lower frame rate may help."},
    {FigureKind::ResentPackets, "resent 000",
     "Packets that were lost at first and arrived when they were asked for again: nothing is lost by them."},
    {FigureKind::Discarded, "discarded 00",
     "Frames that were dropped on this computer, as no buffer was free: it is too busy for the camera."},
    {FigureKind::Temperature, "00.0 °C", "The temperature that the device says it has."},
}};

constexpr bool StandInOrder() {
  for (std::size_t i = 0; i < kWords.size(); ++i)
    if (static_cast<std::size_t>(kWords[i].kind) != i)
      return false;
  return true;
}
static_assert(StandInOrder());

/// Of those that tell of no loss, in the order in which they stay.
enum Rank {
  kRateRank,
  kLossRank,
  kPixelRank,
  kDataRank,
  kTemperatureRank,
  kNoLossRank,
  kResentRank,
  kFramesRank,
  kNothingDiscardedRank
};

} // namespace

FigureTexts::FigureTexts(const ShownFigures& aFigures) {
  At(FigureKind::FrameRate) = {krapps::FormatFixed(aFigures.framesPerSecond, 1) + " frames/s", false, kRateRank};
  At(FigureKind::DataRate) = {krapps::FormatFixed(aFigures.megabytesPerSecond, 1) + " MB/s", false, kDataRank};
  At(FigureKind::Frames) = {std::to_string(aFigures.frames) + (aFigures.frames == 1 ? " frame" : " frames"), false,
                            kFramesRank};
  const KrStreamStatistics& statistics = aFigures.statistics;
  SetLoss(FigureKind::Incomplete, "incomplete ", statistics.incomplete, kNoLossRank);
  SetLoss(FigureKind::MissingFrames, "missing frames ", statistics.missingFrames, kNoLossRank);
  SetLoss(FigureKind::MissingPackets, "missing packets ", statistics.missingPackets, kNoLossRank);
  SetLoss(FigureKind::Discarded, "discarded ", statistics.discarded, kNothingDiscardedRank);
  At(FigureKind::ResentPackets) = {"resent " + std::to_string(statistics.resentPackets), false, kResentRank};
  if (aFigures.temperatureC)
    At(FigureKind::Temperature) = {krapps::FormatFixed(*aFigures.temperatureC, 1) + " °C", false, kTemperatureRank};
  // Without a pixel its place is kept, so that nothing moves with the mouse.
  At(FigureKind::Pixel) = {aFigures.pixel ? FormatPixel(*aFigures.pixel) : std::string(), false, kPixelRank};
}

void FigureTexts::SetLoss(FigureKind aKind, const char* aName, std::uint64_t aCount, int aRank) {
  At(aKind) = {aName + std::to_string(aCount), aCount > 0, aCount > 0 ? kLossRank : aRank};
}

std::string FigureTexts::GetUsual(FigureKind aKind) {
  return kWords[static_cast<std::size_t>(aKind)].usual;
}

std::string FigureTexts::GetMeaning(FigureKind aKind) {
  return kWords[static_cast<std::size_t>(aKind)].meaning;
}

std::string FormatPixel(const KrDisplayPixel& aPixel) {
  std::string text = "x " + std::to_string(aPixel.x) + "  y " + std::to_string(aPixel.y);
  const KrPixelValue& raw = aPixel.raw;
  const bool isGrey = raw.sampleCount == 1 && raw.components[0] == 'Y';
  if (raw.sampleCount > 0)
    text += "   raw";
  for (std::size_t i = 0; i < static_cast<std::size_t>(raw.sampleCount); ++i)
    text += (isGrey ? std::string(" ") : std::string(" ") + raw.components[i] + " ") + FormatValue(raw.samples[i]);
  text += "   shown " + std::to_string(aPixel.red);
  if (!isGrey || aPixel.red != aPixel.green || aPixel.red != aPixel.blue)
    text += " " + std::to_string(aPixel.green) + " " + std::to_string(aPixel.blue);
  return text;
}

std::vector<bool> FitFigures(std::span<const FigurePlace> aPlaces, int aGap, int aWidth) {
  std::vector<std::size_t> order(aPlaces.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [aPlaces](std::size_t aIndex) { return aPlaces[aIndex].rank; });
  std::vector<bool> fits(aPlaces.size(), false);
  int used = -aGap;
  for (const std::size_t index : order) {
    if (aPlaces[index].width == 0)
      continue;
    used += aGap + aPlaces[index].width;
    if (used > aWidth)
      break;
    fits[index] = true;
  }
  return fits;
}

} // namespace krviewer
