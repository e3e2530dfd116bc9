// What the camera bridge manager asks of the frame grabber itself, of one that is a description and memory.

#include "camerabridge/grabberquestions.h"

#include "bridgedevicefixture.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace krgui {

namespace {

using krcamerabridge::GrabberDevice;

/// Of three sources the middle one is not available.
std::string MakeSources() {
  return "<Integer Name=\"Never\"><Value>0</Value></Integer>\n"
         "<Enumeration Name=\"SourceSelector\"><EnumEntry Name=\"Source0\"><Value>0</Value></EnumEntry>"
         "<EnumEntry Name=\"Source1\"><pIsAvailable>Never</pIsAvailable><Value>1</Value></EnumEntry>"
         "<EnumEntry Name=\"Source2\"><Value>2</Value></EnumEntry><pValue>SourceSelectorReg</pValue></Enumeration>\n" +
         MakeIntReg("SourceSelectorReg", "0x1000");
}

std::optional<std::vector<std::string>> ListSources(GrabberDevice& aGrabber) {
  const std::optional<KrStringList> sources =
      GrabberQuestions(*aGrabber.device).ListSources([](std::size_t, std::size_t) { return true; });
  if (!sources)
    return std::nullopt;
  std::vector<std::string> names;
  for (const KrString& name : *sources)
    names.push_back(name.ToUtf8());
  return names;
}

} // namespace

TEST(GrabberQuestions, Sources_AreTheAvailableOnesInTheirOrder) {
  GrabberDevice grabber(MakeSources());

  EXPECT_EQ(ListSources(grabber), (std::vector<std::string>{"Source0", "Source2"}));
}

TEST(GrabberQuestions, DeviceWithoutASelector_HasNoSources) {
  GrabberDevice grabber(MakeIntReg("SourceSelectorReg", "0x1000"));

  EXPECT_EQ(ListSources(grabber), std::vector<std::string>());
}

} // namespace krgui
