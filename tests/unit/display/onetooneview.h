#pragma once
// What the tests of the view geometry begin with, and how they hear of its warnings.

#include "logic/display/viewgeometry.h"

#include "krbase/krlogger.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

/// A view of one image in one client area, one to one, updated once.
inline krgui::ViewGeometry MakeOneToOne(int aClientWidth, int aClientHeight, std::uint32_t aWidth,
                                        std::uint32_t aHeight) {
  krgui::ViewGeometry view;
  view.SetClient(aClientWidth, aClientHeight, krgui::ViewGeometry::kBarThickness);
  view.ZoomOneToOne();
  view.Update(aWidth, aHeight);
  return view;
}

/// The texts of the warnings, which all must say that they come from the geometry update.
inline std::vector<std::string> CollectWarnings(const KrLogCapture& aLog) {
  std::vector<std::string> texts;
  for (const KrLogRecord& record : aLog.GetRecords()) {
    EXPECT_EQ(record.level, KrLogLevel::Warning);
    EXPECT_EQ(record.channel, KrString("KrGUILib"));
    EXPECT_EQ(record.function, KrString("DisplayWnd::UpdateViewArea"));
    EXPECT_EQ(record.file, KrString("displaywnd"));
    texts.push_back(record.text.ToUtf8());
  }
  return texts;
}
