// What the feature browser does by its timer, and what it does for the program while no window is open.

#include "browserfixture.h"

namespace krgui {

namespace {

/// One register that the array remembers.
const std::string kCachedNode = "<Category Name=\"Root\"><pFeature>Kept</pFeature></Category>"
                                "<IntReg Name=\"Kept\"><Address>256</Address><Length>4</Length>"
                                "<AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
                                "<Endianess>LittleEndian</Endianess></IntReg>";

std::int64_t GetKept(DescribedCamera& aCamera) {
  std::int64_t value = -1;
  EXPECT_TRUE(aCamera.Integer("Kept").GetValue(value).IsOK());
  return value;
}

} // namespace

TEST(RefreshOfAClosedWindow, OpenArray_ForgetsWhatItRemembered) {
  DescribedCamera camera(kCachedNode);
  TestBrowserWnd window;
  window.SetGenParameterArray(camera.array.get());
  ASSERT_EQ(GetKept(camera), 0);
  camera.Poke(256, {5});
  ASSERT_EQ(GetKept(camera), 0);

  window.Refresh();

  EXPECT_EQ(GetKept(camera), 5);
}

TEST(RefreshOfAClosedWindow, ArrayThatIsClosedOrNone_IsLeftAlone) {
  DescribedCamera camera(kCachedNode);
  TestBrowserWnd window;
  window.Refresh();
  window.SetGenParameterArray(camera.array.get());
  camera.array->Close();

  window.Refresh();

  EXPECT_EQ(camera.array->GetAccessMode(), KrGenArrayAccess::Closed);
  EXPECT_EQ(camera.port.CountReads(), 0U);
}

TEST(ErrorTimer, UnlessAnotherIsGiven_LooksOnceASecond) {
  EXPECT_EQ(GenBrowserWnd::kErrorIntervalMs, 1000);
}

TEST(ErrorTimer, OfAnotherInterval_FindsErrorsAndTheirEnd) {
  DescribedCamera camera(kCachedNode);
  TestBrowserWnd window({}, {}, 1);
  window.SetGenParameterArray(camera.array.get());
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  TreeItemData& node = *window.GetGrid().GetTree().GetFeatures().at(0);
  ASSERT_TRUE(WaitFor([&] { return window.GetValue("Kept") == "0"; }));

  node.SetError("No answer.");
  EXPECT_TRUE(WaitFor([&] { return window.GetErrorButton().ShowsErrors(); }));

  node.ClearError();
  EXPECT_TRUE(WaitFor([&] { return !window.GetErrorButton().ShowsErrors(); }));
}

} // namespace krgui
