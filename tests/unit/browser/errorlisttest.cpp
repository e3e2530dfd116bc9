#include "logic/browser/errorlist.h"

#include "logic/browser/browsertree.h"
#include "nodebench.h"

#include <gtest/gtest.h>

using namespace krgui;

namespace {

class Errors : public testing::Test {
protected:
  /// Features "F1" and so on.
  void AppendFeatures(int aCount) {
    for (int number = 1; number <= aCount; ++number)
      mTree.AppendFeature(kNoItem, "F" + std::to_string(number), *mCamera.array->Get("X"));
  }
  TreeItemData& Feature(int aNumber) { return *mTree.GetFeatures()[static_cast<std::size_t>(aNumber - 1)]; }
  void FailAll() {
    for (const auto& feature : mTree.GetFeatures())
      feature->SetError("No.");
  }
  ErrorSource Source(const char* aPrefix = "") const { return {&mTree.GetFeatures(), aPrefix}; }
  std::string Format(const char* aPrefix = "") const { return FormatErrors(Source(aPrefix)).ToUtf8(); }
  /// Lines "[F1] No." up to a number.
  static std::string MakeLines(int aCount) {
    std::string text;
    for (int number = 1; number <= aCount; ++number)
      text += (number > 1 ? "\r\n[F" : "[F") + std::to_string(number) + "] No.";
    return text;
  }

  NodeBench mCamera{"<Integer Name=\"X\"><Value>1</Value></Integer>"};
  BrowserTree mTree{RowNotifier(mCamera.queue)};
};

} // namespace

TEST_F(Errors, WithoutAny_ListIsEmpty) {
  EXPECT_EQ(Format("P"), "");

  AppendFeatures(3);

  EXPECT_EQ(Format("P"), "");
}

TEST_F(Errors, OfSomeFeatures_AreLinesInTheirOrder) {
  AppendFeatures(4);
  Feature(3).SetError("Parameter out of range");
  Feature(1).SetError("Error reading value, <b>none</b>");

  EXPECT_EQ(Format(), "[F1] Error reading value, <b>none</b>\r\n[F3] Parameter out of range");
}

TEST_F(Errors, WithAPrefix_NameItsSource) {
  AppendFeatures(2);
  FailAll();

  EXPECT_EQ(Format("Camera"), "[Camera, F1] No.\r\n[Camera, F2] No.");
}

TEST_F(Errors, ThatWereCleared_AreGone) {
  AppendFeatures(1);
  FailAll();

  Feature(1).ClearError();

  EXPECT_EQ(Format(), "");
}

TEST_F(Errors, AfterTheSixteenth_EndWithDots) {
  struct {
    int features;
    std::string text;
  } const kRows[] = {
      {15, MakeLines(15)},
      {16, MakeLines(16) + "..."},
      {17, MakeLines(16) + "..."},
      {1000, MakeLines(16) + "..."},
  };

  for (const auto& row : kRows) {
    mTree.Clear();
    AppendFeatures(row.features);
    FailAll();
    EXPECT_EQ(Format(), row.text) << row.features;
  }
}
