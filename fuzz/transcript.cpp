// Whatever a serial line may bring: how it came in pieces does not show in the transcript, and what is kept of it has
// an end. The first byte chooses the format and the size of the pieces.

#include "logic/serial/rollingtext.h"
#include "logic/serial/transcriptencoder.h"
#include "require.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace {

using krgui::DisplayFormat;

constexpr std::array kFormats = {DisplayFormat::ASCII, DisplayFormat::Hexadecimal, DisplayFormat::Hybrid};
constexpr std::size_t kLimit = 200;
/// What is rendered between two flushes fits into the pending text: a byte makes less than five units, a line more
/// than that is written anew.
constexpr std::size_t kMostPiece = 1024;
static_assert(kMostPiece * 8 <= krgui::TranscriptEncoder::kPendingLimit);

// All text that is shown, and beside it the text that the window keeps of it.
class Transcript final : public krgui::ITranscript, public krgui::IRollingView {
public:
  Transcript() { mRolling.SetLimit(kLimit); }

  void RemoveLastLine() override {
    mAll.resize(mAll.rfind(u'\n') + 1);
    mRolling.RemoveLastLine();
  }
  void Append(std::u16string_view aText) override {
    mAll += aText;
    mRolling.Append(aText);
    // The limit holds so long as no batch was longer.
    mMost = std::max(mMost, aText.size());
    Require(mRolling.GetText().size() <= mMost);
    Require(mAll.ends_with(mRolling.GetText()));
  }
  void SetEmpty() override {
    mAll.clear();
    mRolling.SetEmpty();
  }
  void OnTextChanged(std::u16string_view aText, std::size_t aErased, std::u16string_view aAppended) override {
    Require(aErased <= mShown.size());
    mShown.erase(0, aErased);
    mShown += aAppended;
    Require(mShown == aText);
  }
  void OnTextCut(std::u16string_view aText) override {
    Require(mShown.starts_with(aText));
    mShown = aText;
  }

  const std::u16string& GetAll() const { return mAll; }

private:
  std::size_t mMost = kLimit;
  std::u16string mAll;
  std::u16string mShown; // As a view has it that is told of changes alone.
  krgui::RollingText mRolling{*this};
};

std::u16string Show(std::span<const std::uint8_t> aBytes, DisplayFormat aFormat, std::size_t aPiece) {
  krgui::TranscriptEncoder encoder;
  Transcript transcript;
  encoder.SetDisplayFormat(transcript, aFormat);
  while (!aBytes.empty()) {
    const auto piece = aBytes.first(std::min(aPiece, aBytes.size()));
    encoder.RenderBytes(piece.data(), static_cast<std::uint32_t>(piece.size()));
    Require(encoder.GetUnflushedBytes() == piece.size());
    encoder.FlushPending(transcript);
    Require(encoder.GetUnflushedBytes() == 0 && encoder.GetDroppedUnits() == 0);
    aBytes = aBytes.subspan(piece.size());
  }
  return transcript.GetAll();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0)
    return 0;
  const DisplayFormat format = kFormats[aData[0] % kFormats.size()];
  const std::size_t piece = std::size_t{aData[0]} / kFormats.size() + 1;
  const std::span bytes(aData + 1, aSize - 1);

  Require(Show(bytes, format, piece) == Show(bytes, format, kMostPiece));
  return 0;
}
