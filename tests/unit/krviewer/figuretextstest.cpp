#include "panels/figuretexts.h"

#include <gmock/gmock.h>

#include <set>

using krviewer::FigureKind;
using krviewer::FigurePlace;
using krviewer::FigureTexts;
using krviewer::FitFigures;
using krviewer::FormatPixel;
using krviewer::kFigures;
using krviewer::ShownFigures;
using testing::ElementsAre;

namespace {

KrDisplayPixel MakeGreyPixel() {
  return {.x = 120, .y = 33, .raw = {1, {1023}, {'Y'}}, .red = 255, .green = 255, .blue = 255};
}

} // namespace

TEST(FigureTexts, Figures_ReadWithTheirUnits) {
  const FigureTexts texts({.framesPerSecond = 29.97,
                           .megabytesPerSecond = 123.44,
                           .frames = 5000,
                           .statistics = {.resentPackets = 7},
                           .temperatureC = 45.25});

  EXPECT_EQ(texts.Get(FigureKind::FrameRate).text, "30.0 frames/s");
  EXPECT_EQ(texts.Get(FigureKind::DataRate).text, "123.4 MB/s");
  EXPECT_EQ(texts.Get(FigureKind::Frames).text, "5000 frames");
  EXPECT_EQ(texts.Get(FigureKind::ResentPackets).text, "resent 7");
  EXPECT_EQ(texts.Get(FigureKind::Incomplete).text, "incomplete 0");
  EXPECT_THAT(texts.Get(FigureKind::Temperature).text, testing::EndsWith(" °C"));
}

TEST(FigureTexts, WhatIsNotThere_HasNoText) {
  const FigureTexts texts{ShownFigures()};

  EXPECT_EQ(texts.Get(FigureKind::Temperature).text, "");
  EXPECT_EQ(texts.Get(FigureKind::Pixel).text, "");
}

TEST(FigureTexts, Losses_StandOutAndStayLongerThanAllButTheRate) {
  const FigureTexts texts({.statistics = {.incomplete = 1, .missingPackets = 2, .discarded = 3, .missingFrames = 4}});

  for (const FigureKind kind :
       {FigureKind::Incomplete, FigureKind::MissingPackets, FigureKind::Discarded, FigureKind::MissingFrames}) {
    EXPECT_TRUE(texts.Get(kind).isLoss);
    EXPECT_LT(texts.Get(kind).rank, texts.Get(FigureKind::Pixel).rank);
    EXPECT_GT(texts.Get(kind).rank, texts.Get(FigureKind::FrameRate).rank);
  }
  EXPECT_EQ(texts.Get(FigureKind::MissingFrames).text, "missing frames 4");
}

TEST(FigureTexts, WithoutLosses_NothingStandsOut) {
  const FigureTexts texts({.statistics = {.received = 100, .resentPackets = 50}});

  for (std::size_t i = 0; i < kFigures; ++i)
    EXPECT_FALSE(texts.Get(static_cast<FigureKind>(i)).isLoss);
}

TEST(FigureTexts, WithoutLosses_FiguresGoInTheOrderOfTheirUse) {
  const FigureTexts texts({.temperatureC = 45.25});

  // The frames are counted in other places, too, and what a busy computer drops stands out as soon as it does.
  constexpr FigureKind kOrder[] = {FigureKind::FrameRate,      FigureKind::Pixel,         FigureKind::DataRate,
                                   FigureKind::Temperature,    FigureKind::Incomplete,    FigureKind::MissingFrames,
                                   FigureKind::MissingPackets, FigureKind::ResentPackets, FigureKind::Frames,
                                   FigureKind::Discarded};
  for (std::size_t i = 1; i < std::size(kOrder); ++i)
    EXPECT_LE(texts.Get(kOrder[i - 1]).rank, texts.Get(kOrder[i]).rank) << i;
  EXPECT_LT(texts.Get(FigureKind::Temperature).rank, texts.Get(FigureKind::Incomplete).rank);
  EXPECT_LT(texts.Get(FigureKind::ResentPackets).rank, texts.Get(FigureKind::Frames).rank);
}

TEST(FigureTexts, EveryFigure_HasAMeaningOfItsOwn) {
  std::set<std::string> meanings;
  for (std::size_t i = 0; i < kFigures; ++i)
    meanings.insert(FigureTexts::GetMeaning(static_cast<FigureKind>(i)));

  EXPECT_EQ(meanings.size(), kFigures);
  EXPECT_FALSE(meanings.contains(""));
}

TEST(FormatPixel, GreyPixel_HasOneValueEach) {
  EXPECT_EQ(FormatPixel(MakeGreyPixel()), "x 120  y 33   raw 1023   shown 255");
}

TEST(FormatPixel, ColourPixel_HasThree) {
  EXPECT_EQ(FormatPixel({.x = 1, .y = 2, .raw = {3, {12, 34, 56}, {'R', 'G', 'B'}}, .red = 9, .green = 8, .blue = 7}),
            "x 1  y 2   raw R 12 G 34 B 56   shown 9 8 7");
}

TEST(FormatPixel, BayerPixel_NamesItsColour) {
  EXPECT_EQ(FormatPixel({.x = 1, .y = 2, .raw = {1, {12}, {'G'}}, .red = 9, .green = 9, .blue = 9}),
            "x 1  y 2   raw G 12   shown 9 9 9");
}

TEST(FormatPixel, PixelWhoseSamplesCannotBeTold_HasWhatIsShown) {
  EXPECT_EQ(FormatPixel({.x = 1, .y = 2, .raw = {}, .red = 9, .green = 8, .blue = 7}), "x 1  y 2   shown 9 8 7");
}

TEST(FormatPixel, GreatestPlaces_AreWritten) {
  KrDisplayPixel pixel = MakeGreyPixel();
  pixel.x = 4294967295u;

  EXPECT_THAT(FormatPixel(pixel), testing::StartsWith("x 4294967295  y 33"));
}

TEST(FitFigures, EnoughRoom_TakesAll) {
  const FigurePlace places[] = {{10, 3}, {20, 0}, {30, 1}};

  EXPECT_THAT(FitFigures(places, 5, 70), ElementsAre(true, true, true));
}

TEST(FitFigures, TooLittleRoom_LeavesOutTheLastRanksFirst) {
  const FigurePlace places[] = {{10, 3}, {20, 0}, {30, 1}};

  EXPECT_THAT(FitFigures(places, 5, 69), ElementsAre(false, true, true));
  EXPECT_THAT(FitFigures(places, 5, 54), ElementsAre(false, true, false));
  EXPECT_THAT(FitFigures(places, 5, 19), ElementsAre(false, false, false));
}

TEST(FitFigures, SmallOneOfALaterRank_DoesNotPassALargerOne) {
  const FigurePlace places[] = {{50, 1}, {5, 2}, {20, 0}};

  EXPECT_THAT(FitFigures(places, 5, 40), ElementsAre(false, false, true));
}

TEST(FitFigures, WhatIsNotThere_TakesNoRoom) {
  const FigurePlace places[] = {{0, 0}, {20, 1}, {0, 2}, {20, 3}};

  EXPECT_THAT(FitFigures(places, 5, 45), ElementsAre(false, true, false, true));
}
