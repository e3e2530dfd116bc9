// Which controls can be used: every combination of what they follow from, against a table that says for each control
// under which conditions it is enabled.

#include "logic/camerabridge/camerabridgestate.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace krgui {

namespace {

enum class Fact { Any, No, Yes };

/// The conditions that all have to hold.
struct Row {
  const char* control;
  bool CameraBridgeEnabling::*isEnabled;
  const char* kinds; ///< N, F, C and G for none, camera file, CL Protocol and GenCP; "" where the kind does not count.
  Fact port, connected, templates, clXMLs, genCPXMLs, sources, poCL, fileVisible;
};

constexpr Fact A = Fact::Any;
constexpr Fact N = Fact::No;
constexpr Fact Y = Fact::Yes;

constexpr Row kRows[] = {
    //                                                                kinds port conn tmpl cl genCP src pocl file
    {"port", &CameraBridgeEnabling::port, "", Y, A, A, A, A, A, A, A},
    {"CL Protocol labels", &CameraBridgeEnabling::clProtocol, "C", Y, A, A, A, A, A, A, A},
    {"templates", &CameraBridgeEnabling::templates, "C", Y, N, Y, N, A, A, A, A},
    {"CL Protocol XML", &CameraBridgeEnabling::clProtocolXML, "C", Y, N, A, Y, A, A, A, A},
    {"GenCP labels", &CameraBridgeEnabling::genCP, "G", Y, A, A, A, A, A, A, A},
    {"GenCP XML", &CameraBridgeEnabling::genCPXML, "G", Y, A, A, A, Y, A, A, A},
    {"camera file radio", &CameraBridgeEnabling::cameraFileKind, "", Y, A, A, A, A, A, A, Y},
    {"camera file controls", &CameraBridgeEnabling::cameraFile, "F", Y, A, A, A, A, A, A, A},
    {"source", &CameraBridgeEnabling::sources, "", Y, A, A, A, A, Y, A, A},
    {"PoCL", &CameraBridgeEnabling::poCL, "", A, A, A, A, A, A, Y, A},
    {"visibility", &CameraBridgeEnabling::isCameraFileVisible, "", A, A, A, A, A, A, A, Y},
};

constexpr std::array kKinds = {CameraBridgeKind::None, CameraBridgeKind::CameraFile, CameraBridgeKind::CLProtocol,
                               CameraBridgeKind::GenCP};

bool Fits(Fact aWanted, bool aIs) {
  return aWanted == Fact::Any || (aWanted == Fact::Yes) == aIs;
}

bool FitsKind(const std::string& aWanted, CameraBridgeKind aKind) {
  constexpr const char* kLetters = "NFCG";
  return aWanted.empty() || aWanted.find(kLetters[static_cast<int>(aKind) + 1]) != std::string::npos;
}

CameraBridgeState MakeState(unsigned aBits, CameraBridgeKind aKind) {
  const auto isSet = [aBits](unsigned aBit) { return (aBits >> aBit & 1U) != 0; };
  return {.hasPort = isSet(0),
          .kind = aKind,
          .isConnected = isSet(1),
          .hasTemplates = isSet(2),
          .hasCLProtocolXMLs = isSet(3),
          .hasGenCPXMLs = isSet(4),
          .hasSources = isSet(5),
          .isPoCLSupported = isSet(6),
          .isCameraFileVisible = isSet(7)};
}

} // namespace

TEST(CameraBridgeState, Kinds_HaveTheirNumbers) {
  EXPECT_EQ(static_cast<int>(CameraBridgeKind::None), -1);
  EXPECT_EQ(static_cast<int>(CameraBridgeKind::CameraFile), 0);
  EXPECT_EQ(static_cast<int>(CameraBridgeKind::CLProtocol), 1);
  EXPECT_EQ(static_cast<int>(CameraBridgeKind::GenCP), 2);
}

TEST(CameraBridgeState, EveryCombination_EnablesWhatTheTableSays) {
  constexpr unsigned kCombinations = 1U << 8;
  for (const CameraBridgeKind kind : kKinds) {
    for (unsigned bits = 0; bits < kCombinations; ++bits) {
      const CameraBridgeState state = MakeState(bits, kind);
      const CameraBridgeEnabling enabling = GetCameraBridgeEnabling(state);
      for (const Row& row : kRows) {
        const bool isEnabled = FitsKind(row.kinds, kind) && Fits(row.port, state.hasPort) &&
                               Fits(row.connected, state.isConnected) && Fits(row.templates, state.hasTemplates) &&
                               Fits(row.clXMLs, state.hasCLProtocolXMLs) && Fits(row.genCPXMLs, state.hasGenCPXMLs) &&
                               Fits(row.sources, state.hasSources) && Fits(row.poCL, state.isPoCLSupported) &&
                               Fits(row.fileVisible, state.isCameraFileVisible);
        ASSERT_EQ(enabling.*row.isEnabled, isEnabled)
            << row.control << ", kind " << static_cast<int>(kind) << ", facts " << bits;
      }
    }
  }
}

} // namespace krgui
